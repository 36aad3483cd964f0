#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/platform/utility/file_ex.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace {

/// A path of our own that is gone after the test.
class ScratchFile {
 public:
  explicit ScratchFile(std::string_view content, const char* name = "text")
      : prefix_(testing::TempDir() + "vdsto_" + std::to_string(std::random_device{}())),
        path_(prefix_ + name) {
    CFileEx file;
    file.Open(path_, 0x9001);
    file.Write(content.data(), static_cast<UINT>(content.size()));
  }
  ~ScratchFile() { vdstomgr::os::Files().Delete(vdstomgr::ToUtf8(path_)); }
  operator const char*() const { return path_; }
  const std::string& Prefix() const { return prefix_; }

 private:
  std::string prefix_;
  CString path_;
};

TEST(Utility, Numbers) {
  const std::pair<const char*, std::uint64_t> kCases[] = {{"0", 0},
                                                          {" 42", 42},
                                                          {"18446744073709551615", UINT64_MAX},
                                                          {"18446744073709551616", UINT64_MAX},
                                                          {"12ab", 12},
                                                          {"-5", 0},
                                                          {"", 0},
                                                          {nullptr, 0}};
  for (const auto& [text, number] : kCases) EXPECT_EQ(CUtilityLib::StrToINT64(text), number);
  EXPECT_EQ(CUtilityLib::GetString(UINT64_MAX), "18446744073709551615");
  EXPECT_EQ(CUtilityLib::GetString(0), "0");
}

TEST(Utility, SplitsAtEverySeparator) {
  const std::pair<const char*, CStringArray> kCases[] = {{"a/b", {"a", "b"}},
                                                         {"/a//b/", {"", "a", "", "b", ""}},
                                                         {"a", {"a"}},
                                                         {"", {}},
                                                         {nullptr, {}}};
  CStringArray parts{"a/b"};
  for (const auto& [text, answer] : kCases) {
    EXPECT_EQ(CUtilityLib::SplitStringByToken(text, '/', parts), answer.GetSize());
    EXPECT_EQ(parts, answer);
  }
  parts = {"too long to lie within the string itself/y"};
  EXPECT_EQ(CUtilityLib::SplitStringByToken(parts[0], '/', parts), 2);
  EXPECT_EQ(parts[1], "y");
}

TEST(Utility, FileNames) {
  const struct {
    const char *name, *extension, *clone;
  } kCases[] = {{"a.jpg", "jpg", "a (1).jpg"},
                {"a (1).jpg", "jpg", "a (2).jpg"},
                {"a (9).tar.gz", "gz", "a (9).tar (1).gz"},
                {"none", "", "none (1)"},
                {"dir.d/none", "", "dir.d/none (1)"},
                {"dir.d\\none", "", "dir.d\\none (1)"},
                {"end.", "", "end (1)."},
                {".jpg", "jpg", " (1).jpg"},
                {"a (0).jpg", "jpg", "a (0) (1).jpg"},
                {"a (01).jpg", "jpg", "a (01) (1).jpg"},
                {"a ().jpg", "jpg", "a () (1).jpg"},
                {"a (-1).jpg", "jpg", "a (-1) (1).jpg"},
                {"a (999999999).jpg", "jpg", "a (1000000000).jpg"},
                {"a (1000000000).jpg", "jpg", "a (1000000000) (1).jpg"},
                {"", "", " (1)"}};
  for (const auto& [name, extension, clone] : kCases) {
    EXPECT_EQ(CUtilityLib::GetFileExt(name), extension) << name;
    EXPECT_EQ(CUtilityLib::GetCloneFileName(name), clone);
  }
  std::set<CString> names;
  for (CString name = "p.png"; names.insert(name).second && names.size() < 10000;) {
    name = CUtilityLib::GetCloneFileName(name);
  }
  EXPECT_EQ(names.size(), 10000u);
  EXPECT_EQ(CUtilityLib::GetKorLeftString("a\xB0\xA1", 2), "a");
  EXPECT_EQ(CUtilityLib::GetKorLeftString("abc", -1), "");
}

TEST(Utility, WideTextIsCutBetweenCharacters) {
  char16_t wide[4] = {7, 7, 7, 7};
  EXPECT_EQ(CUtilityLib::MbcsFileToUnicodeFile("\xB0\xA1z", wide, 4), 2);
  EXPECT_EQ(std::u16string(wide), u"가z");
  EXPECT_EQ(CUtilityLib::MbcsFileToUnicodeFile("12345", wide, 4), 3);
  EXPECT_EQ(std::u16string(wide), u"123");
  EXPECT_EQ(CUtilityLib::MbcsFileToUnicodeFile(nullptr, wide, 4), 0);
  EXPECT_EQ(CUtilityLib::MbcsFileToUnicodeFile("x", nullptr, 0), 0);
}

TEST(Csv, ReadsWhatIsWrittenWithoutEscapes) {
  const ScratchFile file("1|\"a\"|\"b\"c\"|\"\"|\"\r\n\r\nx|\"p|q\"|\r\nlast");
  vdstomgr::CsvReader* const reader = CUtilityLib::OpenCSV(file, "|", "\r\n");
  ASSERT_NE(reader, nullptr);
  const CStringArray kLines[] = {
      {"1", "a", "b\"c", "", "\""}, {""}, {"x", "\"p", "q\"", ""}, {"last"}};
  CStringArray fields;
  for (int line = 0; line < 4; ++line) {
    EXPECT_EQ(CUtilityLib::ReadCSV(reader, fields), line + 1);
    EXPECT_EQ(fields, kLines[line]);
  }
  EXPECT_EQ(CUtilityLib::ReadCSV(reader, fields), -1);
  CUtilityLib::CloseCSV(reader);
  CUtilityLib::CloseCSV(nullptr);
  EXPECT_EQ(CUtilityLib::OpenCSV("/no/such/file", "|", "\r\n"), nullptr);
}

TEST(BinData, CopiesOwnAndBorrowedBytesDoNot) {
  BYTE bytes[] = {1, 2, 3};
  CBinData borrowed;
  borrowed.SetPointer(bytes, 3);
  CBinData copy = borrowed;
  bytes[0] = 9;
  EXPECT_EQ(borrowed.GetData()[0], 9);
  EXPECT_EQ(copy.GetData()[0], 1);
  copy.SetData(copy.GetData() + 1, 2);
  copy = *&copy;
  EXPECT_EQ(std::vector<BYTE>(copy.begin(), copy.end()), std::vector<BYTE>({2, 3}));
  copy.SetPointer(new BYTE[2]{5, 6}, 2, true);
  copy.SetPointer(copy.GetData(), 1, true);  // its own block, shorter
  const CBinData moved = std::move(copy);
  EXPECT_EQ(moved.GetData()[0], 5);
  copy.Reset();
  EXPECT_TRUE(copy.IsEmpty());
}

TEST(Files, AreWrittenReadAndNamedInTheCodePage) {
  const ScratchFile file("0123456789", "\xB0\xA1.bin");
  EXPECT_TRUE(vdstomgr::os::Files().Exists(file.Prefix() + "가.bin"));
  CFileEx reader;
  char bytes[16];
  ASSERT_TRUE(reader.Open(file));
  EXPECT_EQ(reader.GetLength(), 10u);
  EXPECT_EQ(reader.Read(bytes, 4), 4u);
  EXPECT_EQ(reader.Read(bytes, 16), 6u);
  EXPECT_EQ(reader.Read(bytes, 16), 0u);
  EXPECT_FALSE(reader.Write("x", 1));  // opened for reading
  EXPECT_FALSE(reader.Close());
  EXPECT_FALSE(reader.Open(testing::TempDir().c_str()));
  EXPECT_FALSE(reader.Open("") || reader.Open(nullptr) || reader.IsOpen());
  CBinData data;
  EXPECT_TRUE(CUtilityLib::LoadFileData(file, data));
  EXPECT_EQ(data.GetLength(), 10u);
}

/// A file whose end another program cuts off between the look at its size and the read.
struct ShrinkingFile : vdstomgr::os::File {
  std::error_code ReadAt(std::uint64_t, void*, std::size_t, std::size_t& count) override {
    count = 5;
    return {};
  }
  std::error_code WriteAt(std::uint64_t, const void*, std::size_t) override { return {}; }
  std::error_code Size(std::uint64_t& size) override { return size = 10, std::error_code(); }
  std::error_code Close() override { return {}; }
};

struct ShrinkingFiles : vdstomgr::os::ForwardingFileSystem {
  using ForwardingFileSystem::ForwardingFileSystem;
  std::error_code Open(const std::string&, vdstomgr::os::OpenMode,
                       std::unique_ptr<vdstomgr::os::File>& file) override {
    file = std::make_unique<ShrinkingFile>();
    return {};
  }
};

TEST(Files, AShortReadIsNoSuccess) {
  ShrinkingFiles files(vdstomgr::os::SystemFiles());
  vdstomgr::os::SetFiles(&files);
  const BYTE old = 7;
  CBinData data(&old, 1);
  EXPECT_FALSE(CUtilityLib::LoadFileData("any", data));
  vdstomgr::os::SetFiles(nullptr);
  EXPECT_EQ(data.GetLength(), 1u);
}

}  // namespace
