#pragma once
#include <string_view>

#include "tools/vdsto/picture/source_file.h"

namespace vdsto {

/// How a picture's pixels are got at.
enum class PictureFormat {
  kNone,  ///< no picture at all
  kJpeg,
  kPng,
  kGif,
  kTiff,
  kBmp,
  kWebp,
  kHeif,  ///< HEIC, HEIF and AVIF: pixels come out already turned upright
  kPsd,
  kRaw,          ///< camera raw: shown through its embedded preview
  kWrappedJpeg,  ///< a JPEG behind a short header of the camera's own
  kUnknown,      ///< called a picture by its name, but nothing we recognise
};

/// The short name for summaries and `stat`: "JPEG", "raw" ...
std::string_view NameOf(PictureFormat format);

/// Contents decide first; a file whose contents are not recognised is a picture (kUnknown) when its
/// name says so.
PictureFormat DetectFormat(Bytes head, std::string_view file_name);

/// "jpg" for "IMG_1.JPG": the extension in lower case, without the dot; empty when there is none.
std::string ExtensionOf(std::string_view file_name);
/// Is this, in lower case, an extension that only camera raw files have?
bool IsRawExtension(std::string_view extension);

/// Where the JPEG of a kWrappedJpeg starts.
size_t WrappedJpegOffset(Bytes head);

}  // namespace vdsto
