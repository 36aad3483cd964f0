#include "tools/vdsto/picture/picture_format.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

using namespace std::string_view_literals;

struct Signature {
  size_t offset;
  std::string_view text;
  PictureFormat format;
};

constexpr std::array kSignatures{
    Signature{0, "\xFF\xD8\xFF"sv, PictureFormat::kJpeg},
    Signature{0, "\x89PNG\r\n\x1A\n"sv, PictureFormat::kPng},
    Signature{0, "GIF87a"sv, PictureFormat::kGif},
    Signature{0, "GIF89a"sv, PictureFormat::kGif},
    Signature{0, "8BPS"sv, PictureFormat::kPsd},
    Signature{8, "WEBPVP8"sv, PictureFormat::kWebp},
    Signature{6, "HEAPCCDR"sv, PictureFormat::kRaw},         // CRW
    Signature{0, "FUJIFILMCCD-RAW"sv, PictureFormat::kRaw},  // RAF
    Signature{0, "IIRO"sv, PictureFormat::kRaw},             // ORF
    Signature{0, "IIRS"sv, PictureFormat::kRaw},
    Signature{0, "MMOR"sv, PictureFormat::kRaw},
    Signature{0, "IIU\0"sv, PictureFormat::kRaw},  // RW2
    Signature{0, "\0MRM"sv, PictureFormat::kRaw},  // MRW
    Signature{4, "ftypcrx "sv, PictureFormat::kRaw},
    Signature{8, "CR\x02"sv, PictureFormat::kRaw},  // CR2, inside a TIFF header
};

constexpr std::array kTiffHeads{"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv};
constexpr std::array kHeifBrands{"heic"sv, "heix"sv, "heim"sv, "heis"sv, "hevc"sv,
                                 "hevx"sv, "mif1"sv, "msf1"sv, "avif"sv, "avis"sv};

constexpr std::array kRawExtensions{"3fr"sv, "arw"sv, "cr2"sv, "cr3"sv, "crw"sv, "dcr"sv, "dng"sv,
                                    "erf"sv, "gpr"sv, "k25"sv, "kdc"sv, "mef"sv, "mos"sv, "mrw"sv,
                                    "nef"sv, "nrw"sv, "orf"sv, "pef"sv, "raf"sv, "rw2"sv, "rwl"sv,
                                    "sr2"sv, "srf"sv, "srw"sv, "x3f"sv};
constexpr std::array kOtherExtensions{
    "avif"sv, "bmp"sv,  "cam"sv, "dib"sv, "fpx"sv, "gif"sv, "heic"sv, "heif"sv, "hif"sv,  "jfif"sv,
    "jpe"sv,  "jpeg"sv, "jpg"sv, "png"sv, "psb"sv, "psd"sv, "thm"sv,  "tif"sv,  "tiff"sv, "webp"sv};

template <typename List, typename Item>
bool Contains(const List& list, const Item& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

std::string_view AsText(Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool LooksLikeBmp(std::string_view head) {
  if (!head.starts_with("BM") || head.size() < 18) return false;
  constexpr std::array<uint32_t, 8> kInfoSizes{12, 16, 40, 52, 56, 64, 108, 124};
  uint32_t info_size = 0;
  for (size_t i = 4; i-- > 0;)
    info_size = info_size << 8 | static_cast<unsigned char>(head[14 + i]);
  return Contains(kInfoSizes, info_size);
}

bool LooksLikeTiff(std::string_view head) {
  return head.size() >= 8 && Contains(kTiffHeads, head.substr(0, 4));
}

bool LooksLikeHeif(std::string_view head) {
  return head.size() >= 16 && head.substr(4, 4) == "ftyp" &&
         Contains(kHeifBrands, head.substr(8, 4));
}

PictureFormat FromContents(std::string_view head, std::string_view extension) {
  for (const Signature& signature : kSignatures) {
    if (head.size() >= signature.offset &&
        head.substr(signature.offset).starts_with(signature.text)) {
      return signature.format;
    }
  }
  if (LooksLikeTiff(head))
    return Contains(kRawExtensions, extension) ? PictureFormat::kRaw : PictureFormat::kTiff;
  if (LooksLikeHeif(head)) return PictureFormat::kHeif;
  if (LooksLikeBmp(head)) return PictureFormat::kBmp;
  return PictureFormat::kNone;
}

}  // namespace

std::string_view NameOf(PictureFormat format) {
  switch (format) {
    case PictureFormat::kNone:
      return "none";
    case PictureFormat::kJpeg:
      return "JPEG";
    case PictureFormat::kPng:
      return "PNG";
    case PictureFormat::kGif:
      return "GIF";
    case PictureFormat::kTiff:
      return "TIFF";
    case PictureFormat::kBmp:
      return "BMP";
    case PictureFormat::kWebp:
      return "WebP";
    case PictureFormat::kHeif:
      return "HEIF";
    case PictureFormat::kPsd:
      return "PSD";
    case PictureFormat::kRaw:
      return "camera raw";
    case PictureFormat::kWrappedJpeg:
      return "JPEG";
    case PictureFormat::kUnknown:
      break;
  }
  return "unknown";
}

std::string ExtensionOf(std::string_view file_name) {
  const size_t dot = file_name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? std::string()
                                                   : AsciiLower(file_name.substr(dot + 1));
}

bool IsRawExtension(std::string_view extension) {
  return Contains(kRawExtensions, extension);
}

size_t WrappedJpegOffset(Bytes head) {
  return AsText(head).find("\xFF\xD8\xFF");
}

PictureFormat DetectFormat(Bytes head, std::string_view file_name) {
  const std::string extension = ExtensionOf(file_name);
  const PictureFormat format = FromContents(AsText(head), extension);
  if (format != PictureFormat::kNone) return format;
  if (extension == "cam" && WrappedJpegOffset(head) != std::string_view::npos)
    return PictureFormat::kWrappedJpeg;
  if (Contains(kRawExtensions, extension) || Contains(kOtherExtensions, extension))
    return PictureFormat::kUnknown;
  return PictureFormat::kNone;
}

}  // namespace vdsto
