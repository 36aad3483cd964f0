#include <gtest/gtest.h>
#include <vips/vips.h>

#include <cstdlib>
#include <ctime>
#include <exiv2/exiv2.hpp>
#include <memory>
#include <span>
#include <system_error>

#include "test_support.h"
#include "tools/vdsto/picture/decoding_memory.h"
#include "tools/vdsto/picture/picture_date.h"
#include "tools/vdsto/picture/picture_metadata.h"
#include "tools/vdsto/picture/picture_probe.h"
#include "tools/vdsto/picture/tiff_layout.h"

namespace vdsto {
namespace {

using namespace vdsto_test;

class ProbeTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    setenv("TZ", "Asia/Seoul", 1);
    tzset();
    InitialiseProbing();
  }

  TempFolder folder_;
};

struct Unreference {
  void operator()(VipsImage* image) const { g_object_unref(image); }
};
using Picture = std::unique_ptr<VipsImage, Unreference>;

/// The smallest PSD file of that size: no layers, and the merged picture without compression.
void WritePsd(const std::string& path, char width, char height) {
  WriteFile(path, std::string("8BPS\0\1\0\0\0\0\0\0\0\3\0\0\0", 17) + height +
                      std::string(3, '\0') + width + std::string("\0\x8\0\3", 4) +
                      std::string(14, '\0') +
                      std::string(3u * static_cast<unsigned>(width * height), '\x55'));
}

Picture Decoded(const std::vector<uint8_t>& jpeg) {
  return Picture(vips_image_new_from_buffer(jpeg.data(), jpeg.size(), "", nullptr));
}

std::tuple<int, int> SizeOf(const Picture& picture) {
  return {vips_image_get_width(picture.get()), vips_image_get_height(picture.get())};
}

TEST_F(ProbeTest, ReadsEveryFormat) {
  for (const char* name :
       {"a.jpg", "a.png", "a.gif", "a.tif", "a.webp", "a.bmp", "a.heic", "a.avif", "a.psd"}) {
    SCOPED_TRACE(name);
    const std::string path = folder_ / name;
    path.ends_with("psd") ? WritePsd(path, 71, 53) : WritePicture(path, 71, 53);
    const PictureFacts facts = ProbePicture(path);
    EXPECT_EQ(facts.state, PictureState::kGood) << facts.problem;
    EXPECT_EQ(std::tuple(facts.width, facts.height), std::tuple(71u, 53u));
    EXPECT_EQ(SizeOf(Decoded(facts.thumbnail)), std::tuple(71, 53)) << "never enlarged";
    EXPECT_EQ(facts.stamp.size, std::filesystem::file_size(path));
  }
}

TEST_F(ProbeTest, ReadsCameraData) {
  const std::string path = folder_ / "a.jpg";
  WritePicture(path, 640, 480);
  WriteExif(path, {{"Exif.Image.Make", "EASTMAN KODAK COMPANY AND A LOT OF OTHERS  "},
                   {"Exif.Image.Model", "KODAK CX7530 ZOOM DIGITAL CAMERA, long name"},
                   {"Exif.Image.Artist", "\xB1\xE8\xC3\xB6\xBC\xF6"},
                   {"Exif.Image.Orientation", "6"},
                   {"Exif.Photo.ExifVersion", "48 50 50 49"},
                   {"Exif.Photo.ExposureTime", "10/1250"},
                   {"Exif.Photo.FNumber", "28/10"},
                   {"Exif.Photo.ExposureBiasValue", "-2/3"},
                   {"Exif.Photo.FocalLength", "356/10"},
                   {"Exif.Photo.FocalLengthIn35mmFilm", "52"},
                   {"Exif.Photo.ISOSpeedRatings", "200"},
                   {"Exif.Photo.MeteringMode", "5"},
                   {"Exif.Photo.Flash", "16"},
                   {"Exif.Photo.LensModel", "smc F 35-80mm"},
                   {"Exif.Photo.DateTimeOriginal", "2004:06:29 15:29:33"}});
  const PictureFacts facts = ProbePicture(path);
  const ExifFacts& exif = facts.exif;
  EXPECT_EQ(facts.width, 640u) << "stored size, not the upright one";
  EXPECT_EQ(exif.maker, "EASTMAN KODAK COMPANY AND A LOT OF OTHERS");
  EXPECT_EQ(exif.camera_model, "KODAK CX7530 ZOOM DIGITAL CAMERA, long name");
  EXPECT_EQ(exif.shooter, "김철수");
  EXPECT_EQ(exif.camera_lens, "smc F 35-80mm");
  EXPECT_EQ(exif.version, "0221");
  EXPECT_EQ(exif.exposure, "1/125");
  EXPECT_EQ(exif.f_number, "2.8");
  EXPECT_EQ(exif.exposure_bias, "-0.67");
  EXPECT_EQ(std::tuple(exif.focal_length, exif.focal_length_35, exif.iso), std::tuple(36, 52, 200));
  EXPECT_EQ(std::tuple(exif.orientation, exif.metering_mode, exif.flash), std::tuple(6, 5, 16));
  EXPECT_EQ(exif.shot, "2004-06-29 15:29:33");
}

/// One colour in a form whose coefficients are all held, as a hostile file would have it.
TEST_F(ProbeTest, WhatWouldTakeFarTooMuchMemoryIsShownByItsSmallPicture) {
  const std::string path = folder_ / "a.jpg";
  VipsImage* black = nullptr;
  ASSERT_EQ(vips_black(&black, 9000, 9000, "bands", 3, nullptr), 0);
  ASSERT_EQ(vips_image_write_to_file(Picture(black).get(), (path + "[interlace]").c_str(), nullptr),
            0);
  const PictureFacts facts = ProbePicture(path);
  EXPECT_EQ(std::tuple(facts.state, facts.width), std::tuple(PictureState::kBroken, 9000u));
  EXPECT_NE(facts.problem.find("338 MB of memory"), std::string::npos) << facts.problem;
  EXPECT_TRUE(facts.thumbnail.empty());

  WritePicture(folder_ / "small.jpg", 160, 120);
  const auto image = Exiv2::ImageFactory::open(path);
  image->readMetadata();
  Exiv2::ExifThumb(image->exifData()).setJpegThumbnail(folder_ / "small.jpg");
  image->writeMetadata();
  const PictureFacts shown = ProbePicture(path);
  EXPECT_EQ(std::tuple(shown.state, shown.width), std::tuple(PictureState::kDamaged, 9000u));
  EXPECT_EQ(SizeOf(Decoded(shown.thumbnail)), std::tuple(160, 120));

  const uint64_t mib = 1 << 20;
  EXPECT_EQ(MostDecodingMemory(0), 192 * mib);
  EXPECT_EQ(MostDecodingMemory(mib), 400 * mib);
  EXPECT_EQ(MostDecodingMemory(UINT64_MAX), 1536 * mib);
}

TEST_F(ProbeTest, TiffFilesTellHowTheyAreCut) {
  const std::string path = folder_ / "a.tif";
  WritePicture(folder_ / "b.tif", 300, 300);
  const Picture picture(vips_image_new_from_file((folder_ / "b.tif").c_str(), nullptr));
  const std::tuple<const char*, uint64_t, uint64_t> forms[] = {
      {"[tile-height=40]", 0, 40},
      {"[tile,tile-width=64,tile-height=128]", 128, 0},
      {"[bigtiff,tile,tile-width=64,tile-height=256]", 256, 0}};
  for (const auto& [options, tile_height, strip_height] : forms) {
    ASSERT_EQ(vips_image_write_to_file(picture.get(), (path + options).c_str(), nullptr), 0);
    const std::string file = ReadFile(path);
    for (const PictureData& data : {PictureData{std::as_bytes(std::span(file)), {}},
                                    PictureData{{}, path}, PictureData{{}, folder_ / "none"}}) {
      const TiffLayout layout = ReadTiffLayout(data);
      const bool is_there = data.InMemory() || data.path == path;
      EXPECT_EQ(layout.tile_height, is_there ? tile_height : 0) << options;
      EXPECT_EQ(layout.strip_height, is_there ? strip_height : 0) << options;
    }
    for (size_t size = 1; size < file.size(); size += 1 + size / 8)
      ReadTiffLayout({std::as_bytes(std::span(file)).first(size), {}});
  }
}

/// "TL" to "BR": the corner where the picture is bright.
std::string BrightCorner(const Picture& picture) {
  const auto [width, height] = SizeOf(picture);
  for (const int y : {5, height - 6}) {
    for (const int x : {5, width - 6}) {
      double* values = nullptr;
      int count = 0;
      EXPECT_EQ(vips_getpoint(picture.get(), &values, &count, x, y, nullptr), 0);
      const bool is_bright = values[0] > 128;
      g_free(values);
      if (is_bright) return std::string(y == 5 ? "T" : "B") + (x == 5 ? "L" : "R");
    }
  }
  return "none";
}

TEST_F(ProbeTest, ThumbnailsAreUprightAndSmall) {
  const std::string path = folder_ / "a.jpg";
  std::string pixels(600 * 300, '\0');
  for (size_t y = 0; y < 100; ++y) pixels.replace(y * 600, 100, 100, '\xFF');
  const Picture stored(
      vips_image_new_from_memory(pixels.data(), pixels.size(), 600, 300, 1, VIPS_FORMAT_UCHAR));
  ASSERT_EQ(vips_image_write_to_file(stored.get(), path.c_str(), nullptr), 0);
  const char* corners[] = {"TL", "TR", "BR", "BL", "TL", "TR", "BR", "BL"};
  for (int orientation = 1; orientation <= 8; ++orientation) {
    SCOPED_TRACE(orientation);
    WriteExif(path, {{"Exif.Image.Orientation", std::to_string(orientation).c_str()}});
    const PictureFacts facts = ProbePicture(path);
    EXPECT_EQ(std::tuple(facts.width, facts.height), std::tuple(600u, 300u));
    const Picture thumbnail = Decoded(facts.thumbnail);
    EXPECT_EQ(SizeOf(thumbnail), orientation < 5 ? std::tuple(400, 200) : std::tuple(200, 400));
    EXPECT_EQ(BrightCorner(thumbnail), corners[orientation - 1]);
  }
}

TEST_F(ProbeTest, ImpossibleCameraDataCountAsNone) {
  const std::string path = folder_ / "a.jpg";
  WritePicture(path);
  WriteExif(path, {{"Exif.Image.Orientation", "9"},
                   {"Exif.Photo.ExposureTime", "1/0"},
                   {"Exif.Photo.FocalLength", "4294967295/1"},
                   {"Exif.Photo.Flash", "4096"},
                   {"Exif.Photo.ExifVersion", "0 0 0 0"},
                   {"Exif.Photo.DateTimeOriginal", "    :  :     :  :  "}});
  const ExifFacts exif = ProbePicture(path).exif;
  EXPECT_EQ(std::tuple(exif.orientation, exif.focal_length, exif.flash, exif.shot_source),
            std::tuple(0, 0, 0, DateSource::kNone));
  EXPECT_EQ(exif.exposure + exif.version + exif.shot, "");
}

TEST(PictureDate, IsARealMomentOfTheClockAtThePlace) {
  const std::pair<const char*, const char*> dates[] = {
      {"2004:06:29 15:29:33", "2004-06-29 15:29:33"},
      {"2004-06-29T15:29:33.25+09:00", "2004-06-29 15:29:33"},
      {"2004/06/29 15:29", "2004-06-29 15:29:00"},
      {"1965:07:31   :  :  ", "1965-07-31 00:00:00"},
      {"1965-07", "1965-07-01 00:00:00"},
      {"1899", "1899-01-01 00:00:00"},
      {"2004:02:29 23:59:60", "2004-02-29 23:59:59"},
      {"2004:02:30 10:00:00", ""},
      {"2003:02:29 10:00:00", ""},
      {"2004:13:01 00:00:00", ""},
      {"2004:01:01 25:00:00", ""},
      {"0000:00:00 00:00:00", ""},
      {"0001:01:01 00:00:00", ""},
      {"1970:01:01 00:00:00", ""},
      {"    :  :     :  :  ", ""},
      {"20040629", ""},
      {"", ""}};
  for (const auto& [text, date] : dates) EXPECT_EQ(DateFrom(text), date) << text;
}

TEST_F(ProbeTest, TellsDamagedFromBroken) {
  const std::string whole = folder_ / "whole.jpg";
  WritePicture(whole, 800, 600);
  WriteExif(whole,
            {{"Exif.Image.Make", "Canon"}, {"Exif.Photo.DateTimeOriginal", "2007:08:24 02:40:42"}});
  const std::string bytes = ReadFile(whole);
  const struct {
    const char* name;
    std::string contents;
    PictureState state;
    uint32_t width;
    const char* maker;
  } cases[] = {
      {"cut.jpg", bytes.substr(0, bytes.size() / 2), PictureState::kDamaged, 800, "Canon"},
      {"header.jpg", bytes.substr(0, bytes.find("\xFF\xC0")), PictureState::kBroken, 0, "Canon"},
      {"empty.jpg", "", PictureState::kBroken, 0, ""},
      {"tiny.heic",
       std::string("\0\0\0\x24"
                   "ftypheic",
                   12) +
           std::string(24, '\0'),
       PictureState::kBroken, 0, ""},
      {"text.png", "no picture at all", PictureState::kBroken, 0, ""},
      {"loop.tif", std::string("II*\0\x08\0\0\0\0\0\x08\0\0\0", 14), PictureState::kBroken, 0, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WriteFile(folder_ / c.name, c.contents);
    const PictureFacts facts = ProbePicture(folder_ / c.name);
    EXPECT_TRUE(facts.IsPicture());
    EXPECT_EQ(facts.state, c.state);
    EXPECT_EQ(facts.thumbnail.empty(), c.state == PictureState::kBroken);
    EXPECT_FALSE(facts.problem.empty());
    EXPECT_EQ(facts.width, c.width);
    EXPECT_EQ(facts.exif.maker, c.maker);
    EXPECT_EQ(facts.md5.size(), 32u);
  }
}

/// 65,535 x 65,535 pixels that would unpack to gigabytes.
TEST_F(ProbeTest, DoesNotUnpackABomb) {
  const std::string path = folder_ / "bomb.gif";
  WriteFile(
      path,
      std::string(
          "GIF89a\xFF\xFF\xFF\xFF\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\xFF\xFF\xFF\xFF\0\x02\x02"
          "D\x01\0;",
          35));
  const PictureFacts facts = ProbePicture(path);
  EXPECT_EQ(facts.state, PictureState::kBroken);
  EXPECT_EQ(facts.width, 65535u);
}

/// Whatever stands in a file, probing it ends and answers.
TEST_F(ProbeTest, SurvivesGarbledFiles) {
  for (const char* name : {"a.jpg", "a.png", "a.tif", "a.gif", "a.webp"}) {
    const std::string path = folder_ / name;
    WritePicture(path, 60, 40);
    const std::string bytes = ReadFile(path);
    unsigned random = 12345;
    for (int round = 0; round < 40; ++round) {
      std::string garbled = bytes;
      for (int i = 0; i < 12; ++i) {
        random = random * 1664525 + 1013904223;
        garbled[(random >> 8) % (i < 6 ? 200 : garbled.size())] = static_cast<char>(random >> 24);
      }
      WriteFile(path, garbled);
      EXPECT_EQ(ProbePicture(path).stamp.size, garbled.size());
    }
  }
}

TEST_F(ProbeTest, LooksAtOtherFilesOnlyAndRefusesWhatCannotBeRead) {
  WriteFile(folder_ / "notes.txt", "text");
  const PictureFacts facts = ProbePicture(folder_ / "notes.txt");
  EXPECT_FALSE(facts.IsPicture());
  EXPECT_EQ(facts.md5, "");
  EXPECT_THROW(ProbePicture(folder_ / "missing.jpg"), std::system_error);
  EXPECT_THROW(ProbePicture(folder_ / ""), std::system_error);
}

TEST_F(ProbeTest, DigestAndTimesAreExact) {
  WriteFile(folder_ / "abc.jpg", "abc");
  EXPECT_EQ(ProbePicture(folder_ / "abc.jpg").md5, "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(UnixTimeOf(116444736000000000ull), 0);
  EXPECT_EQ(UnixTimeOf(132000000000000000ull), 1555526400);
  EXPECT_EQ(UnixTimeOf(116444735990000000ull), -1) << "before 1970";
  EXPECT_EQ(UnixTimeOf(0), 0);
}

}  // namespace
}  // namespace vdsto
