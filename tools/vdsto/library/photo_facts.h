#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/vdsto/picture/picture_probe.h"
#include "tools/vdsto/picture/source_file.h"

namespace vdsto {

/// "original", "digitized" ...; empty for kNone.
std::string_view NameOf(DateSource source);
/// "good", "damaged", "broken".
std::string_view NameOf(PictureState state);

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
  uint32_t place_id = 0;  ///< of the ImportPlace that the original was last seen on; 0: not known
  int32_t gone_since =
      0;               ///< when the original was first missed, seconds since 1970; 0: it is there
  uint32_t width = 0;  ///< stored pixels, also of a picture that cannot be shown
  uint32_t height = 0;
  FileStamp sidecar;   ///< of the XMP file beside the original; all 0 without one
  PictureWords words;  ///< as the last import read them

  bool operator==(const PhotoFacts&) const = default;
};

/// A folder that was imported, or on which a disk was mounted below one, and the disk that was
/// there then. Several disks may have been in one place.
struct ImportPlace {
  uint32_t id = 0;
  std::string path;    ///< byte for byte
  std::string device;  ///< names the disk: see DeviceOf

  bool operator==(const ImportPlace&) const = default;
};

/// What an import came upon and could not read, so that the catalogue has no photo of it, or an old
/// state.
struct UnreadableFile {
  std::string path;  ///< of a file or folder, byte for byte
  std::string reason;

  bool operator==(const UnreadableFile&) const = default;
};

}  // namespace vdsto
