#include "tools/vdsto/picture/picture_date.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <optional>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

/// Nobody took a photo before; cameras that know no date write the years 0 and 1.
constexpr int kFirstYear = 1800;
constexpr std::string_view kClockNeverSet = "1970-01-01 00:00:00";

struct Moment {
  int year = 0, month = 1, day = 1;
  int hour = 0, minute = 0, second = 0;

  bool IsReal() const {
    const std::chrono::year_month_day date{std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    return year >= kFirstYear && date.ok() && hour < 24 && minute < 60 && second <= 60;
  }
};

class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  bool Number(size_t digits, int& number) {
    const std::string_view part = rest_.substr(0, digits);
    const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
    if (part.size() < digits || !std::all_of(part.begin(), part.end(), is_digit)) return false;
    number = 0;
    for (const char digit : part) number = number * 10 + (digit - '0');
    rest_.remove_prefix(digits);
    return true;
  }

  /// One of `characters` and a number of two digits.
  bool Part(std::string_view characters, int& number) {
    return Skip(characters) && Number(2, number);
  }

  bool Skip(std::string_view characters) {
    if (rest_.empty() || characters.find(rest_.front()) == std::string_view::npos) return false;
    rest_.remove_prefix(1);
    return true;
  }

  /// Only what cameras leave where they know nothing: "  :  :  ".
  bool IsBlank() const { return rest_.find_first_not_of(" :") == std::string_view::npos; }

 private:
  std::string_view rest_;
};

/// Some cameras separate the date with '-' or '/', some put a 'T' before the time.
std::optional<Moment> Read(Reader text) {
  constexpr std::string_view kBetween = ":-/";
  Moment moment;
  if (!text.Number(4, moment.year)) return std::nullopt;
  if (text.IsBlank()) return moment;
  if (!text.Part(kBetween, moment.month)) return std::nullopt;
  if (text.IsBlank()) return moment;
  if (!text.Part(kBetween, moment.day)) return std::nullopt;
  if (text.IsBlank()) return moment;
  if (!text.Part("T ", moment.hour) || !text.Part(":", moment.minute)) return std::nullopt;
  text.Part(":", moment.second);
  return moment;
}

}  // namespace

std::string DateFrom(std::string_view text) {
  const auto moment = Read(Reader(Trimmed(text)));
  if (!moment || !moment->IsReal()) return {};
  std::array<char, 80> date{};
  std::snprintf(date.data(), date.size(), "%04d-%02d-%02d %02d:%02d:%02d", moment->year,
                moment->month, moment->day, moment->hour, moment->minute,
                std::min(moment->second, 59));
  return date.data() == kClockNeverSet ? std::string() : std::string(date.data());
}

}  // namespace vdsto
