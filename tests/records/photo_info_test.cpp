#include "vdstomgr/records/photo_info.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "vdstomgr/records/fixed_text.h"

using namespace vdstomgr;

namespace {

TEST(OwnedText, IsOnePointerAndNeverGivesNull) {
  static_assert(sizeof(OwnedText) == sizeof(void*));
  OwnedText text;
  EXPECT_STREQ(text.Get(), "");
  text.Assign("abcdef");
  text.Assign(text.Get() + 2);  // a piece of itself
  EXPECT_STREQ(text.Get(), "cdef");
  text = *&text;
  const OwnedText copy = text;
  text.Assign(nullptr);
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_STREQ(copy.Get(), "cdef");
}

TEST(FixedText, CutsBetweenCharactersAndTerminates) {
  char field[4];
  std::memset(field, 'x', sizeof field);
  CopyToFixed(field, "a\xB0\xA1\xB0\xA1");  // code page 949: one narrow, two wide characters
  EXPECT_STREQ(field, "a\xB0\xA1");
}

TEST(PhotoInfo, GuidKeepsItsField) {
  PHOTOINFO photo;
  photo.SetGUID(std::string(50, 'g').c_str());
  photo.SetGUID(nullptr);
  EXPECT_EQ(std::string(photo.szGUID), std::string(36, 'g'));
  EXPECT_STREQ(photo.szMD5, "");
}

TEST(PhotoInfo, FlagsAndTimes) {
  PHOTOINFO photo;
  for (const int bit : {0, 7, 8, -1, 40}) photo.SetFlag(bit, true);
  EXPECT_EQ(photo.byteFlag, 0x81);
  photo.SetFlag(7, false);
  EXPECT_EQ(photo.byteFlag, 1);
  photo.SetShootDate(-1);
  photo.SetLockTime(-2);
  EXPECT_EQ(photo.ShootDate, 0);
  EXPECT_EQ(photo.LockTime, -2);
}

TEST(PhotoInfo, FitsIntoAnArea) {
  const struct {
    WORD width, height;
    BYTE turns;
    bool rotate;
    CSize area, size;
  } kCases[] = {
      {400, 300, 0, false, {200, 200}, {200, 150}}, {300, 400, 0, true, {200, 200}, {150, 200}},
      {400, 300, 1, true, {200, 200}, {150, 200}},  {400, 300, 5, true, {200, 200}, {150, 200}},
      {400, 300, 1, false, {200, 200}, {267, 200}},  // stands, but keeps its unturned proportions
      {300, 400, 1, true, {200, 200}, {200, 150}},  {300, 400, 3, false, {200, 200}, {200, 267}},
      {400, 400, 1, true, {100, 50}, {100, 100}},   {0, 300, 0, true, {20, 10}, {20, 10}},
      {300, 0, 1, false, {20, 10}, {20, 10}},       {1, 65535, 2, true, {10, 10}, {0, 10}},
  };
  for (const auto& c : kCases) {
    PHOTOINFO photo;
    photo.SetWidthHeight(c.width, c.height);
    photo.SetRotate(c.turns);
    EXPECT_EQ(photo.GetImageSizeInArea(c.area, c.rotate), c.size)
        << c.width << 'x' << c.height << " turned " << int{c.turns} << ' ' << c.rotate;
  }
}

TEST(PhotoInfo, StandsInTheMiddleOfAnArea) {
  PHOTOINFO photo;
  photo.SetWidthHeight(400, 300);
  photo.SetRotate(1);  // always honoured here, whatever the flag says
  EXPECT_EQ(photo.GetImageRectInArea({10, 20, 210, 220}, false), (CRect{35, 20, 185, 220}));
  EXPECT_EQ(photo.GetImageRectInArea({0, 0, 100, 201}, true), (CRect{-25, 0, 126, 201}));
}

}  // namespace
