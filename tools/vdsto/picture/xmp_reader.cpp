#include "tools/vdsto/picture/xmp_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <exiv2/exiv2.hpp>

#include "tools/vdsto/picture/keywords.h"
#include "tools/vdsto/picture/picture_date.h"
#include "tools/vdsto/picture/reading.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr size_t kMostCharacters = 255;
constexpr int kDeepest = 64;

using Keys = std::initializer_list<const char*>;

const Exiv2::Value* Find(const Exiv2::XmpData& xmp, const char* key) {
  const auto found = xmp.findKey(Exiv2::XmpKey(key));
  return found == xmp.end() || found->count() == 0 ? nullptr : &found->value();
}

/// Of texts in several languages the one that is meant for everybody, else any.
std::string TextOf(const Exiv2::Value& value) {
  const auto* texts = dynamic_cast<const Exiv2::LangAltValue*>(&value);
  if (texts == nullptr) return DecodedText(value.toString());
  const auto main = texts->value_.find("x-default");
  const auto chosen = main != texts->value_.end() ? main : texts->value_.begin();
  return chosen == texts->value_.end() ? std::string() : DecodedText(chosen->second);
}

/// The first of the keys that says something.
std::string Text(const Exiv2::XmpData& xmp, Keys keys) {
  for (const char* key : keys) {
    const Exiv2::Value* value = Find(xmp, key);
    const std::string text = value == nullptr ? std::string() : TextOf(*value);
    if (!text.empty()) return text;
  }
  return {};
}

void Fill(const Exiv2::XmpData& xmp, Keys keys, std::string& text) {
  if (text.empty()) text = Trimmed(FirstCharacters(Text(xmp, keys), kMostCharacters));
}

/// "137", "411/10", "4.5".
std::optional<double> Number(const std::string& text) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  if (end == text.c_str() || !std::isfinite(number)) return std::nullopt;
  if (*end != '/') return number;
  const double denominator = std::strtod(end + 1, nullptr);
  return denominator == 0 || !std::isfinite(denominator) ? std::nullopt
                                                         : std::optional(number / denominator);
}

/// Stars; some programs write percents instead. A rejected picture, -1, is one without stars.
std::optional<uint8_t> Rating(const Exiv2::XmpData& xmp) {
  if (const auto stars = Number(Text(xmp, {"Xmp.xmp.Rating"})))
    return static_cast<uint8_t>(std::clamp(std::round(*stars), 0.0, 5.0));
  const auto percent = Number(Text(xmp, {"Xmp.MicrosoftPhoto.Rating"}));
  if (!percent || *percent <= 0) return std::nullopt;
  return static_cast<uint8_t>(std::clamp(1 + std::floor((*percent + 1) / 25), 1.0, 5.0));
}

template <class Use>
void ForEachItem(const Exiv2::XmpData& xmp, const char* key, Use use) {
  const Exiv2::Value* value = Find(xmp, key);
  if (value == nullptr) return;
  for (long i = 0; i < value->count(); ++i) use(value->toString(i));
}

/// Programs keep marks of their own among the hierarchies.
bool IsMark(const std::string& path) {
  return path.starts_with("darktable|") || path.starts_with("_Digikam_Internal");
}

std::vector<std::string> ReadKeywords(const Exiv2::XmpData& xmp) {
  Keywords keywords;
  ForEachItem(xmp, "Xmp.dc.subject", [&](const std::string& text) { keywords.Add(text); });
  constexpr std::array kHierarchies{std::pair("Xmp.lr.hierarchicalSubject", '|'),
                                    std::pair("Xmp.digiKam.TagsList", '/'),
                                    std::pair("Xmp.MicrosoftPhoto.LastKeywordXMP", '/')};
  for (const auto& [key, separator] : kHierarchies) {
    ForEachItem(xmp, key, [&, separator = separator](const std::string& path) {
      if (!IsMark(path)) keywords.AddLevels(path, separator);
    });
  }
  return keywords.Take();
}

/// "37,33.98N", "37,33,58N" and, from some programs, "37.566".
std::optional<double> Degrees(const std::string& text, char minus, double most) {
  double degrees = 0, unit = 1;
  const char* place = text.c_str();
  for (char* end = nullptr; unit <= 3600; unit *= 60) {
    const double part = std::strtod(place, &end);
    if (end == place) return std::nullopt;
    degrees += part / unit;
    place = end;
    if (*place != ',') break;
    ++place;
  }
  if (*place == minus) degrees = -degrees;
  return std::fabs(degrees) <= most ? std::optional(degrees) : std::nullopt;
}

Place ReadPlace(const Exiv2::XmpData& xmp) {
  Place place;
  place.latitude = Degrees(Text(xmp, {"Xmp.exif.GPSLatitude"}), 'S', 90);
  place.longitude = Degrees(Text(xmp, {"Xmp.exif.GPSLongitude"}), 'W', 180);
  if (!place.latitude || !place.longitude) return {};
  place.altitude = Number(Text(xmp, {"Xmp.exif.GPSAltitude"}));
  if (place.altitude && Text(xmp, {"Xmp.exif.GPSAltitudeRef"}) == "1") *place.altitude *= -1;
  return place;
}

void FillDate(const Exiv2::XmpData& xmp, ExifFacts& facts) {
  constexpr std::array kDates{"Xmp.exif.DateTimeOriginal", "Xmp.photoshop.DateCreated",
                              "Xmp.exif.DateTimeDigitized", "Xmp.xmp.CreateDate"};
  for (const char* key : kDates) {
    if (!facts.shot.empty()) return;
    facts.shot = DateFrom(Text(xmp, {key}));
    if (!facts.shot.empty()) facts.shot_source = DateSource::kXmp;
  }
}

/// Elements within elements; the library's parser takes memory and stack for each level.
bool IsTooDeep(std::string_view packet) {
  int depth = 0;
  for (size_t i = packet.find('<'); i != packet.npos; i = packet.find('<', i + 1)) {
    const size_t end = packet.find('>', i);
    if (end == packet.npos || i + 1 == end) return false;
    const char first = packet[i + 1];
    if (first == '/')
      --depth;
    else if (first != '?' && first != '!' && packet[end - 1] != '/')
      ++depth;
    if (depth > kDeepest) return true;
  }
  return false;
}

}  // namespace

Exiv2::XmpData DecodedXmp(std::string_view packet) {
  Exiv2::XmpData xmp;
  if (packet.empty() || IsTooDeep(packet)) return xmp;
  Attempt([&] {
    if (Exiv2::XmpParser::decode(xmp, std::string(packet)) != 0) xmp.clear();
  });
  return xmp;
}

void FillWords(const Exiv2::XmpData& xmp, PictureMetadata& metadata) {
  PictureWords& words = metadata.words;
  Attempt([&] {
    if (!words.rating) words.rating = Rating(xmp);
    if (words.title.empty()) words.title = Text(xmp, {"Xmp.dc.title"});
    if (words.description.empty()) words.description = Text(xmp, {"Xmp.dc.description"});
    if (words.keywords.empty()) words.keywords = ReadKeywords(xmp);
  });
}

void FillPlace(const Exiv2::XmpData& xmp, PictureMetadata& metadata) {
  if (metadata.place.latitude) return;
  Attempt([&] { metadata.place = ReadPlace(xmp); });
}

void FillCamera(const Exiv2::XmpData& xmp, ExifFacts& facts) {
  Attempt([&] {
    Fill(xmp, {"Xmp.tiff.Make"}, facts.maker);
    Fill(xmp, {"Xmp.tiff.Model"}, facts.camera_model);
    Fill(xmp, {"Xmp.exifEX.LensModel", "Xmp.aux.Lens"}, facts.camera_lens);
    FillDate(xmp, facts);
  });
}

}  // namespace vdsto
