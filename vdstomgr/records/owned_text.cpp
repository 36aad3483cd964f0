#include "vdstomgr/records/owned_text.h"

#include <cstring>

namespace vdstomgr {

OwnedText& OwnedText::operator=(const OwnedText& other) {
  if (this != &other) Assign(other.Get());
  return *this;
}

void OwnedText::Assign(const char* text) {
  if (text == nullptr || *text == '\0') return text_.reset();
  const std::size_t size = std::strlen(text) + 1;
  auto copy = std::make_unique_for_overwrite<char[]>(size);
  std::memcpy(copy.get(), text, size);
  text_ = std::move(copy);
}

}  // namespace vdstomgr
