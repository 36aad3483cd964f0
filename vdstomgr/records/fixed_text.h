#pragma once

#include <cstddef>
#include <string_view>

#include "vdstomgr/platform/export.h"

namespace vdstomgr {

/// Writes `text` (in the process's code page) into a field of `capacity` bytes, cut between
/// characters to what fits, with its terminator.
VDSTO_API void CopyToFixed(char* field, std::size_t capacity, std::string_view text);

/// The same for a field that knows its own size.
template <std::size_t N>
void CopyToFixed(char (&field)[N], std::string_view text) {
  CopyToFixed(field, N, text);
}
/// The same, but null leaves the field as it is.
template <std::size_t N>
void SetFixed(char (&field)[N], const char* text) {
  if (text != nullptr) CopyToFixed(field, text);
}

}  // namespace vdstomgr
