#include "tools/vdsto/picture/picture_metadata.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <exiv2/exiv2.hpp>
#include <limits>
#include <mutex>
#include <string_view>

#include "tools/vdsto/picture/exif_text.h"
#include "tools/vdsto/text/text.h"

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

/// The first of `keys` that is there and has a value.
class Field {
 public:
  Field(const Exiv2::ExifData& exif, std::initializer_list<const char*> keys) {
    for (const char* key : keys) {
      const auto found = exif.findKey(Exiv2::ExifKey(key));
      if (found == exif.end() || found->count() == 0) continue;
      datum_ = &*found;
      return;
    }
  }

  std::string Text(size_t max_characters) const {
    return datum_ ? Trimmed(FirstCharacters(DecodedText(datum_->toString()), max_characters))
                  : std::string();
  }

  Fraction AsFraction() const {
    if (!datum_) return {};
    const auto [numerator, denominator] = datum_->toRational();
    return {numerator, denominator};
  }

  /// The value rounded; 0 when it is not there or not within 0..`max`.
  template <typename Number>
  Number Whole(Number max = std::numeric_limits<Number>::max()) const {
    const Fraction fraction = AsFraction();
    if (!fraction.IsKnown() || fraction.Value() < 0 || fraction.Value() > max) return 0;
    return static_cast<Number>(std::lround(fraction.Value()));
  }

 private:
  const Exiv2::Exifdatum* datum_ = nullptr;
};

/// The version is four ASCII digits in a field of undefined type.
std::string ReadVersion(const Exiv2::ExifData& exif) {
  const auto found = exif.findKey(Exiv2::ExifKey("Exif.Photo.ExifVersion"));
  if (found == exif.end()) return {};
  std::string digits;
  for (long i = 0; i < std::min<long>(static_cast<long>(found->count()), 4); ++i) {
    const long byte = found->toLong(i);
    if (byte < '0' || byte > '9') return {};
    digits += static_cast<char>(byte);
  }
  return digits;
}

/// To print a lens the metadata library asks the system for the user's home in a way that is not
/// safe with several threads.
std::string ReadLens(const Exiv2::ExifData& exif) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  const auto lens = Exiv2::lensName(exif);
  if (lens == exif.end()) return {};
  const std::string name = Trimmed(FirstCharacters(DecodedText(lens->print(&exif)), 64));
  const bool is_unnamed = name.empty() || name == "n/a" || name.starts_with('(') ||
                          std::all_of(name.begin(), name.end(), ::isdigit);
  return is_unnamed ? std::string() : name;
}

uint16_t ReadIso(const Exiv2::ExifData& exif) {
  const auto iso = Exiv2::isoSpeed(exif);
  if (iso == exif.end() || iso->count() == 0) return 0;
  const long value = iso->toLong();
  return value > 0 ? static_cast<uint16_t>(std::min<long>(value, 0xFFFF)) : uint16_t{0};
}

void ReadTexts(const Exiv2::ExifData& exif, ExifFacts& facts) {
  facts.maker = Field(exif, {"Exif.Image.Make"}).Text(32);
  facts.camera_model = Field(exif, {"Exif.Image.Model"}).Text(64);
  facts.model = Trimmed(FirstCharacters(facts.camera_model, 32));
  facts.shooter = Field(exif, {"Exif.Image.Artist", "Exif.Photo.CameraOwnerName"}).Text(32);
  facts.camera_lens = ReadLens(exif);
  facts.version = ReadVersion(exif);
}

void ReadNumbers(const Exiv2::ExifData& exif, ExifFacts& facts) {
  facts.exposure = ExposureText(
      Field(exif, {"Exif.Photo.ExposureTime", "Exif.Image.ExposureTime"}).AsFraction());
  facts.f_number =
      FNumberText(Field(exif, {"Exif.Photo.FNumber", "Exif.Image.FNumber"}).AsFraction());
  facts.exposure_bias = ExposureBiasText(
      Field(exif, {"Exif.Photo.ExposureBiasValue", "Exif.Image.ExposureBiasValue"}).AsFraction());
  facts.focal_length =
      Field(exif, {"Exif.Photo.FocalLength", "Exif.Image.FocalLength"}).Whole<uint16_t>();
  facts.focal_length_35 = Field(exif, {"Exif.Photo.FocalLengthIn35mmFilm"}).Whole<uint16_t>();
  facts.orientation = Field(exif, {"Exif.Image.Orientation"}).Whole<uint8_t>(8);
  facts.metering_mode =
      Field(exif, {"Exif.Photo.MeteringMode", "Exif.Image.MeteringMode"}).Whole<uint8_t>();
  facts.flash = Field(exif, {"Exif.Photo.Flash", "Exif.Image.Flash"}).Whole<uint8_t>();
  facts.iso = ReadIso(exif);
}

/// Only the moment of shooting counts: the dates of digitising and of the last edit say nothing
/// about it.
int32_t ReadShootTime(const Exiv2::ExifData& exif) {
  return ParseExifTime(
      Field(exif, {"Exif.Photo.DateTimeOriginal", "Exif.Image.DateTimeOriginal"}).Text(32));
}

/// One group of fields after the other, so that a field that the library chokes on costs only its
/// group.
ExifFacts ReadExif(const Exiv2::ExifData& exif) {
  ExifFacts facts;
  const auto attempt = [](auto read) {
    try {
      read();
    } catch (const std::exception&) {
    }
  };
  attempt([&] { ReadTexts(exif, facts); });
  attempt([&] { ReadNumbers(exif, facts); });
  attempt([&] { facts.shoot_time = ReadShootTime(exif); });
  return facts;
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

}  // namespace

void InitialiseMetadata() {
  static std::mutex xmp_mutex;
  Exiv2::XmpParser::initialize(LockXmp, &xmp_mutex);
  Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
#ifdef EXV_ENABLE_BMFF
  Exiv2::enableBMFF(true);
#endif
}

PictureMetadata ReadMetadata(const PictureData& data) {
  PictureMetadata metadata;
  try {
    const auto image = OpenImage(data);
    try {
      image->readMetadata();
    } catch (const std::exception&) {
    }
    metadata.exif =
        ReadExif(image->exifData().empty() ? RescueExif(data.bytes) : image->exifData());
    metadata.width = static_cast<uint32_t>(std::max<int64_t>(0, image->pixelWidth()));
    metadata.height = static_cast<uint32_t>(std::max<int64_t>(0, image->pixelHeight()));
  } catch (const std::exception&) {
    metadata.exif = ReadExif(RescueExif(data.bytes));
  }
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

int32_t ParseExifTime(const std::string& text) {
  std::tm time{};
  // Some cameras separate the date with '-' or '/', some put a 'T' before the time.
  if (std::sscanf(text.c_str(), "%4d%*1[:/-]%2d%*1[:/-]%2d%*1[ T]%2d:%2d:%2d", &time.tm_year,
                  &time.tm_mon, &time.tm_mday, &time.tm_hour, &time.tm_min, &time.tm_sec) != 6) {
    return 0;
  }
  if (time.tm_mon < 1 || time.tm_mon > 12 || time.tm_mday < 1 || time.tm_mday > 31 ||
      time.tm_hour > 23 || time.tm_min > 59 || time.tm_sec > 60) {
    return 0;
  }
  time.tm_year -= 1900;
  time.tm_mon -= 1;
  time.tm_isdst = -1;
  const std::time_t seconds = std::mktime(&time);
  return seconds > 0 && seconds <= std::numeric_limits<int32_t>::max()
             ? static_cast<int32_t>(seconds)
             : 0;
}

}  // namespace vdsto
