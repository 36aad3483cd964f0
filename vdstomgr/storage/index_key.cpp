#include "vdstomgr/storage/index_key.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "vdstomgr/storage/little_endian.h"

namespace vdstomgr {
namespace {

/// The first bytes as a number that orders as they do.
std::uint64_t RankOfBytes(KeyBytes key) {
  BYTE bytes[IndexKey::kRankBytes] = {};
  std::memcpy(bytes, key.data(), std::min(key.size(), sizeof bytes));
  std::uint64_t rank = 0;
  for (const BYTE byte : bytes) rank = rank << 8 | byte;
  return rank;
}

}  // namespace

IndexKey::IndexKey(Kind kind, int length, int offset, Compare compare)
    : kind_(kind),
      length_(length),
      offset_(offset),
      compare_(compare),
      order_(kind == CRkFileArrayIndex::INDEX_DWORD ? kNumberKey : kStringKey) {}

bool IndexKey::IsRanked() const {
  return kind_ == CRkFileArrayIndex::INDEX_DWORD || kind_ == CRkFileArrayIndex::INDEX_STRING ||
         kind_ == CRkFileArrayIndex::INDEX_BINARY;
}

void IndexKey::SetUnitSize(int bytes) {
  limit_ = LimitFor(bytes);
}

std::size_t IndexKey::LimitFor(int unit_size) const {
  if (offset_ < 0 || offset_ >= unit_size) return 0;
  const auto room = static_cast<std::size_t>(unit_size - offset_);
  switch (kind_) {
    case CRkFileArrayIndex::INDEX_DWORD:
      return room < sizeof(DWORD) ? 0 : sizeof(DWORD);
    case CRkFileArrayIndex::INDEX_STRING:
      return length_ < 0 ? room : std::min(room, static_cast<std::size_t>(length_));
    default:
      return std::min(room, BinarySize());
  }
}

KeyBytes IndexKey::OfText(const char* text) const {
  if (text == nullptr) return {};
  return KeyOfText(text, length_ < 0 ? std::strlen(text) : limit_);
}

KeyBytes IndexKey::OfBytes(const BYTE* bytes) const {
  return bytes == nullptr ? KeyBytes() : KeyBytes(bytes, limit_);
}

void IndexKey::SetOriginAt(const void* first) {
  if (kind_ != CRkFileArrayIndex::INDEX_DWORD || limit_ == 0) return;
  order_.SetOrigin(LoadLittle<DWORD>(Of(first).data()));
}

std::uint64_t IndexKey::Rank(KeyBytes key, std::size_t at) const {
  if (at >= key.size()) return 0;
  key = key.subspan(at);
  return kind_ == CRkFileArrayIndex::INDEX_BINARY ? RankOfBytes(key) : order_.Rank(key);
}

bool IndexKey::HasMore(std::uint64_t rank, std::size_t at) const {
  if (kind_ == CRkFileArrayIndex::INDEX_STRING) return (rank & 0xFF) != 0;
  return kind_ == CRkFileArrayIndex::INDEX_BINARY && at + kRankBytes < limit_;
}

int IndexKey::CompareFrom(KeyBytes left, KeyBytes right, std::size_t at) const {
  for (;; at += kRankBytes) {
    const std::uint64_t left_rank = Rank(left, at);
    const std::uint64_t right_rank = Rank(right, at);
    if (left_rank != right_rank) return left_rank < right_rank ? -1 : 1;
    if (!HasMore(left_rank, at)) return 0;
  }
}

std::size_t IndexKey::SharedStart(KeyBytes left, KeyBytes right, std::size_t at,
                                  std::size_t limit) const {
  if (kind_ == CRkFileArrayIndex::INDEX_DWORD) return 0;
  for (; at < limit; at += kRankBytes) {
    const std::uint64_t rank = Rank(left, at);
    const std::uint64_t difference = rank ^ Rank(right, at);
    const auto same_bits = difference != 0 ? std::countl_zero(difference) : 64;
    const bool ends = kind_ == CRkFileArrayIndex::INDEX_STRING && (rank & 0xFF) == 0;
    const auto text_bits = ends ? 64 - std::countr_zero(rank) : 64;
    const auto shared = static_cast<std::size_t>(std::min(same_bits, (text_bits + 7) / 8 * 8)) / 8;
    if (shared < kRankBytes) return std::min(at + shared, limit);
  }
  return limit;
}

}  // namespace vdstomgr
