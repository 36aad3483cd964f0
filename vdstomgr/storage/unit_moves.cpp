#include "vdstomgr/storage/unit_moves.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cstring>

namespace vdstomgr {
namespace {

/// The compiler must not begin with the next piece before this one is there.
void CopyPiece(BYTE* to, const BYTE* from, std::size_t size) {
  std::memcpy(to, from, size);
  std::atomic_signal_fence(std::memory_order_seq_cst);
}

}  // namespace

void MoveDown(BYTE* from, std::size_t size, std::size_t distance) {
  assert(distance != 0);
  for (std::size_t done = 0; done < size;) {
    const std::size_t piece = std::min(distance, size - done);
    CopyPiece(from + done - distance, from + done, piece);
    done += piece;
  }
}

void MoveUp(BYTE* from, std::size_t size, std::size_t distance) {
  assert(distance != 0);
  for (std::size_t left = size; left > 0;) {
    const std::size_t piece = std::min(distance, left);
    left -= piece;
    CopyPiece(from + left + distance, from + left, piece);
  }
}

}  // namespace vdstomgr
