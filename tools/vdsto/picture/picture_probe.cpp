#include "tools/vdsto/picture/picture_probe.h"

#include <algorithm>
#include <system_error>
#include <tuple>
#include <utility>

#include "tools/vdsto/picture/memory_budget.h"
#include "tools/vdsto/picture/picture_decoder.h"
#include "tools/vdsto/picture/size_limits.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

/// The part of the file that holds the picture proper.
PictureData DataOf(const SourceFile& file, PictureFormat format) {
  PictureData data{file.InMemory() ? file.Contents() : Bytes(), file.Path()};
  if (format == PictureFormat::kWrappedJpeg && data.InMemory()) {
    data.bytes = data.bytes.subspan(WrappedJpegOffset(file.Head()));
  }
  return data;
}

/// A raw file is what its preview is, which lies as the sensor saw it; without one, what can be
/// read of it as the TIFF file that most of them are.
DecodedPicture DecodeRaw(const PictureData& data, int orientation) {
  DecodedPicture best;
  VisitPreviews(data, kThumbnailSide, [&](Bytes preview) {
    DecodedPicture decoded = DecodePicture({preview, {}}, DetectFormat(preview, ""), orientation);
    const bool is_good = decoded.state == PixelState::kGood;
    if (best.state == PixelState::kUnreadable || is_good) best = std::move(decoded);
    return is_good;
  });
  if (best.state != PixelState::kUnreadable) return best;
  return DecodePicture(data, PictureFormat::kTiff, orientation);
}

DecodedPicture Decode(const PictureData& data, PictureFormat format, int orientation) {
  switch (format) {
    case PictureFormat::kRaw:
      return DecodeRaw(data, orientation);
    case PictureFormat::kWrappedJpeg:
      return DecodePicture(data, PictureFormat::kJpeg);
    case PictureFormat::kUnknown:
      return {};
    default:
      return DecodePicture(data, format);
  }
}

/// Cameras put a small picture into the large one.
void ShowSmallPicture(const PictureData& data, int orientation, DecodedPicture& decoded) {
  VisitPreviews(data, kThumbnailSide, [&](Bytes preview) {
    decoded.thumbnail =
        DecodePicture({preview, {}}, DetectFormat(preview, ""), orientation).thumbnail;
    return !decoded.thumbnail.empty();
  });
}

/// The decoder's size is the one that counts, except where it decodes something else than what is
/// stored.
void SetSize(const PictureMetadata& metadata, const DecodedPicture& decoded, PictureFacts& facts) {
  const bool metadata_know = metadata.width != 0 || metadata.height != 0;
  const bool is_preview = facts.format == PictureFormat::kRaw && metadata_know;
  if (decoded.width == 0 || is_preview) {
    facts.width = metadata.width;
    facts.height = metadata.height;
    return;
  }
  facts.width = decoded.width;
  facts.height = decoded.height;
  const bool was_turned = facts.format == PictureFormat::kHeif && metadata.exif.orientation >= 5;
  if (was_turned) std::swap(facts.width, facts.height);
}

std::pair<PictureState, std::string> JudgeTooLarge(const DecodedPicture& decoded) {
  const std::string why = decoded.state == PixelState::kTooManyPixels
                              ? "too many pixels to decode"
                              : "too large to be shown: that would take about " +
                                    HumanSize(decoded.memory) +
                                    " of memory, far more than its file promises";
  return decoded.thumbnail.empty()
             ? std::pair(PictureState::kBroken, why)
             : std::pair(PictureState::kDamaged, why + "; the small picture in it is shown");
}

std::pair<PictureState, std::string> Judge(const DecodedPicture& decoded,
                                           const PictureFacts& facts) {
  if (facts.stamp.size == 0) return {PictureState::kBroken, "the file is empty"};
  if (facts.format == PictureFormat::kUnknown) {
    return {PictureState::kBroken, "the contents are of no picture format that can be read"};
  }
  const std::string name(NameOf(facts.format));
  switch (decoded.state) {
    case PixelState::kGood:
      return {PictureState::kGood, {}};
    case PixelState::kDamaged:
      return {PictureState::kDamaged, name + " data is damaged or cut off; shown in part"};
    case PixelState::kTooLarge:
    case PixelState::kTooManyPixels:
      return JudgeTooLarge(decoded);
    case PixelState::kUnreadable:
      break;
  }
  if (facts.format == PictureFormat::kRaw)
    return {PictureState::kBroken, "no preview that can be read"};
  return {PictureState::kBroken,
          decoded.width ? name + " data cannot be decoded" : "not a valid " + name + " file"};
}

std::string ReadSidecar(const std::string& path, PictureFacts& facts) {
  if (path.empty()) return {};
  try {
    const SourceFile file(path);
    facts.sidecar = file.Stamp();
    std::string packet(std::min<uint64_t>(file.Stamp().size, kMostMetadata), '\0');
    packet.resize(file.ReadAt(std::as_writable_bytes(std::span(packet)), 0));
    if (file.Stamp().size <= kMostMetadata) return packet;
    facts.sidecar_problem = "larger than any real sidecar";
  } catch (const std::system_error& error) {
    facts.sidecar_problem = error.code().message();
  }
  return {};
}

}  // namespace

void InitialiseProbing() {
  InitialiseDecoder();
  InitialiseMetadata();
}

PictureFacts ProbePicture(const std::string& path, const std::string& sidecar) {
  SourceFile file(path);
  PictureFacts facts;
  facts.stamp = file.Stamp();
  facts.format = DetectFormat(file.Head(), path.substr(path.rfind('/') + 1));
  if (!facts.IsPicture()) return facts;
  static MemoryBudget files(SourceFile::kLargestInMemory);
  const bool is_for_memory = file.Stamp().size <= SourceFile::kLargestInMemory;
  const MemoryBudget::Share share(files, is_for_memory ? file.Stamp().size : 0);
  file.ReadAll();
  facts.md5 = file.Md5();
  const PictureData data = DataOf(file, facts.format);
  const bool is_safe = IsSafeToRead(file, facts.format);
  const bool has_sane_xmp = is_safe && HasSaneXmp(data.bytes, facts.format);
  PictureMetadata metadata =
      ReadMetadata(has_sane_xmp ? data : PictureData(), ReadSidecar(sidecar, facts));
  DecodedPicture decoded;
  if (is_safe) decoded = Decode(data, facts.format, metadata.exif.orientation);
  const bool is_too_large =
      decoded.state == PixelState::kTooLarge || decoded.state == PixelState::kTooManyPixels;
  if (is_too_large && has_sane_xmp) ShowSmallPicture(data, metadata.exif.orientation, decoded);
  SetSize(metadata, decoded, facts);
  facts.exif = std::move(metadata.exif);
  facts.place = metadata.place;
  facts.words = std::move(metadata.words);
  std::tie(facts.state, facts.problem) = Judge(decoded, facts);
  facts.thumbnail = std::move(decoded.thumbnail);
  return facts;
}

}  // namespace vdsto
