#pragma once

#include <cstddef>
#include <filesystem>

namespace bench {

/// A file mapped as a whole for reading and writing, which grows in steps of 100 MiB with its space
/// reserved, so that a full disk is met where it grows and not inside a mapped page. A new one has
/// one page: the first step is paid for by what needs it.
class GrowingMap {
 public:
  /// Opens or makes the file.
  explicit GrowingMap(const std::filesystem::path& path);
  ~GrowingMap();
  GrowingMap(const GrowingMap&) = delete;
  GrowingMap& operator=(const GrowingMap&) = delete;

  /// Makes the map at least `size` bytes long; Data may change.
  void Reserve(std::size_t size) {
    if (size > size_) Grow(size);
  }

  unsigned char* Data() { return data_; }

 private:
  void Grow(std::size_t size);
  void Extend(std::size_t grown);

  int file_;
  std::size_t size_ = 0;
  unsigned char* data_ = nullptr;
};

}  // namespace bench
