#include "tools/vdsto/text/text.h"

#include <gtest/gtest.h>

#include <limits>

#include "tools/vdsto/library/photo_guid.h"
#include "tools/vdsto/picture/exif_text.h"
#include "tools/vdsto/picture/picture_format.h"
#include "tools/vdsto/text/source_location.h"

namespace vdsto {
namespace {

TEST(Text, DecomposedNamesAreComposed) {
  EXPECT_EQ(Composed("\u1112\u1174\u11AB.jpg"), "흰.jpg");
  EXPECT_EQ(Composed("cafe\u0301"), "café");
  EXPECT_EQ(Composed("a\xFF\xC0z"), "a\uFFFD\uFFFDz");
}

TEST(Text, CamerasTextsAreReadInEitherCodePage) {
  EXPECT_EQ(DecodedText("\xB1\xE8\xC3\xB6\xBC\xF6"), "김철수");  // 949
  EXPECT_EQ(DecodedText("김철수"), "김철수");
  EXPECT_EQ(DecodedText(std::string_view("  SONY \0junk", 12)), "SONY");
  EXPECT_EQ(DecodedText("Jos\xE9"), "José") << "which is no text in 949";
}

TEST(Text, WidthsCutsAndEscapes) {
  EXPECT_EQ(DisplayWidth("사진 a.jpg"), 10u);
  EXPECT_EQ(Padded("사진", 6), "사진  ");
  EXPECT_EQ(Padded("12", 4, true), "  12");
  EXPECT_EQ(FirstCharacters("사진첩", 2), "사진");
  EXPECT_EQ(CharacterCount("사진 a"), 4u);
  EXPECT_EQ(Printable("a\x1b[2J\n사\x9b\u0085"), "a\\x1B[2J\\x0A사\\x9B\\xC2\\x85");
  EXPECT_EQ(HumanSize(999), "999 B");
  EXPECT_EQ(HumanSize(999'600), "1.0 MB");
  EXPECT_EQ(HumanSize(12'400), "12 KB");
}

TEST(ExifText, NumbersInCleanForms) {
  const struct {
    Fraction value;
    const char *exposure, *f_number, *bias;
  } cases[] = {
      {{1, 125}, "1/125", "", "0.01"},
      {{10, 2500}, "1/250", "", "0"},
      {{4, 10}, "0.4", "0.4", "0.4"},
      {{1, 3}, "1/3", "0.3", "0.33"},
      {{28, 10}, "2.8", "2.8", "2.8"},
      {{30, 1}, "30", "30", "30"},
      {{-2, 3}, "", "", "-0.67"},
      {{-1, 1000}, "", "", "0"},
      {{0, 6}, "", "", "0"},
      {{1, 0}, "", "", ""},
      {{1, 64000}, "1/64000", "", "0"},
      {{1, 123456789}, "", "", "0"},
      {{100, 1}, "100", "100", "100"},
      {{4294967295, 1}, "", "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.value.numerator) + "/" + std::to_string(c.value.denominator));
    EXPECT_EQ(ExposureText(c.value), c.exposure);
    if (*c.f_number) {
      EXPECT_EQ(FNumberText(c.value), c.f_number);
    }
    EXPECT_EQ(ExposureBiasText(c.value), c.bias);
  }
}

TEST(SourceLocation, KeepsEveryPathByteForByte) {
  for (const std::string path :
       {"/사진/a b.jpg", "/\u1112\u1174\u11AB", "/bad \xFF%41?.jpg", "/a'b\"c"}) {
    EXPECT_EQ(PathOf(LocationOf(path)), path);
    EXPECT_TRUE(IsUtf8(LocationOf(path)));
  }
  EXPECT_EQ(LocationOf("/bad \xFF%"), "file:///bad%20%FF%25");
  EXPECT_EQ(LocationOf("/" + std::string(254, 'x')).size(), 255u);
  EXPECT_EQ(LocationOf("/" + std::string(255, 'x')), "");
  EXPECT_EQ(PathOf("http://elsewhere/a.jpg"), "");
  EXPECT_TRUE(IsBelow("/a/b/c", "/a") && IsBelow("/a", "/") && !IsBelow("/ab", "/a") &&
              !IsBelow("/a", "/a"));
  EXPECT_EQ(ParentOf("/a"), "/");
}

TEST(PhotoGuid, BeginsWithTheTimeAndIsUnique) {
  const std::string guid = NewPhotoGuid();
  EXPECT_TRUE(IsPhotoGuid(guid)) << guid;
  EXPECT_EQ(guid[14], '7');
  EXPECT_NE(std::string("89AB").find(guid[19]), std::string::npos);
  EXPECT_NE(guid, NewPhotoGuid());
  EXPECT_FALSE(IsPhotoGuid("2B63D5E4-04D4-4B52-9C0D-9F7F1F2A2C1"));
}

TEST(PictureFormat, ContentsDecideBeforeTheName) {
  using enum PictureFormat;
  using namespace std::string_view_literals;
  const struct {
    std::string_view head, name;
    PictureFormat format;
  } cases[] = {
      {"\xFF\xD8\xFF\xE0"sv, "a.png", kJpeg},
      {"\xFF\xD8\xFF\xE0"sv, "noname", kJpeg},
      {"II*\0\x08\0\0\0"sv, "a.tif", kTiff},
      {"II*\0\x08\0\0\0"sv, "a.NEF", kRaw},
      {"II*\0\x10\0\0\0CR\x02\0"sv, "a.tif", kRaw},
      {"\0\0\0\x18"sv
       "ftypheic\0\0\0\0"sv,
       "a.heic", kHeif},
      {"\0\0\0\x18"sv
       "ftypisom\0\0\0\0"sv,
       "a.mp4", kNone},
      {"BM\x36\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0"sv, "a.bmp", kBmp},
      {"BMW is a car, and this is a text"sv, "a.txt", kNone},
      {"RIFF\x10\0\0\0WEBPVP8 "sv, "a", kWebp},
      {"RIFF\x10\0\0\0WAVEfmt "sv, "a.wav", kNone},
      {"wrapper\xFF\xD8\xFF\xE0"sv, "a.CAM", kWrappedJpeg},
      {"<html>"sv, "index.HTM", kNone},
      {"<html>"sv, "photo.JPE", kUnknown},
      {""sv, "empty.jpg", kUnknown},
      {""sv, ".jpg", kNone},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(DetectFormat(std::as_bytes(std::span(c.head)), c.name), c.format)
        << c.name << " " << c.head;
  }
}

}  // namespace
}  // namespace vdsto
