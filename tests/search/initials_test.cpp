#include "search_test.h"

namespace vdstomgr {
namespace {

TEST_F(SearchTest, InitialsStandForSyllables) {
  PhotoArray photos;
  for (const char* name : {"제주도 여행 2019.jpg", "전주 한옥.png", "닭갈비", "과자", "Beach 여름",
                           "있다", "ㅈ[1]*#?'s \\", "값이 같다", "각서"})
    photos.Add(Photo("g" + std::to_string(photos.GetSize()), name));
  EXPECT_TRUE(search_.AddPhotoInfo(photos));
  const std::pair<const char*, const char*> cases[] = {
      {"ㅈㅈㄷ", "제주도 여행 2019.jpg"},
      {"ㅈㅈ", "전주 한옥.png,제주도 여행 2019.jpg"},
      {"제ㅈ", "제주도 여행 2019.jpg"},
      {"젲", "제주도 여행 2019.jpg"},
      {"저", "전주 한옥.png"},  // a final may come
      {"ㅎㅇ", "전주 한옥.png"},
      {"ㅈ주도 ㅇㅎ", "제주도 여행 2019.jpg"},  // words in any order, letters beside syllables
      {"2019 ㅈㅈ", "제주도 여행 2019.jpg"},
      {"bEA ㅇㄹ", "Beach 여름"},
      {"고", "과자"},    // a vowel may go on
      {"달", "닭갈비"},  // a final, too
      {"닭", "닭갈비"},
      {"닭ㄱ", "닭갈비"},
      {"다", "값이 같다,닭갈비,있다"},
      {"이ㄷ", ""},
      {"ㄳ", "각서"},  // typed as one letter
      {"가ㄳ", ""},
      {"ㄱㅅ", "각서"},
      {"값", "값이 같다"},
      {"\u110C\u1166\u110C\u116E", "제주도 여행 2019.jpg"},  // parts that stand apart
      {"\u110C\u116E\u1103", "제주도 여행 2019.jpg"},
      {"ㅈㅔㅈㅜ", "제주도 여행 2019.jpg"},
      {"\u110C\u1165\u11AB", "전주 한옥.png"},
      {"[1]*#?'", "ㅈ[1]*#?'s \\"},
      {"s \\", "ㅈ[1]*#?'s \\"},
      {"ㅈ[", "ㅈ[1]*#?'s \\"},  // a letter finds itself
      {"ㅋ", ""},
      {"x'y", ""},
  };
  const auto found_by = [&](const char* text) {
    PhotoArray hits;
    EXPECT_EQ(SearchFileNameByInitials(search_, text, hits, 100), 1) << text;
    CStringArray names;
    for (const PHOTOINFO& photo : hits) names.Add(photo.GetFileName());
    return Listed(names);
  };
  for (const auto& [text, names] : cases) EXPECT_EQ(found_by(text), names) << text;
  // The same among so many others that the index is asked.
  PhotoArray hay;
  for (int i = 0; i < 3000; ++i)
    hay.Add(Photo("h" + std::to_string(i), "  hay " + std::to_string(100'000 + i)));
  EXPECT_TRUE(search_.AddPhotoInfo(hay));
  for (const auto& [text, names] : cases) EXPECT_EQ(found_by(text), names) << text;

  FolderArray folders;
  EXPECT_TRUE(search_.AddFolder(7, "제주도", 0, 0));
  EXPECT_EQ(SearchFolderNameByInitials(search_, "ㅈㅈㄷ", folders, 9), 1);
  EXPECT_EQ(folders.GetSize(), 1);
  PhotoArray all;
  SearchFileNameByInitials(search_, " ", all, 5000);
  EXPECT_EQ(all.GetSize(), search_.GetTotalNoOfFiles());
}

TEST(Initials, AreToldFromOtherTexts) {
  SetTextCodePage(TextCodePage::utf8);
  for (const char* text : {"ㅈ", "ㅈㅈ ㄷ", "ㄳ", "\u110C"}) EXPECT_TRUE(IsInitials(text)) << text;
  for (const char* text : {"", " ", "제ㅈ", "ㅏ", "ㅈa", "1"})
    EXPECT_FALSE(IsInitials(text)) << text;
  SetTextCodePage(TextCodePage::korean949);
}

}  // namespace
}  // namespace vdstomgr
