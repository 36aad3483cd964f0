#pragma once
#include <cstdint>
#include <vector>

#include "tools/vdsto/picture/picture_data.h"
#include "tools/vdsto/picture/picture_format.h"

namespace vdsto {

enum class PixelState {
  kGood,
  kDamaged,     ///< decodes, but data is missing or wrong: a viewer shows it in part
  kUnreadable,  ///< nothing can be shown
  kTooLarge,    ///< decoding it would take more memory than such a file deserves
  kTooManyPixels,
};

struct DecodedPicture {
  PixelState state = PixelState::kUnreadable;
  uint32_t width = 0;  ///< as the decoder reports it; 0 when not even the header is readable
  uint32_t height = 0;
  uint64_t memory = 0;  ///< about how many bytes decoding takes
  /// A JPEG, upright, in sRGB, its longer side at most kThumbnailSide; empty exactly when nothing
  /// can be shown.
  std::vector<uint8_t> thumbnail;
};

/// The longer side, in pixels, of the thumbnail that a decode makes.
inline constexpr uint32_t kThumbnailSide = 400;

/// Prepares the decoder: one thread per picture, no cache, only the loaders we mean to use. Once
/// per process. Throws std::runtime_error when the library cannot start.
void InitialiseDecoder();

/// Decodes `data` down to a thumbnail, which is the cheapest honest test of its pixels. It is
/// turned by `orientation` (1..8) or, when that is 0, by what the picture itself says. Any number
/// of threads may call it; together they stay within a fixed memory budget, so a large picture may
/// wait for others to finish.
DecodedPicture DecodePicture(const PictureData& data, PictureFormat format, int orientation = 0);

}  // namespace vdsto
