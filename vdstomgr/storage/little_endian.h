#pragma once

#include <atomic>
#include <bit>
#include <cassert>
#include <concepts>
#include <cstdint>
#include <cstring>

#include "vdstomgr/platform/framework/types.h"

/// Numbers as the files hold them: little-endian on every machine, at any address.
namespace vdstomgr {

/// Turns a number of this machine into a little-endian one, or back.
template <std::unsigned_integral Number>
constexpr Number SwapIfBig(Number number) {
  if constexpr (std::endian::native == std::endian::little) return number;
  Number swapped = 0;
  for (std::size_t i = 0; i < sizeof number; ++i) {
    swapped = static_cast<Number>(swapped << 8 | (number >> 8 * i & 0xFF));
  }
  return swapped;
}

template <std::unsigned_integral Number>
Number LoadLittle(const BYTE* at) {
  Number number;
  std::memcpy(&number, at, sizeof number);
  return SwapIfBig(number);
}

template <std::unsigned_integral Number>
void StoreLittle(BYTE* at, Number number) {
  number = SwapIfBig(number);
  std::memcpy(at, &number, sizeof number);
}

/// Stores a number that makes visible what was written before it: a process that is killed, or a
/// reader of the file, never finds the number without what it counts. `at` must be a multiple of
/// the number's size.
template <std::unsigned_integral Number>
void PublishLittle(BYTE* at, Number number) {
  assert(reinterpret_cast<std::uintptr_t>(at) % sizeof number == 0);
  std::atomic_ref<Number>(*reinterpret_cast<Number*>(at))
      .store(SwapIfBig(number), std::memory_order_release);
}

}  // namespace vdstomgr
