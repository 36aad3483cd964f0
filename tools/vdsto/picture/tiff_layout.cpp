#include "tools/vdsto/picture/tiff_layout.h"

#include <array>
#include <fstream>

namespace vdsto {
namespace {

constexpr uint16_t kRowsPerStrip = 278;
constexpr uint16_t kTileLength = 323;
constexpr uint16_t kShort = 3;
constexpr uint64_t kMostTags = 4096;

/// A TIFF file, or one with 64-bit offsets, and its first directory.
class TiffFile {
 public:
  explicit TiffFile(const PictureData& data) : data_(data) {
    if (!data.InMemory()) file_.open(data.path, std::ios::binary);
    is_little_endian_ = Number(0, 1) == 'I';
    is_big_ = Number(2, 2) == 43;
    directory_ = is_big_ ? Number(8, 8) : Number(4, 4);
  }

  uint64_t Tag(uint16_t wanted) {
    const uint64_t count = Number(directory_, is_big_ ? 8 : 2);
    const uint64_t entry_size = is_big_ ? 20 : 12;
    uint64_t at = directory_ + (is_big_ ? 8 : 2);
    for (uint64_t i = 0; i < count && i < kMostTags; ++i, at += entry_size) {
      if (Number(at, 2) != wanted) continue;
      const size_t size = Number(at + 2, 2) == kShort ? 2 : is_big_ ? 8 : 4;
      return Number(at + (is_big_ ? 12 : 8), size);
    }
    return 0;
  }

 private:
  /// 0 where the file ends before.
  uint64_t Number(uint64_t at, size_t size) {
    std::array<uint8_t, 8> bytes{};
    if (data_.InMemory()) {
      const size_t total = data_.bytes.size();
      for (size_t i = 0; i < size && at < total && i < total - at; ++i)
        bytes[i] = static_cast<uint8_t>(data_.bytes[at + i]);
    } else {
      file_.clear();
      file_.seekg(static_cast<std::streamoff>(at));
      file_.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
    }
    uint64_t number = 0;
    for (size_t i = 0; i < size; ++i)
      number = number << 8 | bytes[is_little_endian_ ? size - 1 - i : i];
    return number;
  }

  const PictureData& data_;
  std::ifstream file_;
  bool is_little_endian_ = false;
  bool is_big_ = false;
  uint64_t directory_ = 0;
};

}  // namespace

TiffLayout ReadTiffLayout(const PictureData& data) {
  TiffFile file(data);
  return {file.Tag(kTileLength), file.Tag(kRowsPerStrip)};
}

}  // namespace vdsto
