#include "vdstomgr/storage/file_mapper.h"

#include <cstring>

#include "tests/storage/faulty_environment.h"
#include "tests/storage/storage_test.h"

namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;
const BYTE kBytes[] = {1, 2, 3, 4, 5};

using FileMapper = StorageTest;

TEST_F(FileMapper, ViewsDoNotNestAndStayInsideFileAndMap) {
  CRkFileMapper mapper;
  EXPECT_FALSE(mapper.CreateMap(0, "") || mapper.FlushFile() || mapper.CloseFile());
  EXPECT_EQ(mapper.LockFile(0, 0), nullptr);
  ASSERT_TRUE(mapper.OpenFile(Write("a", std::string(200000, 'x') + "end").c_str()));
  EXPECT_EQ(mapper.LockFile(0, 1), nullptr);
  ASSERT_TRUE(mapper.CreateMap(0, ""));
  EXPECT_FALSE(mapper.CreateMap(0, "") || mapper.IsLocked() || mapper.UnlockFile());
  struct Case {
    std::uint64_t offset;
    DWORD length;
    bool is_there;
  };
  const Case cases[] = {{0, 0, true},           {0, 200003, true},  {0, 200004, false},
                        {200003, 0, true},      {200003, 1, false}, {200004, 0, false},
                        {5, 0xFFFFFFFF, false}, {~0ull, 2, false},  {1ull << 63, 1, false},
                        {200000, 3, true}};
  for (const auto& [offset, length, is_there] : cases) {
    const BYTE* const view = mapper.LockFile(offset, length);
    ASSERT_EQ(view != nullptr, is_there) << offset << "+" << length;
    EXPECT_EQ(mapper.IsLocked(), is_there);
    if (!is_there) continue;
    EXPECT_TRUE(offset < 200000 || std::memcmp(view, &"end"[offset - 200000], length) == 0);
    EXPECT_EQ(mapper.LockFile(0, 1), nullptr);
    EXPECT_TRUE(mapper.FlushFile() && mapper.UnlockFile() && mapper.FlushFile());
  }
  mapper.LockFile(0, 0);
  mapper.CloseMap();
  EXPECT_FALSE(mapper.IsLocked());
  ASSERT_TRUE(mapper.CreateMap(70000, ""));  // only the start
  EXPECT_NE(mapper.LockFile(69999, 1), nullptr);
  mapper.UnlockFile();
  TakeTraces();
  EXPECT_EQ(mapper.LockFile(69999, 2), nullptr);
  EXPECT_EQ(TakeTraces().at(0).rfind("CRkFileMapper::LockFile >> Error : ", 0), 0u);
  mapper.CloseMap();
  ASSERT_TRUE(mapper.CreateMap(300000, ""));  // more than there is: the file grows
  EXPECT_EQ(mapper.GetFileSize(), 300000u);
  EXPECT_TRUE(mapper.CloseFile());
  EXPECT_EQ(mapper.GetFileSize(), 0u);
}

TEST_F(FileMapper, GrowsByWholeStepsAndNeverShrinks) {
  CRkFileMapper mapper;
  EXPECT_FALSE(mapper.SetFileSize(1));
  ASSERT_TRUE(mapper.OpenFile(Write("a", "").c_str()));
  EXPECT_FALSE(mapper.CreateMap(0, ""));  // an empty file has no bytes to map
  struct Case {
    int step;
    std::uint64_t size;
    bool answer;
    std::uint64_t file_size;
  };
  const Case cases[] = {{10 << 20, 0, true, 0},
                        {0, 1, false, 0},
                        {-5, 1, false, 0},
                        {1000, 1, true, 1000},
                        {1000, 1000, true, 1000},
                        {1000, 1001, true, 2000},
                        {1000, 7, true, 2000},
                        {3000, 3000, true, 6000},
                        {10 << 20, ~0ull, false, 6000},
                        {1, ~0ull, false, 6000},
                        {10 << 20, 1ull << 62, false, 6000},
                        {10 << 20, 10 * kMiB, true, 20 * kMiB}};
  for (const auto& [step, size, answer, file_size] : cases) {
    mapper.SetUnitExtensionSize(step);
    EXPECT_EQ(mapper.SetFileSize(size), answer) << size;
    EXPECT_EQ(mapper.GetFileSize(), file_size) << size;
  }
  ASSERT_TRUE(mapper.CreateMap(0, "") && mapper.LockFile(0, 0) != nullptr);
  EXPECT_TRUE(mapper.SetFileSize(20 * kMiB));
  EXPECT_FALSE(mapper.SetFileSize(20 * kMiB + 1));  // a view is held
  mapper.UnlockFile();
  EXPECT_TRUE(mapper.SetFileSize(20 * kMiB + 1));
  EXPECT_NE(mapper.LockFile(30 * kMiB - 1, 1), nullptr);
  CRkFileMapper other;
  ASSERT_TRUE(other.OpenFile(Write("b", "").c_str()) && other.SetFileSize(1));
  EXPECT_EQ(other.GetFileSize(), 104857600u);
  EXPECT_TRUE(other.SetFileSize(104857601));
  EXPECT_EQ(other.GetFileSize(), 209715200u);
}

TEST_F(FileMapper, OneWriterPerFileAndABoxForTheOthers) {
  const std::string path = Write("a", "abc");
  CRkFileMapper first;
  CRkFileMapper second;
  ASSERT_TRUE(first.OpenFile(path.c_str(), 1, 2));
  EXPECT_FALSE(first.OpenFile(path.c_str()));
  EXPECT_TRUE(TakeBoxes().empty());
  for (const std::string& bad : {path, Path("none"), Path(""), std::string()}) {
    EXPECT_FALSE(second.OpenFile(bad.c_str()));
    EXPECT_EQ(TakeBoxes().at(0).rfind("CRkM OpenFile >> Error with ", 0), 0u);
    EXPECT_EQ(
        TakeTraces().at(0).rfind("CRkFileMapper::OpenFile(" + bad + ") >> File Open Error ", 0),
        0u);
  }
  EXPECT_FALSE(second.OpenFile(nullptr));
  ASSERT_TRUE(first.CloseFile());
  EXPECT_TRUE(second.OpenFile(path.c_str(), 7, 1));
}

TEST_F(FileMapper, WritesGrowAndCopiesShare) {
  const std::string path = Write("a", "");
  CRkFileMapper mapper;
  CRkFileMapper closed_copy(mapper);
  mapper.SetUnitExtensionSize(1000);
  EXPECT_FALSE(mapper.WriteFileData(0, kBytes, 5));
  ASSERT_TRUE(mapper.OpenFile(path.c_str()));
  EXPECT_FALSE(mapper.WriteFileData(0, kBytes, 5));  // grows, but there is no map
  ASSERT_TRUE(mapper.CreateMap(0, ""));
  EXPECT_TRUE(mapper.WriteFileData(998, kBytes, 5));
  EXPECT_FALSE(mapper.WriteFileData(0, kBytes, -1) || mapper.WriteFileData(~0ull, kBytes, 5));
  EXPECT_EQ(Read(path).substr(998, 5), "\1\2\3\4\5");
  EXPECT_EQ(mapper.GetFileSize(), 2000u);
  CRkFileMapper copy(mapper);
  closed_copy = closed_copy;
  EXPECT_FALSE(closed_copy.IsFileOpened());
  EXPECT_NE(copy.LockFile(0, 1), nullptr);
  EXPECT_TRUE(mapper.IsLocked());
  EXPECT_FALSE(mapper.WriteFileData(0, kBytes, 5));  // a view is held: gives up view and map
  EXPECT_FALSE(copy.IsLocked() || copy.FlushFile());
  { const CRkFileMapper short_lived(copy); }
  EXPECT_TRUE(mapper.IsFileOpened() && copy.CloseFile());
  EXPECT_FALSE(mapper.IsFileOpened() || mapper.CloseFile());
  EXPECT_TRUE(closed_copy.OpenFile(path.c_str()));
  EXPECT_FALSE(mapper.IsFileOpened());
}

TEST_F(FileMapper, WorksInWindowsWhereTheAddressSpaceIsShort) {
  FaultyFiles files;
  files.address_space = 100000;
  CRkFileMapper mapper;
  mapper.SetUnitExtensionSize(1 << 20);
  ASSERT_TRUE(mapper.OpenFile(Write("a", "abc").c_str()) && mapper.CreateMap(0, ""));
  for (const std::uint64_t offset : {0ull, 700000ull, 65536ull, 5ull, 3000000ull}) {
    ASSERT_TRUE(mapper.WriteFileData(offset, kBytes, 5));
    const BYTE* const view = mapper.LockFile(offset, 5);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(std::memcmp(view, kBytes, 5), 0);
    EXPECT_TRUE(mapper.FlushFile() && mapper.UnlockFile());
  }
  EXPECT_EQ(mapper.LockFile(0, 0), nullptr);
  EXPECT_EQ(Read(Path("a")).substr(65536, 5), "\1\2\3\4\5");
}

}  // namespace
