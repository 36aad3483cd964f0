#pragma once

#include <memory>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/types.h"

/// A block of bytes that is either its own or borrowed. A copy always has bytes of its own.
class VDSTO_API CBinData {
 public:
  CBinData() = default;
  CBinData(const BYTE* data, DWORD length) { SetData(data, length); }
  CBinData(const CBinData& other) { SetData(other.data_, other.length_); }
  CBinData& operator=(const CBinData& other);
  CBinData(CBinData&& other) noexcept { Swap(other); }
  CBinData& operator=(CBinData&& other) noexcept;

  /// Copies `length` bytes, which may be part of what is held now. Null gives an empty block.
  void SetData(const BYTE* data, DWORD length);
  /// Points at the caller's bytes, which must outlive this; or, with `own`, takes over a block made
  /// by new BYTE[].
  void SetPointer(BYTE* data, DWORD length, bool own = false);
  /// A new block of its own whose bytes are not set yet.
  BYTE* Allocate(DWORD length);
  void Reset();
  void Clear() { Reset(); }

  bool IsEmpty() const { return length_ == 0; }
  /// Null only when empty.
  BYTE* GetData() { return data_; }
  const BYTE* GetData() const { return data_; }
  DWORD GetLength() const { return length_; }

  const BYTE* begin() const { return data_; }
  const BYTE* end() const { return data_ + length_; }

 private:
  void Swap(CBinData& other) noexcept;

  std::unique_ptr<BYTE[]> owned_;  ///< null when borrowed
  BYTE* data_ = nullptr;
  DWORD length_ = 0;
};
