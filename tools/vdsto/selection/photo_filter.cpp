#include "tools/vdsto/selection/photo_filter.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

#include "tools/vdsto/text/clock_time.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {

namespace {

/// A day, or the first of a month or year; the parts that were given.
struct Period {
  int year, month, day;
  int parts;
};

bool IsPeriod(std::string_view text) {
  constexpr std::string_view kForm = "0000-00-00";
  return (text.size() == 4 || text.size() == 7 || text.size() == kForm.size()) &&
         std::equal(text.begin(), text.end(), kForm.begin(), [](char given, char form) {
           return form == '-' ? given == '-' : given >= '0' && given <= '9';
         });
}

Period ReadPeriod(const std::string& text) {
  if (!IsPeriod(text))
    throw ToolError(ExitCode::kUsage,
                    "'" + Printable(text) + "' is no day: give 2004-06-29, 2004-06 or 2004");
  const auto part = [&](size_t first, size_t digits) {
    return first < text.size() ? std::stoi(text.substr(first, digits)) : 1;
  };
  const int parts = 1 + (text.size() > 4) + (text.size() > 7);
  return {part(0, 4), part(5, 2), part(8, 2), parts};
}

int32_t TimeOf(const Period& period, const std::string& text) {
  std::array<char, 32> date;
  std::snprintf(date.data(), date.size(), "%04d-%02d-%02d 00:00:00", period.year, period.month,
                period.day);
  const int32_t time = CUtilityLib::GetTime(date.data());
  if (time == -1)
    throw ToolError(ExitCode::kUsage, "'" + Printable(text) + "' is no day of the calendar");
  return time;
}

/// The beginning of a day, month or year, or of the next one.
int32_t StartOf(const std::string& text, bool of_next) {
  Period period = ReadPeriod(text);
  const int32_t start = TimeOf(period, text);
  if (!of_next) return start;
  if (period.parts == 3) return start + 86'400;
  if (period.parts == 1 || ++period.month > 12) ++period.year, period.month = 1;
  return TimeOf(period, text);
}

bool IsTrash(uint32_t folder) {
  return folder == vdstomgr::kPersonalTrash || folder == vdstomgr::kPublicTrash ||
         folder == vdstomgr::kGuestTrash;
}

}  // namespace

bool FilterWords::IsEmpty() const {
  return since.empty() && until.empty() && camera.empty() && rating == 0 && folder.empty();
}

PhotoFilter::PhotoFilter(const FilterWords& words, Library& library, CataloguePath& paths)
    : since_(words.since.empty() ? std::numeric_limits<int32_t>::min()
                                 : StartOf(words.since, false)),
      until_(words.until.empty() ? std::numeric_limits<int32_t>::max()
                                 : StartOf(words.until, true)),
      camera_(AsciiLower(words.camera)),
      rating_(words.rating),
      is_everywhere_(words.folder.empty()) {
  if (is_everywhere_) return;
  const uint32_t folder = paths.Folder(words.folder);
  CDWordArray below{folder};
  library.Call([&](auto& catalogue) { return catalogue.GetSubFolder(folder, below, true); });
  folders_.insert(below.begin(), below.end());
}

bool PhotoFilter::PassesFolder(uint32_t folder) const {
  return !IsTrash(folder) && (is_everywhere_ || folders_.contains(folder));
}

bool PhotoFilter::Passes(const PHOTOINFO& photo) const {
  const int32_t time = IsTime(photo.ShootDate) ? photo.ShootDate : photo.RegDate;
  return PassesFolder(photo.dwFolderID) && time >= since_ && time < until_ &&
         photo.byteRating >= rating_ &&
         AsciiLower(photo.GetCameraModel()).find(camera_) != std::string::npos;
}

}  // namespace vdsto
