#pragma once

#include <memory>
#include <string_view>

#include "vdstomgr/platform/export.h"

namespace vdstomgr {

/// A text that a record owns. One pointer wide and null while the text is empty, so that an array
/// of a million records stays small. Copies are deep.
class VDSTO_API OwnedText {
 public:
  OwnedText() = default;
  OwnedText(const OwnedText& other) { Assign(other.Get()); }
  OwnedText(OwnedText&&) noexcept = default;
  OwnedText& operator=(const OwnedText& other);
  OwnedText& operator=(OwnedText&&) noexcept = default;
  ~OwnedText() = default;

  /// Never null; good until the text is assigned or destroyed.
  const char* Get() const { return text_ ? text_.get() : ""; }
  bool IsEmpty() const { return !text_; }

  /// Takes a copy; null or an empty text frees what is held. `text` may be a piece of this one.
  void Assign(const char* text);

 private:
  std::unique_ptr<char[]> text_;
};

}  // namespace vdstomgr
