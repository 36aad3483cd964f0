#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "tools/vdsto/picture/picture_format.h"
#include "tools/vdsto/picture/picture_metadata.h"
#include "tools/vdsto/picture/source_file.h"

namespace vdsto {

enum class PictureState {
  kGood,
  kDamaged,  ///< can be shown in part
  kBroken,   ///< cannot be shown
};

/// Everything that one reading of a file tells about it.
struct PictureFacts {
  PictureFormat format = PictureFormat::kNone;
  FileStamp stamp;
  std::string md5;
  uint32_t width = 0;  ///< stored pixels, before the orientation is applied
  uint32_t height = 0;
  ExifFacts exif;
  Place place;
  PictureWords words;
  PictureState state = PictureState::kBroken;
  std::string problem;             ///< why the state is not good, in a few words
  FileStamp sidecar;               ///< all 0 without one
  std::string sidecar_problem;     ///< why the sidecar was not read
  std::vector<uint8_t> thumbnail;  ///< a small upright JPEG; empty exactly for a broken picture

  bool IsPicture() const { return format != PictureFormat::kNone; }
};

/// Prepares the media libraries. Once per process, before the first probe.
void InitialiseProbing();

/// Reads `path` once and decodes its pixels; `sidecar` is the XMP file beside it, if there is one.
/// A file that is no picture is only looked at, not read. Throws std::system_error when the picture
/// cannot be read; never because of what it contains. Any thread may call it.
PictureFacts ProbePicture(const std::string& path, const std::string& sidecar = {});

}  // namespace vdsto
