#include "tools/vdsto/picture/decoding_memory.h"

#include <vips/vips.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <thread>

#include "tools/vdsto/picture/tiff_layout.h"

namespace vdsto {
namespace {

constexpr uint64_t kMiB = 1 << 20;
/// Decoders that go from top to bottom hold about this many lines.
constexpr uint64_t kLinesHeld = 512;
/// So many rows of tiles are held.
constexpr uint64_t kTileRowsHeld = 3;
/// Bytes for each pixel, whatever comes out.
constexpr uint64_t kWebpPixel = 4, kGifPixel = 8;
/// Two pictures of 12 megapixels in a form that is decoded as a whole, on two cores.
constexpr uint64_t kBudgetPerCore = 80 * kMiB;
constexpr uint64_t kAlwaysAllowed = 192 * kMiB;
constexpr uint64_t kNeverAllowed = 1536 * kMiB;
constexpr uint64_t kTimesItsFile = 400;

struct Pixels {
  uint64_t line;  ///< bytes
  uint64_t height;
  uint64_t count;

  uint64_t All() const { return line * height; }
  uint64_t Lines(uint64_t lines) const { return line * std::min(lines, height); }
};

bool IsSet(VipsImage* image, const char* field) {
  int value = 0;
  return vips_image_get_typeof(image, field) && vips_image_get_int(image, field, &value) == 0 &&
         value != 0;
}

/// The coefficients of the whole picture, two bytes each, before the first line. Subsampled ones
/// are at most two for each pixel in the forms that are in use.
uint64_t ProgressiveJpeg(VipsImage* image, const Pixels& pixels) {
  const char* subsampling = nullptr;
  constexpr const char* kField = "jpeg-chroma-subsample";
  const bool is_subsampled = vips_image_get_typeof(image, kField) &&
                             vips_image_get_string(image, kField, &subsampling) == 0 &&
                             std::string_view(subsampling) == "4:2:0";
  const auto bands = static_cast<uint64_t>(vips_image_get_bands(image));
  return pixels.count * 2 * (is_subsampled ? std::min<uint64_t>(bands, 2) : bands);
}

uint64_t Tiff(const PictureData& data, const Pixels& pixels) {
  const TiffLayout layout = ReadTiffLayout(data);
  if (layout.tile_height > 0)
    return std::max(pixels.Lines(kLinesHeld), kTileRowsHeld * pixels.Lines(layout.tile_height));
  std::error_code ignored;
  const bool is_in_one_piece = layout.strip_height > kLinesHeld && !data.InMemory();
  const uint64_t piece = is_in_one_piece ? std::filesystem::file_size(data.path, ignored) : 0;
  return pixels.Lines(kLinesHeld) + std::min(piece, pixels.All());
}

/// Only a single lossy picture can be decoded in a smaller size.
uint64_t Webp(const PictureData& data, const Pixels& pixels) {
  const std::string_view text(reinterpret_cast<const char*>(data.bytes.data()), data.bytes.size());
  const bool is_lossy = text.find("VP8L") == text.npos && text.find("ANMF") == text.npos;
  return is_lossy ? pixels.Lines(kLinesHeld) : kWebpPixel * pixels.count;
}

}  // namespace

uint64_t DecodingMemory(VipsImage* header, const PictureData& data, PictureFormat format) {
  const auto width = static_cast<uint64_t>(vips_image_get_width(header));
  const auto height = static_cast<uint64_t>(vips_image_get_height(header));
  const Pixels pixels{width * VIPS_IMAGE_SIZEOF_PEL(header), height, width * height};
  switch (format) {
    case PictureFormat::kJpeg:
      return pixels.Lines(kLinesHeld) +
             (IsSet(header, "jpeg-multiscan") ? ProgressiveJpeg(header, pixels) : 0);
    case PictureFormat::kPng:
      return IsSet(header, "interlaced") ? pixels.All() : pixels.Lines(kLinesHeld);
    case PictureFormat::kTiff:
      return Tiff(data, pixels);
    case PictureFormat::kWebp:
      return Webp(data, pixels);
    case PictureFormat::kGif:
      return kGifPixel * pixels.count;
    default:
      return 2 * pixels.All();
  }
}

uint64_t MostDecodingMemory(uint64_t file_size) {
  return std::clamp(kTimesItsFile * std::min(file_size, kNeverAllowed), kAlwaysAllowed,
                    kNeverAllowed);
}

uint64_t DecodingBudget() {
  return kBudgetPerCore * std::max(2u, std::thread::hardware_concurrency());
}

}  // namespace vdsto
