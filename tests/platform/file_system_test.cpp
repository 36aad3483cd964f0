#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>

#include "vdstomgr/platform/os/file.h"

namespace vdstomgr::os {
namespace {

const std::string kText = "0123456789";
/// The system's error number for what somebody else may write.
#if defined(_WIN32)
constexpr int kClaimed = 32;  // a sharing violation
#else
constexpr int kClaimed = EWOULDBLOCK;
#endif

/// A folder of its own, of a name that no code page has whole, in which files have paths that are
/// too long for the plain calls of some systems.
class FileSystemTest : public testing::Test {
 protected:
  FileSystemTest()
      : root_(testing::TempDir() + "vdsto_" + std::to_string(std::random_device{}())),
        folder_(root_) {
    for (int depth = 0; depth < 3; ++depth) folder_ /= u8"사진 À " + std::u8string(40, u8'x');
    std::filesystem::create_directories(folder_);
  }
  ~FileSystemTest() override {
    for (const char* const name : {"a", "b"}) files_.Delete(Path(name));
    std::filesystem::remove_all(root_);
  }

  std::string Path(const std::string& name) const {
    const std::u8string path = (folder_ / (std::string(120, 'n') + name)).u8string();
    return {path.begin(), path.end()};
  }
  std::unique_ptr<ExclusiveFile> Create(const std::string& name, Caching caching) {
    std::unique_ptr<ExclusiveFile> file;
    EXPECT_FALSE(files_.CreateNew(Path(name), caching, file));
    return file;
  }
  std::string Read(const std::string& name) {
    std::unique_ptr<File> file;
    std::string bytes(100, ' ');
    std::size_t count = 0;
    EXPECT_FALSE(files_.Open(Path(name), OpenMode::read, file));
    EXPECT_FALSE(file == nullptr || file->ReadAt(0, bytes.data(), bytes.size(), count));
    return bytes.substr(0, count);
  }

  FileSystem& files_ = SystemFiles();

 private:
  std::filesystem::path root_;
  std::filesystem::path folder_;
};

TEST_F(FileSystemTest, BytesGoAnywhereHoweverTheyAreCached) {
  for (const Caching caching : {Caching::normal, Caching::write_through, Caching::unbuffered}) {
    const auto file = Create("a", caching);
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(file->WriteAt(3, kText.data(), kText.size()));
    EXPECT_FALSE(file->WriteAt(70000, kText.data(), kText.size()));
    EXPECT_FALSE(file->WriteAt(69999, kText.data(), 0));
    char bytes[20];
    std::size_t count = 0;
    EXPECT_FALSE(file->ReadAt(70004, bytes, sizeof bytes, count));
    EXPECT_EQ(std::string(bytes, count), "456789");
    EXPECT_FALSE(file->ReadAt(70010, bytes, sizeof bytes, count));
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(file->WriteAt(~std::uint64_t{0} - 3, kText.data(), kText.size()));
    EXPECT_FALSE(file->SetSize(12) || file->Sync() || files_.SyncNames(Path("a")));
    EXPECT_EQ(Read("a"), std::string(3, '\0') + "012345678");  // while its writer has it
    EXPECT_FALSE(file->Close());
    EXPECT_TRUE(file->Close() && file->Sync());
    EXPECT_FALSE(files_.Delete(Path("a")));
  }
}

TEST_F(FileSystemTest, MappingsShowTheFileHoweverTheyArePaged) {
  const auto file = Create("a", Caching::normal);
  const std::uint64_t start = MapGranularity();
  std::unique_ptr<Mapping> mapping;
  ASSERT_FALSE(file->SetSize(start + 10));
  EXPECT_TRUE(file->Map(start, 11, Paging::plain, mapping));
  EXPECT_TRUE(file->Map(start, ~std::uint64_t{0}, Paging::plain, mapping));
  EXPECT_TRUE(file->Map(0, 0, Paging::plain, mapping));
  for (const Paging paging : {Paging::plain, Paging::commit, Paging::reserve_uncached}) {
    ASSERT_FALSE(file->Map(start, 10, paging, mapping));
    std::memcpy(mapping->Data() + static_cast<int>(paging), "xyz", 3);
    EXPECT_FALSE(mapping->Flush(1, 9, FlushDepth::durable) ||
                 mapping->Flush(10, 0, FlushDepth::light));
  }
  EXPECT_FALSE(file->Close());
  std::memcpy(mapping->Data() + 6, "late", 4);
  mapping.reset();
  std::unique_ptr<ExclusiveFile> again;
  ASSERT_FALSE(files_.OpenExclusive(Path("a"), Caching::normal, again));
  char bytes[10];
  std::size_t count = 0;
  EXPECT_FALSE(again->ReadAt(start, bytes, sizeof bytes, count));
  EXPECT_EQ(std::string(bytes, count), std::string("xxxyz\0late", 10));
}

TEST_F(FileSystemTest, NamesAndClaimsAreKept) {
  auto first = Create("a", Caching::normal);
  std::unique_ptr<ExclusiveFile> second;
  EXPECT_EQ(files_.CreateNew(Path("a"), Caching::normal, second), std::errc::file_exists);
  EXPECT_EQ(files_.OpenExclusive(Path("a"), Caching::normal, second).value(), kClaimed);
  EXPECT_TRUE(files_.Rename(Path("a"), Path("b")));
  std::unique_ptr<File> plain;
  EXPECT_FALSE(first->WriteAt(0, kText.data(), kText.size()));
  for (const OpenMode mode : {OpenMode::create, OpenMode::read_write}) {
    EXPECT_EQ(files_.Open(Path("a"), mode, plain).value(), kClaimed);
  }
  EXPECT_EQ(Read("a"), kText);
  first.reset();
  ASSERT_FALSE(files_.Open(Path("a"), OpenMode::create, plain));
  EXPECT_TRUE(files_.OpenExclusive(Path("a"), Caching::normal, second));
  plain.reset();
  EXPECT_FALSE(files_.OpenExclusive(Path("a"), Caching::normal, second));
  second.reset();
  EXPECT_EQ(files_.OpenExclusive(Path("none"), Caching::normal, second),
            std::errc::no_such_file_or_directory);
  EXPECT_TRUE(files_.OpenExclusive(Path(""), Caching::normal, second));
  EXPECT_TRUE(files_.OpenExclusive("\xFF", Caching::normal, second));
  EXPECT_EQ(second, nullptr);
  Create("b", Caching::normal);
  EXPECT_EQ(files_.Rename(Path("a"), Path("b")), std::errc::file_exists);
  EXPECT_FALSE(files_.Delete(Path("b")) || files_.Rename(Path("a"), Path("b")));
  EXPECT_TRUE(files_.Exists(Path("b")) && !files_.Exists(Path("a")));
  EXPECT_TRUE(files_.Delete(Path("a")));
  ASSERT_FALSE(files_.OpenExclusive(Path("b"), Caching::normal, first) || first->Delete());
  first.reset();
  EXPECT_FALSE(files_.Exists(Path("b")));
}

TEST_F(FileSystemTest, WhatAPathLeadsTo) {
  Create("a", Caching::normal);
  std::error_code no_links;  // where the system has none
  std::filesystem::create_symlink(Path("none"), Path("b"), no_links);
  const auto kind_of = [&](const std::string& path) {
    NameKind kind = NameKind::other;
    EXPECT_FALSE(files_.Look(path, kind)) << path;
    return kind;
  };
  EXPECT_EQ(kind_of(Path("a")), NameKind::file);
  EXPECT_EQ(kind_of(Path("")), NameKind::missing);
  EXPECT_EQ(kind_of("no file here"), NameKind::missing);
  EXPECT_EQ(kind_of("."), NameKind::folder);
  EXPECT_EQ(kind_of(Path("b")), no_links ? NameKind::missing : NameKind::nowhere);
  for (const std::string& path :
       {std::string(), Path("a") + "/", Path("a") + "/b", Path("b") + "/", Path("b") + "/c"}) {
    EXPECT_EQ(kind_of(path), NameKind::nowhere) << path;
  }
}

}  // namespace
}  // namespace vdstomgr::os
