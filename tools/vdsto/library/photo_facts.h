#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/vdsto/picture/picture_probe.h"
#include "tools/vdsto/picture/source_file.h"

namespace vdsto {

/// Where a photo's date was found. The numbers stand in the file.
enum class DateSource : uint8_t {
  kNone = 0,
  kOriginal = 1,   ///< when the picture was taken, says its camera
  kDigitized = 2,  ///< when it was digitized
  kDateTime = 3,   ///< when a program last changed it
  kXmp = 4,
  kIptc = 5,
  kFile = 6,  ///< the file's last-write time: a guess
};

/// "original", "digitized" ...; empty for kNone.
std::string_view NameOf(DateSource source);
/// "good", "damaged", "broken".
std::string_view NameOf(PictureState state);

/// Where a picture was taken: degrees, north and east positive, and metres above the sea.
struct Place {
  std::optional<double> latitude;
  std::optional<double> longitude;
  std::optional<double> altitude;

  bool operator==(const Place&) const = default;
};

/// What is known of a photo beside its row in the catalogue, which has no columns for it.
struct PhotoFacts {
  std::string guid;
  std::string path;  ///< of its original, absolute, byte for byte; of any length
  FileStamp stamp;
  std::string md5;  ///< of the original's contents
  PictureState state = PictureState::kGood;
  std::string problem;  ///< why the state is not good
  Place place;
  std::string maker;  ///< of any length, like the two that follow
  std::string model;
  std::string lens;
  DateSource date_source = DateSource::kNone;
  int32_t gone_since =
      0;  ///< when the original was first missed, seconds since 1970; 0: it is there

  bool operator==(const PhotoFacts&) const = default;
};

/// A folder that is imported, or on which a disk below one is mounted.
struct ImportRoot {
  std::string path;    ///< byte for byte
  std::string device;  ///< names the file system that was there, to tell an unmounted disk

  bool operator==(const ImportRoot&) const = default;
};

}  // namespace vdsto
