#include "tests/storage/record_test.h"
#include "tests/system.h"
#include "vdstomgr/storage/file_mapper.h"
#include "vdstomgr/storage/image_storage.h"

namespace {

namespace fs = std::filesystem;

/// A closed storage, and what may not happen to it while somebody has it open.
class InUse : public Records {
 protected:
  InUse() {
    Make(kText, 44);
    EXPECT_TRUE(Put("a", "old"));
    storage_.FreeStorageFile();
    EXPECT_TRUE(images_.OpenFile(path_.c_str()));
    images_.CloseFile();
  }
  bool Create() { return CRkStorageManager::CreateStorageFile(path_.c_str(), 8, kNumber, 4); }

  /// That each attempt fails, in this process and in another, and changes neither file.
  void ExpectRefusals() {
    const std::function<bool()> attempts[] = {
        [&] { return Create(); },
        [&] { return CRkPhotoImageStorage().CreateFileA(path_.c_str(), 8); },
        [&] { return images_.DeleteFileA(); },
    };
    const std::string content = Content();
    for (const auto& attempt : attempts) {
      EXPECT_FALSE(attempt());
#if !defined(_WIN32)
      EXPECT_EQ(Run(attempt), 1);
#endif
      EXPECT_EQ(Content(), content);
    }
  }
  /// Both files as far as they count; "-" for what is no file.
  std::string Content() const {
    std::string content;
    for (const std::string& file : {path_, index_}) {
      content += fs::is_regular_file(file) ? Read(file).substr(0, 500) : "-";
    }
    return content;
  }

  CRkPhotoImageStorage images_;  ///< remembers the storage
};

TEST_F(InUse, AStorageIsNeitherReplacedNorDeleted) {
  ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str()));
  ExpectRefusals();
  ASSERT_TRUE(Put("b", "new"));
  storage_.FreeStorageFile();
  ASSERT_TRUE(images_.OpenFile(path_.c_str()));
  EXPECT_FALSE(images_.GetImageToFile("a", path_.c_str()));  // not over itself
  images_.CloseFile();
  ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str()));
  EXPECT_EQ(Find("a") + Find("b"), "oldnew");
  storage_.FreeStorageFile();
  EXPECT_TRUE(images_.DeleteFileA());
  EXPECT_FALSE(fs::exists(path_) || fs::exists(index_));
}

TEST_F(InUse, NeitherFileIsTouchedForTheSakeOfOne) {
  CRkFileArrayManager array;
  CRkFileMapper mapper;
  ASSERT_TRUE(array.OpenFile(index_.c_str()));
  ExpectRefusals();
  fs::rename(path_, Path("aside"));
  ExpectRefusals();
  array.CloseFile();
  fs::rename(Path("aside"), path_);
  ASSERT_TRUE(mapper.OpenFile(path_.c_str()));
  ExpectRefusals();
  fs::rename(index_, Path("aside"));
  ExpectRefusals();
  for (const std::string& file : {path_, index_}) {
    mapper.CloseFile();
    fs::remove(file);
    fs::create_directory(file);
    ExpectRefusals();
    fs::remove(file);
    EXPECT_TRUE(Create());  // with one of the two, or none
  }
}

#if defined(_WIN32)
NOT_ON_WINDOWS(InUse, ReadersAndLinksKeepTheOldFile,
               "a name is free there once its last reader goes")
#else
TEST_F(InUse, ReadersAndLinksKeepTheOldFile) {
  std::unique_ptr<vdstomgr::os::File> reader;
  std::string bytes = Content().substr(0, 300);
  std::string read(bytes.size(), ' ');
  std::size_t count = 0;
  ASSERT_FALSE(vdstomgr::os::Files().Open(path_, vdstomgr::os::OpenMode::read, reader));
  EXPECT_TRUE(Create());
  EXPECT_FALSE(reader->ReadAt(0, read.data(), read.size(), count));
  EXPECT_EQ(read, bytes);
  fs::rename(path_, Path("target"));
  fs::create_symlink(Path("target"), path_);
  CRkFileMapper mapper;
  ASSERT_TRUE(mapper.OpenFile(Path("target").c_str()));
  ExpectRefusals();
  mapper.CloseFile();
  bytes = Read(Path("target"));
  EXPECT_TRUE(Create() && fs::is_regular_file(fs::symlink_status(path_)));
  EXPECT_EQ(Read(Path("target")), bytes);
}
#endif

TEST_F(InUse, ABackupIsNotDeletedByACompaction) {
  for (const std::string& file : {path_, index_}) fs::copy(file, file + ".bak");
  CRkFileMapper mapper;
  ASSERT_TRUE(mapper.OpenFile((path_ + ".bak").c_str()));
  EXPECT_FALSE(CRkStorageManager::CompactStorageFile(path_.c_str()));
  EXPECT_TRUE(fs::exists(path_ + ".bak"));
  EXPECT_FALSE(fs::exists(path_ + ".compacting.pdb"));
  ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str()));
  EXPECT_EQ(Find("a"), "old");
}

}  // namespace
