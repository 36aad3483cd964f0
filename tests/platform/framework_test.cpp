#include <gtest/gtest.h>

#include <stdexcept>

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/framework/map.h"

namespace {

TEST(String, FormatsItsOwnTextAndLongOnes) {
  CString text = "abc";
  text.Format("%s-%s", text.GetString(), text.GetString());
  EXPECT_EQ(text, "abc-abc");
  text.AppendFormat("%s%d", text.GetString(), 1);
  EXPECT_EQ(text, "abc-abcabc-abc1");
  for (const int length : {510, 511, 512, 513, 5000}) {
    const std::string filler(static_cast<std::size_t>(length), 'z');
    text.Format("%s", filler.c_str());
    EXPECT_EQ(text, filler);
  }
}

TEST(String, ReplacesOnceAndCounts) {
  const struct {
    const char *text, *old_part, *new_part, *result;
    int count;
  } kCases[] = {
      {"it's 'so'", "'", "''", "it''s ''so''", 3},
      {"aaaa", "aa", "a", "aa", 2},
      {"abc", "", "x", "abc", 0},
      {"abc", "abc", nullptr, "", 1},
      {"abc", "d", "x", "abc", 0},
  };
  for (const auto& [text, old_part, new_part, result, count] : kCases) {
    CString replaced = text;
    EXPECT_EQ(replaced.Replace(old_part, new_part), count);
    EXPECT_EQ(replaced, result);
  }
  CString self = "ab";
  self.Replace("a", self);
  EXPECT_EQ(self, "abb");
}

TEST(String, BringsPositionsBackInside) {
  CString text = "hello";
  EXPECT_EQ(text.Left(-1) + text.Right(-1) + text.Mid(9) + text.Mid(1, -1), "");
  EXPECT_EQ(text.Left(99), "hello");
  EXPECT_EQ(text.Right(2) + text.Mid(-3, 2) + text.Mid(4, 99), "loheo");
  EXPECT_EQ(text.GetAt(-1) + text.GetAt(5) + text[99], 0);
  EXPECT_EQ(text.Find('l', -5), 2);
  EXPECT_EQ(text.Find("l", 99), -1);
  EXPECT_EQ(text.ReverseFind('l'), 3);
  text.Insert(99, '!');
  text.Insert(-1, text);
  EXPECT_EQ(text, "hello!hello!");
  EXPECT_EQ(CString(" \t ").Trim(), "");
  EXPECT_EQ(CString("\r\n a b\t").Trim(), "a b");
  EXPECT_LT(CString("ab").CompareNoCase("ABC"), 0);
}

TEST(Array, SurvivesItself) {
  CArray<CString, CString&> array{"a", "b"};
  const CString constant = "c";
  EXPECT_EQ(array.Add(constant), 2);
  for (int i = 0; i < 20; ++i) array.Add(array[0]);
  EXPECT_EQ(array.Append(array), 23);
  EXPECT_EQ(array.GetSize(), 46);
  EXPECT_EQ(array[25], "c");
  array.Copy(array);
  array.InsertAt(0, array[2], 2);
  EXPECT_EQ(array[1] + array[2], "ca");
  array.SetAtGrow(50, "end");
  EXPECT_EQ(array.GetUpperBound(), 50);
  const std::vector<CString> items = array.Take();
  EXPECT_EQ(items.size(), 51u);
  EXPECT_TRUE(array.IsEmpty());
}

TEST(Array, RefusesWhatLiesOutside) {
  CDWordArray array{1, 2, 3};
  EXPECT_THROW(array.GetAt(3), std::out_of_range);
  EXPECT_THROW(array[-1], std::out_of_range);
  EXPECT_THROW(array.SetAt(3, 0), std::out_of_range);
  EXPECT_THROW(array.SetSize(-1), std::out_of_range);
  EXPECT_THROW(array.InsertAt(-1, 0), std::out_of_range);
  EXPECT_THROW(array.RemoveAt(1, 3), std::out_of_range);
  EXPECT_THROW(array.RemoveAt(1, INT32_MAX), std::out_of_range);
  EXPECT_EQ(array, CDWordArray({1, 2, 3}));
  array.RemoveAt(1, 2);
  array.InsertAt(2, 9);
  EXPECT_EQ(array, CDWordArray({1, 0, 9}));
}

TEST(Map, IsWalkedWhileItsItemsGo) {
  CMap<DWORD, DWORD, CString, const CString&> map;
  for (DWORD key = 0; key < 100; ++key) map[key] = std::to_string(key);
  map.SetAt(7, "seven");
  int walked = 0;
  for (POSITION at = map.GetStartPosition(); at != nullptr; ++walked) {
    DWORD key = 0;
    CString value;
    map.GetNextAssoc(at, key, value);
    EXPECT_EQ(value == "seven", key == 7);
    EXPECT_TRUE(map.RemoveKey(key));
  }
  EXPECT_EQ(walked, 100);
  CString value = "untouched";
  EXPECT_FALSE(map.Lookup(7, value) || map.RemoveKey(7));
  EXPECT_EQ(value, "untouched");
}

}  // namespace
