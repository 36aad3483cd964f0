#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>

#include "import_fixture.h"
#include "tools/vdsto/picture/picture_probe.h"

namespace {

using namespace vdsto_test;
using nlohmann::json;
using testing::ElementsAre;
using vdsto::DateSource;

std::string Number(uint32_t value, int bytes, bool big = false) {
  std::string text;
  for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> 8 * (big ? bytes - 1 - i : i));
  return text;
}

struct Tag {
  uint32_t id, type, count;
  std::string data;
};

/// A directory of tags as it lies `at` bytes into the block, little-endian; the data follow it.
std::string Directory(const std::vector<Tag>& tags, size_t at) {
  std::string entries, data;
  for (const Tag& tag : tags) {
    const size_t place = at + 6 + 12 * tags.size() + data.size();
    entries += Number(tag.id, 2) + Number(tag.type, 2) + Number(tag.count, 4);
    const bool fits = tag.data.size() <= 4;
    entries += fits ? tag.data + std::string(4 - tag.data.size(), '\0')
                    : Number(static_cast<uint32_t>(place), 4);
    if (!fits) data += tag.data;
  }
  return Number(static_cast<uint32_t>(tags.size()), 2) + entries + Number(0, 4) + data;
}

Tag Text(uint32_t id, const std::string& text) {
  return {id, 2, static_cast<uint32_t>(text.size() + 1), text + '\0'};
}

Tag Fractions(uint32_t id, const std::vector<uint32_t>& parts) {
  std::string data;
  for (const uint32_t part : parts) data += Number(part, 4);
  return {id, 5, static_cast<uint32_t>(parts.size() / 2), data};
}

/// The first directory, and two that tags of it point to.
std::string Exif(std::vector<Tag> main, const std::vector<Tag>& photo,
                 const std::vector<Tag>& place) {
  main.push_back({0x8769, 4, 1, Number(1000, 4)});
  main.push_back({0x8825, 4, 1, Number(2000, 4)});
  std::string block = "II*" + std::string(1, '\0') + Number(8, 4) + Directory(main, 8);
  block.resize(1000);
  block += Directory(photo, 1000);
  block.resize(2000);
  return std::string("Exif\0\0", 6) + block + Directory(place, 2000);
}

std::string XmpText(const std::string& attributes, const std::string& elements = "") {
  return R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF )"
         R"(xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"><rdf:Description rdf:about="" )"
         R"(xmlns:xmp="http://ns.adobe.com/xap/1.0/" xmlns:dc="http://purl.org/dc/elements/1.1/" )"
         R"(xmlns:tiff="http://ns.adobe.com/tiff/1.0/" xmlns:exif="http://ns.adobe.com/exif/1.0/" )"
         R"(xmlns:photoshop="http://ns.adobe.com/photoshop/1.0/" )"
         R"(xmlns:lr="http://ns.adobe.com/lightroom/1.0/" )" +
         attributes + ">" + elements + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

std::string List(const std::string& name, const std::vector<std::string>& items) {
  std::string text = "<" + name + "><rdf:Bag>";
  for (const std::string& item : items) text += "<rdf:li>" + item + "</rdf:li>";
  return text + "</rdf:Bag></" + name + ">";
}

std::string Title(const std::string& text) {
  return "<dc:title><rdf:Alt><rdf:li xml:lang=\"ko\">다른 말</rdf:li>"
         "<rdf:li xml:lang=\"x-default\">" +
         text + "</rdf:li></rdf:Alt></dc:title>";
}

std::string Xmp(const std::string& packet) {
  return "http://ns.adobe.com/xap/1.0/" + std::string(1, '\0') + packet;
}

std::string Iptc(const std::vector<std::pair<int, std::string>>& records) {
  std::string data;
  for (const auto& [id, text] : records)
    data += "\x1C\x02" + Number(static_cast<uint32_t>(id), 1) +
            Number(static_cast<uint32_t>(text.size()), 2, true) + text;
  if (data.size() % 2) data += '\0';
  return std::string("Photoshop 3.0\0", 14) + "8BIM\x04\x04" + std::string(2, '\0') +
         Number(static_cast<uint32_t>(data.size()), 4, true) + data;
}

/// A JPEG with segments of our own behind its first two bytes.
void WriteJpeg(const std::string& path, const std::vector<std::pair<char, std::string>>& segments) {
  WritePicture(path);
  std::string bytes = ReadFile(path), head = bytes.substr(0, 2);
  for (const auto& [marker, data] : segments)
    head += std::string("\xFF") + marker + Number(static_cast<uint32_t>(data.size() + 2), 2, true) +
            data;
  WriteFile(path, head + bytes.substr(2));
}

constexpr char kApp1 = '\xE1', kApp13 = '\xED';

class MetadataTest : public ImportTest {
 protected:
  static void SetUpTestSuite() {
    ImportTest::SetUpTestSuite();
    SetZone("Asia/Seoul");
    vdsto::InitialiseProbing();
  }
  static void SetZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }

  vdsto::PictureFacts Probe(const std::vector<std::pair<char, std::string>>& segments,
                            const std::string& sidecar = "") const {
    WriteJpeg(temp_ / "a.jpg", segments);
    if (sidecar.empty()) return vdsto::ProbePicture(temp_ / "a.jpg");
    WriteFile(temp_ / "a.xmp", sidecar);
    return vdsto::ProbePicture(temp_ / "a.jpg", temp_ / "a.xmp");
  }

  json Info(const std::string& name) const { return Vdsto({"info", Pictures(name)}).Json(); }
};

TEST_F(MetadataTest, TheCameraComesBeforeXmpAndXmpBeforeIptc) {
  const auto exif = Exif({Text(0x10F, "\xBB\xEF\xBC\xBA"), Text(0x110, "디지맥스 i50"),
                          Text(0x132, "2009:01:02 03:04:05")},
                         {Text(0x9003, "2004:02:30 10:00:00"), Text(0x9004, "1965:07:31 12:00:01")},
                         {Text(1, "S"),
                          Fractions(2, {33, 1, 30, 1, 36, 1}),
                          Text(3, "W"),
                          Fractions(4, {70, 1, 15, 1, 0, 1}),
                          {5, 1, 1, "\x01"},
                          Fractions(6, {25, 2})});
  const auto xmp = XmpText(R"(xmp:Rating="4" tiff:Model="X" exif:GPSLatitude="1,30N" )"
                           R"(exif:GPSLongitude="2,15,36E" photoshop:DateCreated="1960-05")",
                           Title("제목"));
  const auto iptc = Iptc({{5, "Iptc title"},
                          {55, "19550000"},
                          {120, "\xB9\xD9\xB4\xD9"},
                          {25, "Caf\xE9"},
                          {25, "바다, 여행"}});
  const auto all = Probe({{kApp1, exif}, {kApp1, Xmp(xmp)}, {kApp13, iptc}});
  EXPECT_EQ(all.exif.maker + "|" + all.exif.camera_model, "삼성|디지맥스 i50");
  EXPECT_EQ(std::tuple(all.exif.shot, all.exif.shot_source),
            std::tuple("1965-07-31 12:00:01", DateSource::kDigitized));
  EXPECT_NEAR(*all.place.latitude, -33.51, 1e-9);
  EXPECT_EQ(std::tuple(*all.place.longitude, *all.place.altitude), std::tuple(-70.25, -12.5));
  EXPECT_EQ(std::tuple(all.words.rating, all.words.title, all.words.description),
            std::tuple(4, "제목", "바다"));
  EXPECT_THAT(all.words.keywords, ElementsAre("Café", "바다", "여행"));

  const auto written = Probe({{kApp1, Xmp(xmp)}, {kApp13, iptc}});
  EXPECT_EQ(written.exif.camera_model, "X");
  EXPECT_EQ(std::tuple(written.exif.shot, written.exif.shot_source),
            std::tuple("1960-05-01 00:00:00", DateSource::kXmp));
  EXPECT_EQ(*written.place.latitude, 1.5);
  EXPECT_NEAR(*written.place.longitude, 2.26, 1e-9);
  EXPECT_EQ(Probe({{kApp13, iptc}}).exif.shot, "1955-01-01 00:00:00");

  const auto beside = Probe({{kApp1, exif}, {kApp1, Xmp(xmp)}},
                            XmpText(R"(xmp:Rating="-1" tiff:Make="Y")",
                                    List("lr:hierarchicalSubject", {"여행|제주도", "여행|부산"})));
  EXPECT_EQ(std::tuple(beside.words.rating, beside.words.title, beside.exif.maker),
            std::tuple(0, "제목", "삼성"));
  EXPECT_THAT(beside.words.keywords, ElementsAre("여행", "제주도", "부산"));
}

TEST_F(MetadataTest, WhatAPersonChangedSurvivesNewMetadata) {
  const auto packet = [](const std::string& rating, const std::string& title,
                         const std::vector<std::string>& keywords) {
    return XmpText("xmp:Rating=\"" + rating + "\"", Title(title) + List("dc:subject", keywords));
  };
  for (const char* name : {"a.jpg", "b.jpg", "raw.jpg"}) WritePicture(Pictures(name));
  WriteFile(Pictures("raw.CR2"), "no picture");
  for (const char* name : {"a.XMP", "b.jpg.xmp", "raw.xmp"})
    WriteFile(Pictures(name), packet("2", "첫 제목", {"바다", "Sea"}));
  const json first = Import();
  EXPECT_EQ(Counts(first) + " " + first["sidecars"].dump() + " " + first["not_pictures"].dump(),
            "4 0 0 3 0");
  for (const char* name : {"a.jpg", "b.jpg", "raw.CR2"}) {
    EXPECT_EQ(Info(name)["rating"], 2) << name;
    EXPECT_EQ(Info(name)["title"], "첫 제목") << name;
    EXPECT_EQ(Info(name)["tags"], json({"Sea", "바다"})) << name;
  }
  EXPECT_EQ(Info("raw.jpg")["title"], json()) << "the sidecar is the raw file's";
  EXPECT_EQ(Counts(Import()), "0 0 4");

  Vdsto({"rate", "5", Pictures("a.jpg")});
  Vdsto({"title", "내 제목", Pictures("a.jpg"), "--yes"});
  Vdsto({"tag", "remove", "바다", Pictures("a.jpg")});
  for (const char* name : {"a.XMP", "b.jpg.xmp"})
    WriteFile(Pictures(name), packet("3", "새 제목", {"바다", "Sea", "여행"}));
  EXPECT_EQ(Counts(Import()), "0 2 2");
  EXPECT_EQ(Info("a.jpg")["rating"].dump() + Info("a.jpg")["title"].get<std::string>(), "5내 제목");
  EXPECT_EQ(Info("a.jpg")["tags"], json({"Sea", "여행"}));
  EXPECT_EQ(Info("b.jpg")["rating"].dump() + Info("b.jpg")["title"].get<std::string>(), "3새 제목");
  EXPECT_EQ(Info("b.jpg")["tags"], json({"Sea", "바다", "여행"}));
  std::filesystem::remove(Pictures("b.jpg.xmp"));
  EXPECT_EQ(Counts(Import()), "0 1 3");
  EXPECT_EQ(Info("b.jpg")["title"], "새 제목") << "what has gone from a file is not taken away";
}

TEST_F(MetadataTest, DatesAreWhatTheClockShowedInWhateverZone) {
  WriteJpeg(Pictures("scan.jpg"), {{kApp1, Exif({}, {Text(0x9003, "1965:07:31 12:00:01")}, {})}});
  WritePicture(Pictures("none.jpg"));
  Import();
  const auto shot = [&](const char* name) { return Info(name)["shot"].dump(); };
  const std::string guess = shot("none.jpg");
  for (const char* zone : {"Asia/Seoul", "UTC", "America/New_York"}) {
    SetZone(zone);
    EXPECT_EQ(shot("scan.jpg") + shot("none.jpg"), "\"1965-07-31 12:00:01\"" + guess) << zone;
    EXPECT_EQ(Info("none.jpg")["exif"]["shot"], json()) << zone;
    EXPECT_EQ(Info("none.jpg")["shot_is_guess"], true) << zone;
    EXPECT_EQ(Vdsto({"stat"}).Json()["last_shot"], "1965-07-31 12:00:01") << zone;
    EXPECT_EQ(Vdsto({"recent", "--until", "1970"}).Json()["photos"].size(), 1) << zone;
  }
  SetZone("Asia/Seoul");
  const Outcome listing = RunVdsto({"--library", Library(), "ls", "pictures"});
  EXPECT_THAT(listing.out, testing::ContainsRegex("[0-9]\\? .* none.jpg\n.*01  .* scan.jpg"));
}

TEST_F(MetadataTest, ProblemsAreKeptAndCountedAndTold) {
  WritePicture(Pictures("cut.png"), 300, 200);
  CutFile(Pictures("cut.png"), 30'000);
  WriteFile(Pictures("bad.jpg"), "nothing");
  WritePicture(Pictures("good.jpg"));
  const std::string chunk = Number(5 << 20, 4, true) + "iTXt" + std::string(5 << 20, ' ') + "CRC.";
  const std::string png = ReadFile(Pictures("cut.png"));
  WriteFile(Pictures("huge.png"), png.substr(0, 33) + chunk + png.substr(33));
  WriteFile(Pictures("good.xmp"), std::string(5 << 20, ' '));
  ASSERT_EQ(mkfifo(Pictures("pipe").c_str(), 0600), 0);
  const Outcome import = Vdsto({"import", Pictures()});
  EXPECT_EQ(import.code, 11) << "the sidecar was not read";
  EXPECT_EQ(import.err, "");
  EXPECT_EQ(import.Json()["special"], 1);
  EXPECT_EQ(import.Json()["unreadable"][0]["path"], Pictures("good.xmp"));
  std::string told;
  for (const json& problem : Vdsto({"problems"}).Json())
    told += problem["name"].dump() + " " + problem["state"].get<std::string>() + ", ";
  EXPECT_EQ(told,
            R"("pictures/bad.jpg" broken, "pictures/cut.png" damaged, "pictures/huge.png" broken, )"
            "null unreadable, ");
  EXPECT_EQ(Vdsto({"problems", "-0"}).out,
            std::string("pictures/bad.jpg\0pictures/cut.png\0pictures/huge.png\0", 52));
  EXPECT_EQ(Info("cut.png")["picture"]["width"], 300);
}

}  // namespace
