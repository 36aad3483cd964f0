#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vdsto/picture/picture_data.h"

namespace vdsto {

/// Where a picture's date was found. The numbers stand in files.
enum class DateSource : uint8_t {
  kNone = 0,
  kOriginal = 1,   ///< when the picture was taken, says its camera
  kDigitized = 2,  ///< when it was digitized
  kDateTime = 3,   ///< when a program last changed it
  kXmp = 4,
  kIptc = 5,
  kFile = 6,  ///< the file's last-write time: a guess
};

/// What a camera wrote about a picture, in the form of the photo record. Texts are as long as they
/// are. Empty or 0: not known.
struct ExifFacts {
  std::string version;  ///< "0220"
  std::string maker;
  std::string camera_model;
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
  std::string shot;  ///< "2004-06-29 15:29:33", as the clock showed it
  DateSource shot_source = DateSource::kNone;
};

/// Where a picture was taken: degrees, north and east positive, and metres above the sea.
struct Place {
  std::optional<double> latitude;
  std::optional<double> longitude;
  std::optional<double> altitude;

  bool operator==(const Place&) const = default;
};

/// What people wrote about a picture. Empty: nothing.
struct PictureWords {
  std::optional<uint8_t> rating;  ///< 0..5 stars
  std::string title;
  std::string description;
  std::vector<std::string> keywords;  ///< each once; no blanks around them and no commas in them

  bool operator==(const PictureWords&) const = default;
};

struct PictureMetadata {
  ExifFacts exif;
  Place place;
  PictureWords words;
  uint32_t width = 0;  ///< stored pixels, before any turning; 0 when the metadata do not tell
  uint32_t height = 0;
};

/// Prepares the metadata library for use by several threads. Once per process, before the first
/// read.
void InitialiseMetadata();

/// Reads what there is. What the camera wrote comes before XMP, and XMP before IPTC; a text or
/// place of `sidecar`, the packet of an XMP file beside the picture, comes before all in the
/// picture. Never throws: a damaged file yields what could be read before the damage.
PictureMetadata ReadMetadata(const PictureData& data, std::string_view sidecar = {});

/// Shows `visit` the embedded previews of a camera raw file until it answers true: first the
/// smallest whose longer side reaches `wanted` pixels, then the others, largest first. The bytes
/// live as long as the call.
void VisitPreviews(const PictureData& data, uint32_t wanted,
                   const std::function<bool(Bytes)>& visit);

}  // namespace vdsto
