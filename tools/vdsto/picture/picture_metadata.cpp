#include "tools/vdsto/picture/picture_metadata.h"

#include <algorithm>
#include <ctime>
#include <exiv2/exiv2.hpp>
#include <memory>
#include <mutex>
#include <string_view>

#include "tools/vdsto/picture/exif_reader.h"
#include "tools/vdsto/picture/iptc_reader.h"
#include "tools/vdsto/picture/reading.h"
#include "tools/vdsto/picture/xmp_reader.h"
#include "tools/vdsto/text/clock_time.h"

namespace vdsto {
namespace {

using namespace std::string_view_literals;

/// How far into a file that the library refuses a block of camera data is looked for.
constexpr size_t kRescueWindow = 1 << 20;

void LockXmp(void* mutex, bool lock) {
  auto& xmp_mutex = *static_cast<std::mutex*>(mutex);
  lock ? xmp_mutex.lock() : xmp_mutex.unlock();
}

const Exiv2::byte* Raw(Bytes bytes) {
  return reinterpret_cast<const Exiv2::byte*>(bytes.data());
}

auto OpenImage(const PictureData& data) {
  return data.InMemory()
             ? Exiv2::ImageFactory::open(Raw(data.bytes), static_cast<long>(data.bytes.size()))
             : Exiv2::ImageFactory::open(data.path);
}

/// Finds the camera's data in a file whose structure is damaged.
Exiv2::ExifData RescueExif(Bytes bytes) {
  Exiv2::ExifData exif;
  const std::string_view window(reinterpret_cast<const char*>(bytes.data()),
                                std::min(bytes.size(), kRescueWindow));
  const size_t marker = window.find("Exif\0\0"sv);
  if (marker == std::string_view::npos) return exif;
  const Bytes block =
      bytes.subspan(marker + 6, std::min<size_t>(bytes.size() - marker - 6, 0xFFFF));
  try {
    Exiv2::ExifParser::decode(exif, Raw(block), static_cast<uint32_t>(block.size()));
  } catch (const std::exception&) {
    exif.clear();
  }
  return exif;
}

template <typename Properties>
void PutBestFirst(std::vector<Properties>& previews, uint32_t wanted) {
  const auto longer_side = [](const Properties& p) { return std::max(p.width_, p.height_); };
  std::sort(previews.begin(), previews.end(),
            [&](const auto& a, const auto& b) { return longer_side(a) > longer_side(b); });
  const auto too_small = std::find_if(previews.begin(), previews.end(),
                                      [&](const auto& p) { return longer_side(p) < wanted; });
  if (too_small != previews.begin()) std::rotate(previews.begin(), too_small - 1, too_small);
}

/// That format has seconds since 1970 of the camera's clock, which the library takes for seconds of
/// ours.
void UndoZone(const std::string& mime_type, std::string& shot) {
  if (mime_type != "image/x-canon-crw" || shot.empty()) return;
  const std::time_t seconds = TimeOfClock(shot);
  std::tm time{};
  char text[32];
  gmtime_r(&seconds, &time);
  shot.assign(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &time));
}

void ReadImage(const PictureData& data, PictureMetadata& metadata) {
  if (!data.InMemory() && data.path.empty()) return;
  std::unique_ptr<Exiv2::Image> image;
  Attempt([&] {
    image.reset(OpenImage(data).release());
    image->readMetadata();
  });
  if (!image || image->exifData().empty()) ReadExif(RescueExif(data.bytes), metadata);
  if (!image) return;
  ReadExif(image->exifData(), metadata);
  UndoZone(image->mimeType(), metadata.exif.shot);
  FillWords(image->xmpData(), metadata);
  FillPlace(image->xmpData(), metadata);
  FillCamera(image->xmpData(), metadata.exif);
  FillFromIptc(image->iptcData(), metadata);
  metadata.width = static_cast<uint32_t>(std::max<int64_t>(0, image->pixelWidth()));
  metadata.height = static_cast<uint32_t>(std::max<int64_t>(0, image->pixelHeight()));
}

}  // namespace

void InitialiseMetadata() {
  static std::mutex xmp_mutex;
  Exiv2::XmpParser::initialize(LockXmp, &xmp_mutex);
  Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
#ifdef EXV_ENABLE_BMFF
  Exiv2::enableBMFF(true);
#endif
}

PictureMetadata ReadMetadata(const PictureData& data, std::string_view sidecar) {
  PictureMetadata metadata;
  const Exiv2::XmpData beside = DecodedXmp(sidecar);
  FillWords(beside, metadata);
  FillPlace(beside, metadata);
  Attempt([&] { ReadImage(data, metadata); });
  FillCamera(beside, metadata.exif);
  return metadata;
}

void VisitPreviews(const PictureData& data, uint32_t wanted,
                   const std::function<bool(Bytes)>& visit) {
  try {
    const auto image = OpenImage(data);
    image->readMetadata();
    const Exiv2::PreviewManager manager(*image);
    auto properties = manager.getPreviewProperties();
    PutBestFirst(properties, wanted);
    for (const auto& property : properties) {
      const auto preview = manager.getPreviewImage(property);
      if (visit(Bytes(reinterpret_cast<const std::byte*>(preview.pData()), preview.size()))) return;
    }
  } catch (const std::exception&) {
  }
}

}  // namespace vdsto
