#include "tools/vdsto/picture/size_limits.h"

#include <array>
#include <string_view>

namespace vdsto {
namespace {

/// The pieces before the pixels.
bool HasSanePngChunks(const SourceFile& file) {
  constexpr uint64_t kSignature = 8, kFrame = 12;
  std::array<std::byte, 8> head{};
  for (uint64_t at = kSignature; file.ReadAt(head, at) == head.size();) {
    uint64_t length = 0;
    for (size_t i = 0; i < 4; ++i) length = length << 8 | static_cast<uint8_t>(head[i]);
    const std::string_view type(reinterpret_cast<const char*>(&head[4]), 4);
    if (type == "IDAT" || type == "IEND") return true;
    if (length > kMostMetadata) return false;
    at += length + kFrame;
  }
  return true;
}

}  // namespace

bool IsSafeToRead(const SourceFile& file, PictureFormat format) {
  if (format == PictureFormat::kPng) return HasSanePngChunks(file);
  const bool is_read_whole = format == PictureFormat::kHeif || format == PictureFormat::kWebp;
  return !is_read_whole || file.InMemory();
}

bool HasSaneXmp(Bytes picture, PictureFormat format) {
  if (format == PictureFormat::kJpeg || picture.size() <= kMostMetadata) return true;
  const std::string_view text(reinterpret_cast<const char*>(picture.data()), picture.size());
  const size_t begin = text.find("<rdf:RDF");
  return begin == text.npos || text.substr(begin, kMostMetadata).find("</rdf:RDF>") != text.npos;
}

}  // namespace vdsto
