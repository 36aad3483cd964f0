#pragma once

/// The framework's plain types, of fixed width: nothing depends on the width of the compiler's
/// long. On Windows they are the SDK's own, so that a host's <windows.h> and this header agree. A
/// host that wants more of the SDK than its core includes it first.
#if defined(_WIN32)
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ULONGLONG = std::uint64_t;
using BOOL = int;
using LPCTSTR = const char*;

#if !defined(TRUE) && !defined(FALSE)
inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;
#endif

/// A 64-bit count of 100-nanosecond steps since 1601-01-01 UTC, in two halves.
struct FILETIME {
  DWORD dwLowDateTime = 0;
  DWORD dwHighDateTime = 0;
};
#endif
