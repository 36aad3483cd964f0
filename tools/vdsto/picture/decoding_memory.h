#pragma once
#include <cstdint>

#include "tools/vdsto/picture/picture_data.h"
#include "tools/vdsto/picture/picture_format.h"

typedef struct _VipsImage VipsImage;

namespace vdsto {

/// About how many bytes it takes to make a thumbnail of the picture with this header, besides those
/// of its file.
uint64_t DecodingMemory(VipsImage* header, const PictureData& data, PictureFormat format);

/// The most that decoding a picture from so many bytes may take. Pixels that take hundreds of times
/// the bytes that they are made of are no photo's.
uint64_t MostDecodingMemory(uint64_t file_size);

/// What all decoding takes together, as long as no picture alone takes more.
uint64_t DecodingBudget();

}  // namespace vdsto
