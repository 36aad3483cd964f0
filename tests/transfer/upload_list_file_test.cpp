#include <fstream>
#include <iterator>

#include "upload_test.h"

namespace vdstomgr {
namespace {

using testing::ElementsAre;

constexpr const char* kLoaded =
    "SELECT nDispOrder, szGUID, szOPPath, dxFileSize, dxSentBytes, szFileName, byteSmall, "
    "byteImage, byteRotate, szServerPath, nStatus, byteResume, nThumbStatus, szLTBPath "
    "FROM UploadList ORDER BY nID";

class UploadFileTest : public UploadTest {
 protected:
  std::string Saved() {
    catalogue_.SaveUploadList(file.c_str());
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  void Load(const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
    catalogue_.ResetUploadList();
    catalogue_.LoadUploadList(file.c_str(), nullptr);
  }
  int CountLoaded(const std::string& text) {
    Load(text);
    return catalogue_.GetUploadListCount();
  }

  const std::string file = Path("queue.txt");
};

TEST_F(UploadFileTest, WhatIsNotFinishedIsSavedAndLoadedAsReady) {
  std::ofstream(file) << "old";
  Fill("a:2 b:3");
  EXPECT_EQ(Saved(), "");
  EXPECT_FALSE(std::filesystem::exists(file)) << "nothing to save leaves no file";
  catalogue_.SaveUploadList((file + "/no/folder").c_str());
  catalogue_.LoadUploadList(file.c_str(), nullptr);

  Fill("sending:1 done:2 failed:-7103");
  RunBeside(
      "UPDATE UploadList SET szOPPath = '/o', szServerPath = '/s', byteRotate = 3, "
      "byteResume = 2, szLTBPath = 'ltb', dxFileSize = '4294967296', nDispOrder = -3, "
      "szFileName = '\xb0\xa1.PNG' WHERE nStatus = -7103");
  EXPECT_EQ(Saved(),
            "-3|\"failed\"|\"/o\"|4294967296|\"\xb0\xa1.PNG\"|3|\"/s\"|-7103|2\r\n"
            "1|\"sending\"|\"\"|10|\"a.jpg\"|0|\"\"|1|1\r\n");
  catalogue_.ResetUploadList();
  CDWordArray told;
  CRkCallback progress([&](DWORD done, DWORD total, const char* text, bool flag) {
    EXPECT_EQ(Joined(total, text == nullptr, flag), "0|1|0");
    told.Add(done);
  });
  catalogue_.LoadUploadList(file.c_str(), &progress);
  EXPECT_EQ(told, (CDWordArray{1, 2}));
  EXPECT_THAT(Ask(kLoaded),
              ElementsAre("-3|failed|/o|4294967296|0|\xb0\xa1.PNG|0|1|3|/s|0|2|0|null",
                          "1|sending||10|0|a.jpg|1|1|0||0|1|0|null"));
  UPLOADLIST row = Upload("first in line");
  EXPECT_TRUE(catalogue_.GetNextUploadList(row));
  EXPECT_STREQ(row.szGUID, "failed");
}

TEST_F(UploadFileTest, NamesComeBackUnlessTheyBreakTheirLine) {
  const std::string kept = "\xb0\xa1 !#$%&'()*+,-./:;<=>?@[\\]^_`{}~\t\xc8\xfe.jpg";
  const auto come_back = [&](const std::string& name) {
    catalogue_.ResetUploadList();
    UPLOADLIST row = Upload("g", 0, name.c_str());
    CopyToFixed(row.szOPPath, name);
    CopyToFixed(row.szServerPath, name);
    catalogue_.AddUploadList(row);
    Load(Saved());
    const auto rows = Ask("SELECT szFileName, szOPPath, szServerPath FROM UploadList");
    return rows.empty() ? "" : rows[0];
  };
  EXPECT_EQ(come_back(kept), kept + "|" + kept + "|" + kept);
  SetTextCodePage(TextCodePage::utf8);
  EXPECT_EQ(come_back("가나 & 다.png"), "가나 & 다.png|가나 & 다.png|가나 & 다.png");
  SetTextCodePage(TextCodePage::korean949);
  EXPECT_EQ(come_back("a\"b\""), "a\"b\"|a\"b\"|a\"b\"") << "quotes within stay";
  Load("1|\"g\"|\"/p\"|10|\"a|b.PNG\"|3|\"/s\"|-5|1\r\n");
  EXPECT_THAT(Ask(kLoaded), ElementsAre("1|g|/p|10|0|\"a|1|0|0|3|0|251|0|null"))
      << "what stands behind a bar moves to the next field";
}

TEST_F(UploadFileTest, BadLinesEndTheLoadAndWhatWasLoadedStays) {
  const std::string good = "1|\"g\"|\"\"|10|\"a\"|0|\"\"|0|1\r\n";
  const std::string garbage(std::size_t{100} << 20, '\xfe');
  const std::pair<std::string, int> cases[] = {
      {good + good, 2},
      {good + good.substr(0, good.size() - 2), 2},
      {good + "2|g|||||\r\n" + good, 1},
      {good + "\r\n" + good, 1},
      {good + good.substr(0, good.size() - 1) + good, 2},
      {"", 0},
      {"1|a|b|10|c|0|d|2\r\n2|a|b|10|c|0|d|3\r\n" + good, 1},
      {good + garbage + "\r\n" + good, 1},
      {good + std::string(garbage.size(), '|') + "\r\n" + good, 3},
      {good + std::string("\0\0|\0", 4) + good, 2},
      {good + "99999999999999999999|g||x|||||99999999999|9|9|9\r\n" + good, 3},
      {good + "-99999999999|||||-||-99999999999\r\n" + good, 3},
  };
  for (const auto& [text, loaded] : cases) {
    EXPECT_EQ(CountLoaded(text), loaded) << text.substr(0, 99);
    EXPECT_EQ(TakeReports(), Reports());
  }
  Load("99999999999999999999|g||-|n|257||7\r\n");
  EXPECT_THAT(Ask(kLoaded), ElementsAre("2147483647|g||-|0|n|1|0|1||0|null|0|null"))
      << "eight fields leave the mark for going on unset";
  const std::string long_guid = "1|" + std::string(37, 'g') + "||10||||0\r\n";
  EXPECT_EQ(CountLoaded(good + long_guid + good), 1);
  EXPECT_EQ(TakeReports(), Reports{3163});
}

}  // namespace
}  // namespace vdstomgr
