#include "vdstomgr/records/guid.h"

#include <cstddef>

namespace vdstomgr {

namespace {

constexpr std::string_view kForm = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

constexpr bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

}  // namespace

bool IsGuid(std::string_view text) {
  if (text.size() != kForm.size()) return false;
  for (std::size_t i = 0; i < kForm.size(); ++i)
    if (kForm[i] == '-' ? text[i] != '-' : !IsHexDigit(text[i])) return false;
  return true;
}

}  // namespace vdstomgr
