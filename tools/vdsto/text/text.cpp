#include "tools/vdsto/text/text.h"

#include <iconv.h>
#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>

#include "tools/vdsto/text/clock_time.h"

namespace vdsto {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// Calls `visit(code_point, bytes)` for each character; code_point is negative for a byte that is
/// no UTF-8.
template <typename Visit>
void ForEachCharacter(std::string_view text, Visit visit) {
  while (!text.empty()) {
    utf8proc_int32_t code_point = -1;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &code_point);
    const size_t taken = length > 0 ? static_cast<size_t>(length) : 1;
    if (!visit(length > 0 ? code_point : -1, text.substr(0, taken))) return;
    text.remove_prefix(taken);
  }
}

bool IsControl(utf8proc_int32_t code_point) {
  return code_point < 0x20 || (code_point >= 0x7F && code_point < 0xA0);
}

std::string WellFormed(std::string_view text) {
  std::string result;
  ForEachCharacter(text, [&](utf8proc_int32_t code_point, std::string_view bytes) {
    result += code_point < 0 ? kReplacement : bytes;
    return true;
  });
  return result;
}

/// Empty when the bytes are no text of that character set.
std::string Converted(std::string_view bytes, const char* from_set) {
  const iconv_t converter = iconv_open("UTF-8", from_set);
  if (converter == iconv_t(-1)) return {};
  std::string input(bytes);
  std::string output(bytes.size() * 3, '\0');
  char* from = input.data();
  char* to = output.data();
  size_t from_left = input.size();
  size_t to_left = output.size();
  const bool converted = iconv(converter, &from, &from_left, &to, &to_left) != size_t(-1);
  iconv_close(converter);
  if (!converted) return {};
  output.resize(output.size() - to_left);
  return output;
}

std::string FromOldCodePage(std::string_view bytes) {
  const std::string korean = Converted(bytes, "CP949");
  return korean.empty() ? Converted(bytes, "ISO-8859-1") : korean;
}

}  // namespace

bool IsUtf8(std::string_view text) {
  bool valid = true;
  ForEachCharacter(
      text, [&](utf8proc_int32_t code_point, std::string_view) { return valid = code_point >= 0; });
  return valid;
}

std::string Composed(std::string_view text) {
  const std::string well_formed = WellFormed(text);
  utf8proc_uint8_t* composed = nullptr;
  const auto length =
      utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(well_formed.data()),
                   static_cast<utf8proc_ssize_t>(well_formed.size()), &composed,
                   static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE));
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(composed, &std::free);
  if (length < 0) return well_formed;
  return {reinterpret_cast<const char*>(composed), static_cast<size_t>(length)};
}

std::string DecodedText(std::string_view bytes) {
  bytes = bytes.substr(0, bytes.find('\0'));
  return Trimmed(Composed(IsUtf8(bytes) ? std::string(bytes) : FromOldCodePage(bytes)));
}

std::string Trimmed(std::string_view text) {
  const auto is_blank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return std::string(text);
}

std::string FirstCharacters(std::string_view text, size_t max_characters) {
  size_t bytes = 0;
  ForEachCharacter(text, [&](utf8proc_int32_t, std::string_view character) {
    if (max_characters-- == 0) return false;
    bytes += character.size();
    return true;
  });
  return std::string(text.substr(0, bytes));
}

std::u32string CodePoints(std::string_view text) {
  std::u32string result;
  ForEachCharacter(text, [&](utf8proc_int32_t code_point, std::string_view) {
    result += code_point < 0 ? U'\uFFFD' : static_cast<char32_t>(code_point);
    return true;
  });
  return result;
}

size_t CharacterCount(std::string_view text) {
  size_t count = 0;
  ForEachCharacter(text, [&](utf8proc_int32_t, std::string_view) { return ++count != 0; });
  return count;
}

size_t DisplayWidth(std::string_view text) {
  size_t columns = 0;
  ForEachCharacter(text, [&](utf8proc_int32_t code_point, std::string_view) {
    columns +=
        code_point < 0 ? 1 : static_cast<size_t>(std::max(0, utf8proc_charwidth(code_point)));
    return true;
  });
  return columns;
}

std::string Padded(std::string_view text, size_t columns, bool right) {
  const size_t width = DisplayWidth(text);
  const std::string blanks(columns > width ? columns - width : 0, ' ');
  return right ? blanks + std::string(text) : std::string(text) + blanks;
}

std::string Printable(std::string_view text) {
  std::string result;
  ForEachCharacter(text, [&](utf8proc_int32_t code_point, std::string_view bytes) {
    if (code_point >= 0 && !IsControl(code_point)) {
      result += bytes;
      return true;
    }
    for (const char byte : bytes) {
      std::array<char, 8> escaped{};
      std::snprintf(escaped.data(), escaped.size(), "\\x%02X",
                    static_cast<unsigned>(static_cast<unsigned char>(byte)));
      result += escaped.data();
    }
    return true;
  });
  return result;
}

std::string AsciiLower(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return result;
}

std::string HumanSize(unsigned long long bytes) {
  constexpr std::array kUnits{"B", "KB", "MB", "GB", "TB", "PB"};
  if (bytes < 1000) return std::to_string(bytes) + " B";
  double amount = static_cast<double>(bytes);
  size_t unit = 0;
  for (; amount >= 999.5 && unit + 1 < kUnits.size(); ++unit) amount /= 1000;
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), amount < 9.95 ? "%.1f %s" : "%.0f %s", amount,
                kUnits[unit]);
  return text.data();
}

std::string TimeText(int32_t time) {
  if (!IsTime(time)) return {};
  const std::time_t seconds = time;
  std::tm local{};
  localtime_r(&seconds, &local);
  char text[32];
  return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local));
}

std::string Listed(const std::vector<std::string>& names, size_t most) {
  std::string list;
  for (size_t i = 0; i < names.size() && i < most; ++i) list += (i == 0 ? "" : ", ") + names[i];
  return names.size() > most ? list + " and more" : list;
}

std::string EnvironmentVariable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

std::string Counted(unsigned long long count, std::string_view noun) {
  return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

}  // namespace vdsto
