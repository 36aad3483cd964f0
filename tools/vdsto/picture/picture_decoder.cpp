#include "tools/vdsto/picture/picture_decoder.h"

#include <vips/vips.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "tools/vdsto/picture/decoding_memory.h"
#include "tools/vdsto/picture/memory_budget.h"

namespace vdsto {
namespace {

constexpr uint64_t kMostPixels = 1ull << 30;

struct Unreference {
  void operator()(void* object) const { g_object_unref(object); }
};
using Image = std::unique_ptr<VipsImage, Unreference>;

void IgnoreLog(const gchar*, GLogLevelFlags, const gchar*, gpointer) {}

/// Reads the header only; pixels are decoded when they are asked for.
Image OpenHeader(const PictureData& data) {
  constexpr const char* kAccess = "access";
  return Image(
      data.InMemory()
          ? vips_image_new_from_buffer(data.bytes.data(), data.bytes.size(), "", kAccess,
                                       VIPS_ACCESS_SEQUENTIAL, nullptr)
          : vips_image_new_from_file(data.path.c_str(), kAccess, VIPS_ACCESS_SEQUENTIAL, nullptr));
}

/// How a picture is to be decoded.
struct Recipe {
  int orientation = 0;   ///< 0: the picture's own
  bool strict = true;    ///< fail where data is missing or wrong
  bool to_srgb = false;  ///< its colours are of a space of its own
};

/// The reader in memory takes its strictness from the option text only, the one for files from the
/// argument only.
Image Shrink(const PictureData& data, const Recipe& recipe) {
  constexpr int kSide = static_cast<int>(kThumbnailSide);
  const char* const last = recipe.to_srgb ? "export_profile" : nullptr;
  VipsImage* thumbnail = nullptr;
  if (data.InMemory()) {
    void* start = const_cast<std::byte*>(data.bytes.data());
    vips_thumbnail_buffer(start, data.bytes.size(), &thumbnail, kSide, "size", VIPS_SIZE_DOWN,
                          "no_rotate", TRUE, "option_string",
                          recipe.strict ? "[fail_on=error]" : "", last, "srgb", nullptr);
  } else {
    vips_thumbnail(data.path.c_str(), &thumbnail, kSide, "size", VIPS_SIZE_DOWN, "no_rotate", TRUE,
                   "fail_on", recipe.strict ? VIPS_FAIL_ON_ERROR : VIPS_FAIL_ON_NONE, last, "srgb",
                   nullptr);
  }
  return Image(thumbnail);
}

/// Pixels come from a decoder line by line; turning needs all of them at once.
Image Upright(const Image& thumbnail, int orientation) {
  const Image pixels(vips_image_copy_memory(thumbnail.get()));
  if (!pixels) return nullptr;
  if (orientation != 0) vips_image_set_int(pixels.get(), VIPS_META_ORIENTATION, orientation);
  VipsImage* turned = nullptr;
  vips_autorot(pixels.get(), &turned, nullptr);
  return Image(turned);
}

std::vector<uint8_t> Encode(const Image& image) {
  constexpr int kQuality = 85;
  const double white = 255;
  const std::unique_ptr<VipsArea, void (*)(VipsArea*)> background(
      VIPS_AREA(vips_array_double_new(&white, 1)), &vips_area_unref);
  void* bytes = nullptr;
  size_t size = 0;
  vips_jpegsave_buffer(image.get(), &bytes, &size, "Q", kQuality, "strip", TRUE, "background",
                       background.get(), nullptr);
  const std::unique_ptr<void, void (*)(void*)> owner(bytes, &g_free);
  const auto* first = static_cast<const uint8_t*>(bytes);
  return std::vector<uint8_t>(first, first + size);
}

std::vector<uint8_t> MakeThumbnail(const PictureData& data, const Recipe& recipe) {
  const Image thumbnail = Shrink(data, recipe);
  const Image upright = thumbnail ? Upright(thumbnail, recipe.orientation) : nullptr;
  return upright ? Encode(upright) : std::vector<uint8_t>();
}

bool HasOwnColours(VipsImage* image) {
  return vips_image_get_typeof(image, VIPS_META_ICC_NAME) != 0 ||
         vips_image_get_interpretation(image) == VIPS_INTERPRETATION_CMYK;
}

uint64_t SizeOf(const PictureData& data) {
  std::error_code ignored;
  return data.InMemory() ? data.bytes.size() : std::filesystem::file_size(data.path, ignored);
}

/// A colour profile that cannot be used is no reason to show nothing.
void Decode(const PictureData& data, Recipe recipe, DecodedPicture& result) {
  const bool has_own_colours = recipe.to_srgb;
  for (const bool strict : {true, false}) {
    recipe.strict = strict;
    recipe.to_srgb = has_own_colours;
    result.thumbnail = MakeThumbnail(data, recipe);
    if (result.thumbnail.empty() && has_own_colours) {
      recipe.to_srgb = false;
      result.thumbnail = MakeThumbnail(data, recipe);
    }
    if (result.thumbnail.empty()) continue;
    result.state = strict ? PixelState::kGood : PixelState::kDamaged;
    return;
  }
}

}  // namespace

void InitialiseDecoder() {
  if (VIPS_INIT("vdsto") != 0) throw std::runtime_error("the picture decoder does not start");
  g_log_set_default_handler(IgnoreLog, nullptr);
  vips_concurrency_set(1);
  vips_cache_set_max(0);
  vips_block_untrusted_set(TRUE);
  vips_operation_block_set("VipsForeignLoadMagick", FALSE);
}

DecodedPicture DecodePicture(const PictureData& data, PictureFormat format, int orientation) {
  static MemoryBudget budget(DecodingBudget());
  DecodedPicture result;
  Image header = OpenHeader(data);
  if (header) {
    result.width = static_cast<uint32_t>(vips_image_get_width(header.get()));
    result.height = static_cast<uint32_t>(vips_image_get_height(header.get()));
    result.memory = DecodingMemory(header.get(), data, format);
    const Recipe recipe{orientation, true, HasOwnColours(header.get())};
    header.reset();
    if (uint64_t{result.width} * result.height > kMostPixels) {
      result.state = PixelState::kTooManyPixels;
    } else if (result.memory > MostDecodingMemory(SizeOf(data))) {
      result.state = PixelState::kTooLarge;
    } else {
      const MemoryBudget::Share share(budget, result.memory);
      Decode(data, recipe, result);
    }
  }
  vips_error_clear();
  return result;
}

}  // namespace vdsto
