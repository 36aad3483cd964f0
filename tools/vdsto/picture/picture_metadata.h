#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "tools/vdsto/picture/picture_data.h"

namespace vdsto {

/// What a camera wrote about a picture, in the form and within the widths of the photo record.
/// Empty or 0: not known.
struct ExifFacts {
  std::string version;  ///< "0220"
  std::string maker;
  std::string model;         ///< cut to the record's 32 characters
  std::string camera_model;  ///< the same, up to 64 characters
  std::string camera_lens;
  std::string shooter;
  std::string exposure;          ///< seconds: "1/125", "0.4", "30"
  std::string f_number;          ///< "2.8"
  std::string exposure_bias;     ///< "-0.67"
  uint16_t focal_length = 0;     ///< mm
  uint16_t focal_length_35 = 0;  ///< mm
  uint16_t iso = 0;
  uint8_t orientation = 0;  ///< 1..8
  uint8_t metering_mode = 0;
  uint8_t flash = 0;
  int32_t shoot_time = 0;  ///< seconds since 1970, read as local time
};

struct PictureMetadata {
  ExifFacts exif;
  uint32_t width = 0;  ///< stored pixels, before any turning; 0 when the metadata do not tell
  uint32_t height = 0;
};

/// Prepares the metadata library for use by several threads. Once per process, before the first
/// read.
void InitialiseMetadata();

/// Reads what there is. Never throws: a damaged file yields what could be read before the damage.
PictureMetadata ReadMetadata(const PictureData& data);

/// Shows `visit` the embedded previews of a camera raw file until it answers true: first the
/// smallest whose longer side reaches `wanted` pixels, then the others, largest first. The bytes
/// live as long as the call.
void VisitPreviews(const PictureData& data, uint32_t wanted,
                   const std::function<bool(Bytes)>& visit);

/// Seconds since 1970 of "2004:06:29 15:29:33" taken as local time; 0 for blank, zero or impossible
/// dates.
int32_t ParseExifTime(const std::string& text);

}  // namespace vdsto
