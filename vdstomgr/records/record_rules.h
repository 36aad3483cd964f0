#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/types.h"

/// Rules that several records share.
namespace vdstomgr {

/// Times are seconds since 1970; -1 (no time) is kept as 0.
constexpr std::int32_t TimeOrZero(std::int32_t time) {
  return time == -1 ? 0 : time;
}

/// The start of a time's local day, in seconds since 1970. A day that skips its midnight begins
/// later.
VDSTO_API std::int32_t LocalMidnight(std::int32_t time);

/// Both sides of a photo without a thumbnail, in pixels.
inline constexpr WORD kPlaceholderSide = 400;

/// The size of a photo and the mark that it has no thumbnail, which fixes the size: a record that
/// gets an empty thumbnail location takes the placeholder's size and keeps it until it gets one.
template <class Record>
void MarkThumbnail(Record& record, bool has_one) {
  record.byteNoLTB = !has_one;
  if (!has_one) record.Width = record.Height = kPlaceholderSide;
}
template <class Record>
void SetSizeUnlessPlaceholder(Record& record, int cx, int cy) {
  if (record.byteNoLTB) return;
  record.Width = static_cast<WORD>(cx);
  record.Height = static_cast<WORD>(cy);
}

/// Bytes of a record's field for a file name, its terminator included.
inline constexpr std::size_t kFileNameBytes = 520;

/// Copies a file name into a record. One that does not fit is shortened between characters and
/// keeps its extension; null leaves the field as it is.
VDSTO_API void CopyFileName(char (&field)[kFileNameBytes], const char* name);

}  // namespace vdstomgr
