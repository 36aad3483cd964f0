#include "tools/vdsto/picture/iptc_reader.h"

#include <exiv2/exiv2.hpp>

#include "tools/vdsto/picture/keywords.h"
#include "tools/vdsto/picture/picture_date.h"
#include "tools/vdsto/picture/reading.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

std::string Raw(const Exiv2::IptcData& iptc, const char* key) {
  const auto found = iptc.findKey(Exiv2::IptcKey(key));
  return found == iptc.end() ? std::string() : found->toString();
}

/// What names UTF-8 and is none was written by a program that lies, so all texts are guessed alike.
std::string Text(const Exiv2::IptcData& iptc, std::initializer_list<const char*> keys) {
  for (const char* key : keys) {
    const std::string text = DecodedText(Raw(iptc, key));
    if (!text.empty()) return text;
  }
  return {};
}

std::vector<std::string> ReadKeywords(const Exiv2::IptcData& iptc) {
  Keywords keywords;
  for (const Exiv2::Iptcdatum& datum : iptc) {
    if (datum.key() == "Iptc.Application2.Keywords") keywords.Add(DecodedText(datum.toString()));
  }
  return keywords.Take();
}

/// A month or day that nobody knows is 00.
std::string ReadDate(const Exiv2::IptcData& iptc) {
  std::string day = Raw(iptc, "Iptc.Application2.DateCreated");
  // The library leaves a date with such a part as it stands.
  if (day.size() == 8 && day.find('-') == std::string::npos) day.insert(6, "-").insert(4, "-");
  const std::string known = day.substr(0, day.find("-00"));
  if (known != day) return DateFrom(known);
  const std::string with_time = DateFrom(day + "T" + Raw(iptc, "Iptc.Application2.TimeCreated"));
  return with_time.empty() ? DateFrom(day) : with_time;
}

}  // namespace

void FillFromIptc(const Exiv2::IptcData& iptc, PictureMetadata& metadata) {
  if (iptc.empty()) return;
  PictureWords& words = metadata.words;
  Attempt([&] {
    if (words.title.empty())
      words.title = Text(iptc, {"Iptc.Application2.ObjectName", "Iptc.Application2.Headline"});
    if (words.description.empty()) words.description = Text(iptc, {"Iptc.Application2.Caption"});
    if (words.keywords.empty()) words.keywords = ReadKeywords(iptc);
    if (!metadata.exif.shot.empty()) return;
    metadata.exif.shot = ReadDate(iptc);
    if (!metadata.exif.shot.empty()) metadata.exif.shot_source = DateSource::kIptc;
  });
}

}  // namespace vdsto
