#include "vdstomgr/platform/utility/bin_data.h"

#include <algorithm>
#include <utility>

CBinData& CBinData::operator=(const CBinData& other) {
  if (this != &other) SetData(other.data_, other.length_);
  return *this;
}

CBinData& CBinData::operator=(CBinData&& other) noexcept {
  CBinData moved(std::move(other));
  Swap(moved);
  return *this;
}

void CBinData::SetData(const BYTE* data, DWORD length) {
  CBinData copy;
  if (data != nullptr) std::copy_n(data, length, copy.Allocate(length));
  Swap(copy);
}

void CBinData::SetPointer(BYTE* data, DWORD length, bool own) {
  if (data != owned_.get()) owned_.reset(own ? data : nullptr);
  data_ = data;
  length_ = data == nullptr ? 0 : length;
}

BYTE* CBinData::Allocate(DWORD length) {
  owned_ = std::make_unique_for_overwrite<BYTE[]>(length);
  data_ = owned_.get();
  length_ = length;
  return data_;
}

void CBinData::Reset() {
  SetPointer(nullptr, 0);
}

void CBinData::Swap(CBinData& other) noexcept {
  std::swap(owned_, other.owned_);
  std::swap(data_, other.data_);
  std::swap(length_, other.length_);
}
