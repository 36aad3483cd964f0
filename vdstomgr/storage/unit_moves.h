#pragma once

#include <cstddef>

#include "vdstomgr/platform/framework/types.h"

/// Moves within an array that a killed process never leaves without a copy of a unit: bytes are
/// overwritten only after they have been copied whole. (std::memmove may hold some in registers.)
namespace vdstomgr {

/// Moves `size` bytes at `from` by `distance` bytes, a multiple of the unit size as `size` is, to
/// lower addresses.
void MoveDown(BYTE* from, std::size_t size, std::size_t distance);

/// As MoveDown, to higher addresses.
void MoveUp(BYTE* from, std::size_t size, std::size_t distance);

}  // namespace vdstomgr
