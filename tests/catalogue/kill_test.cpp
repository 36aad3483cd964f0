#include <chrono>
#include <cstdlib>
#include <fstream>
#include <random>
#include <thread>

#include "catalogue_test.h"
#include "tests/child_process.h"
#include "tests/dao/integrity.h"
#include "tests/temporary_folder.h"
#include "vdstomgr/storage/verify_storage.h"

namespace vdstomgr {
namespace {

namespace fs = std::filesystem;

/// A library: a catalogue with or without a password and the images of its photos. Photo number n
/// is added, with its image before it, then moved to folder n % 3.
struct Library {
  explicit Library(const fs::path& where) : folder(where) {
    if (folder.filename() == "secret") password = "secret";
  }

  std::string Path(const char* name) const { return (folder / name).string(); }
  static std::string GuidOf(int number) { return "photo " + std::to_string(number); }
  static std::string ImageOf(int number) {
    return std::string(static_cast<std::size_t>(number) * 7919 % 30000, 'i') + GuidOf(number);
  }
  static PHOTOINFO PhotoOf(int number, DWORD in) {
    PHOTOINFO photo;
    photo.SetGUID(GuidOf(number).c_str());
    photo.SetFolderID(in);
    photo.SetFileName((GuidOf(number) + ".jpg").c_str());
    return photo;
  }
  bool Create() {
    fs::create_directories(folder);
    std::ofstream(Path("said"), std::ios::binary).flush();
    return catalogue.CreateDB(Path("c.db").c_str(), password) &&
           images.CreateFileA(Path("i.pdb").c_str(), 1);
  }
  bool Open() {
    return catalogue.OpenDB(Path("c.db").c_str(), password) &&
           images.OpenFile(Path("i.pdb").c_str());
  }
  void Close() {
    catalogue.CloseDB();
    images.CloseFile();
  }
  bool Step(int step) {
    const int number = step / 2;
    if (step % 2 != 0) {
      return catalogue.SetPhotoInfo(PhotoOf(number, static_cast<DWORD>(number % 3)), false);
    }
    const std::string image = ImageOf(number);
    return images.SetImage(GuidOf(number).c_str(), reinterpret_cast<const BYTE*>(image.data()),
                           static_cast<int>(image.size())) &&
           catalogue.AddPhotoInfo(PhotoOf(number, kGuestRoot), true);
  }
  std::uintmax_t Said() const { return fs::file_size(Path("said")); }

  fs::path folder;
  const char* password = "";
  OpenCatalogue catalogue;
  CRkPhotoImageStorage images;
};

/// Goes on until it is killed, with a byte for each step once it is done.
[[noreturn]] void WorkOn(const fs::path& folder) {
  Library library(folder);
  SetDatabaseErrorHandler([](int, const char*) { std::_Exit(3); });
  std::ofstream said(library.Path("said"), std::ios::binary | std::ios::app);
  if (!library.Open()) std::_Exit(4);
  for (int step = static_cast<int>(library.Said());; ++step) {
    if (!library.Step(step) || !said.put('.').flush()) std::_Exit(5);
  }
}

void ExpectAllThatWasSaid(Library& library) {
  const int said = static_cast<int>(library.Said());
  const int begun = said / 2 + 1;
  EXPECT_LE(library.catalogue.GetPhotoCount(), begun);
  EXPECT_GE(library.catalogue.GetPhotoCount(), (said + 1) / 2);
  for (int number = 0; number < begun && !testing::Test::HasFailure(); ++number) {
    const std::string guid = Library::GuidOf(number);
    const DWORD in = library.catalogue.GetFolderID(guid.c_str());
    const bool is_moved = in == static_cast<DWORD>(number % 3);
    EXPECT_TRUE(is_moved || 2 * number + 1 >= said) << number;
    if (2 * number >= said) continue;
    CBinData image;
    EXPECT_TRUE(is_moved || in == kGuestRoot) << number;
    EXPECT_TRUE(library.images.GetImage(guid.c_str(), image)) << number;
    EXPECT_EQ(std::string(image.begin(), image.end()), Library::ImageOf(number));
  }
  CRkDaoDatabase database;
  database.Open(library.Path("c.db").c_str(), false, false,
                (";PWD=" + std::string(library.password)).c_str());
  ExpectSound(database);
}

/// Lets a process work on a library and kills it at any instant once it has begun.
void KillOne(const Library& library, std::chrono::microseconds after) {
  const auto before = library.Said();
  ChildProcess process(library.folder.string());
  for (int i = 0; i < 60'000 && library.Said() == before; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  std::this_thread::sleep_for(after);
  ASSERT_TRUE(process.Kill()) << "the process ended by itself";
}

TEST(Kills, LoseNothingOfALibraryThatWasAcknowledged) {
  if (const char* const folder = ChildProcess::Order()) WorkOn(folder);
  const fs::path folder = MakeTemporaryFolder("kills");
  std::mt19937 random(11);
  for (const char* const kind : {"plain", "secret"}) {
    Library library(folder / kind);
    ASSERT_TRUE(library.Create());
    for (int round = 0; round < 25 && !testing::Test::HasFailure(); ++round) {
      SCOPED_TRACE(std::string(kind) + " " + std::to_string(round));
      KillOne(library, std::chrono::microseconds(random() % 60000));
      ASSERT_TRUE(library.Open());
      ExpectAllThatWasSaid(library);
      library.Close();
    }
    for (const auto& finding : VerifyStorage(library.Path("i.pdb").c_str()).findings) {
      EXPECT_EQ(finding.fault, StorageFault::RecordWithoutCluster) << finding.text;
    }
  }
  fs::remove_all(folder);
}

}  // namespace
}  // namespace vdstomgr
