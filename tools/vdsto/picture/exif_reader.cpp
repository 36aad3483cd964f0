#include "tools/vdsto/picture/exif_reader.h"

#include <algorithm>
#include <cmath>
#include <exiv2/exiv2.hpp>
#include <limits>
#include <mutex>

#include "tools/vdsto/picture/exif_text.h"
#include "tools/vdsto/picture/picture_date.h"
#include "tools/vdsto/picture/reading.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

/// A name of a camera or a person is not longer.
constexpr size_t kMostCharacters = 255;

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

  std::string Text() const {
    return datum_ ? Trimmed(FirstCharacters(DecodedText(datum_->toString()), kMostCharacters))
                  : std::string();
  }

  /// One of several numbers; 0 when it is unknown, which cameras write as 0/0.
  double Number(long index) const {
    if (!datum_ || index >= static_cast<long>(datum_->count())) return 0;
    const auto [numerator, denominator] = datum_->toRational(index);
    return denominator == 0 ? 0 : static_cast<double>(numerator) / denominator;
  }

  bool IsKnown() const { return AsFraction().IsKnown(); }

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
  const std::string name =
      Trimmed(FirstCharacters(DecodedText(lens->print(&exif)), kMostCharacters));
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
  facts.maker = Field(exif, {"Exif.Image.Make"}).Text();
  facts.camera_model = Field(exif, {"Exif.Image.Model"}).Text();
  facts.shooter = Field(exif, {"Exif.Image.Artist", "Exif.Photo.CameraOwnerName"}).Text();
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

/// Blank and impossible dates are passed over: the next one may be real.
void ReadDate(const Exiv2::ExifData& exif, ExifFacts& facts) {
  const struct {
    DateSource source;
    std::initializer_list<const char*> keys;
  } kDates[] = {
      {DateSource::kOriginal, {"Exif.Photo.DateTimeOriginal", "Exif.Image.DateTimeOriginal"}},
      {DateSource::kDigitized, {"Exif.Photo.DateTimeDigitized"}},
      {DateSource::kDateTime, {"Exif.Image.DateTime"}}};
  for (const auto& date : kDates) {
    for (const char* key : date.keys) {
      facts.shot = DateFrom(Field(exif, {key}).Text());
      facts.shot_source = date.source;
      if (!facts.shot.empty()) return;
    }
  }
  facts.shot_source = DateSource::kNone;
}

/// Degrees, minutes and seconds; `minus` is the letter of the south or the west.
std::optional<double> ReadDegrees(const Exiv2::ExifData& exif, const char* key, const char* half,
                                  char minus, double most) {
  const Field field(exif, {key});
  if (!field.IsKnown()) return std::nullopt;
  const double degrees = field.Number(0) + field.Number(1) / 60 + field.Number(2) / 3600;
  if (!(degrees >= 0 && degrees <= most)) return std::nullopt;
  return Field(exif, {half}).Text().starts_with(minus) ? -degrees : degrees;
}

void ReadPlace(const Exiv2::ExifData& exif, Place& place) {
  const auto latitude =
      ReadDegrees(exif, "Exif.GPSInfo.GPSLatitude", "Exif.GPSInfo.GPSLatitudeRef", 'S', 90);
  const auto longitude =
      ReadDegrees(exif, "Exif.GPSInfo.GPSLongitude", "Exif.GPSInfo.GPSLongitudeRef", 'W', 180);
  if (!latitude || !longitude) return;
  place = {latitude, longitude, std::nullopt};
  const Field altitude(exif, {"Exif.GPSInfo.GPSAltitude"});
  if (!altitude.IsKnown()) return;
  const bool is_below = Field(exif, {"Exif.GPSInfo.GPSAltitudeRef"}).Whole<uint8_t>() == 1;
  place.altitude = is_below ? -altitude.Number(0) : altitude.Number(0);
}

}  // namespace

void ReadExif(const Exiv2::ExifData& exif, PictureMetadata& metadata) {
  if (exif.empty()) return;
  Attempt([&] { ReadTexts(exif, metadata.exif); });
  Attempt([&] { ReadNumbers(exif, metadata.exif); });
  Attempt([&] { ReadDate(exif, metadata.exif); });
  if (!metadata.place.latitude) Attempt([&] { ReadPlace(exif, metadata.place); });
}

}  // namespace vdsto
