#include "vdstomgr/storage/cluster_table.h"

#include <atomic>
#include <cassert>
#include <cstring>

#include "vdstomgr/storage/little_endian.h"

namespace vdstomgr {
namespace {

constexpr std::size_t kLengthBytes = sizeof(DWORD);

/// The compiler must not move a store to the other side: a killed process has done all stores
/// before some instruction and none after it.
void KeepOrder() {
  std::atomic_signal_fence(std::memory_order_seq_cst);
}

}  // namespace

bool ClusterTable::IsBefore(DWORD left, DWORD right) const {
  const int order = order_.CompareRest(KeyAt(left), KeyAt(right));
  if (order != 0) return order < 0;
  const std::uint64_t left_offset = PlaceAt(left).offset;
  const std::uint64_t right_offset = PlaceAt(right).offset;
  return left_offset != right_offset ? left_offset < right_offset : left < right;
}

bool ClusterTable::IsSameRecord(DWORD left, DWORD right) const {
  return std::memcmp(Unit(left), Unit(right), UnitBytes()) == 0;
}

void ClusterTable::Free(DWORD slot) const {
  StoreLittle(Unit(slot) + UnitBytes() - kLengthBytes, DWORD{0});
  KeepOrder();
}

void ClusterTable::Copy(DWORD to, DWORD from) const {
  assert(to != from);
  const std::size_t most = UnitBytes() - kLengthBytes;
  BYTE* const target = Unit(to);
  const BYTE* const source = Unit(from);
  Free(to);
  std::memcpy(target, source, most);
  KeepOrder();
  std::memcpy(target + most, source + most, kLengthBytes);
  KeepOrder();
}

}  // namespace vdstomgr
