#if !defined(_WIN32)
#include <sys/resource.h>
#endif

#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <thread>

#include "catalogue_test.h"
#include "tests/system.h"

namespace vdstomgr {
namespace {

using SessionTest = CatalogueTest;
using namespace std::chrono_literals;

constexpr const char* kPassword25 = "abcdefghijklmnopqrstuvwxy";

std::string Names(OpenCatalogue& catalogue) {
  std::string names;
  for (const DWORD id : {kPersonalRoot, kPublicRoot, kGuestRoot, kPersonalTrash})
    names += ToUtf8(catalogue.GetFolderName(id)) + '|';
  return names;
}

TEST_F(SessionTest, RootsHaveTheSameNamesUnderBothCodePages) {
  const std::string expected = "개인 폴더|공용 폴더|게스트 폴더|휴지통|";
  EXPECT_EQ(Names(catalogue_), expected);
  EXPECT_EQ(catalogue_.GetFolderName(0), "\xB0\xB3\xC0\xCE \xC6\xFA\xB4\xF5");
  catalogue_.CloseDB();
  SetTextCodePage(TextCodePage::utf8);
  ASSERT_TRUE(catalogue_.OpenDB(file_.c_str(), nullptr));
  EXPECT_EQ(Names(catalogue_), expected);
  EXPECT_EQ(catalogue_.GetFolderName(0), "개인 폴더");
}

TEST_F(SessionTest, OpeningGivesTheRootsTheirNamesAgain) {
  for (const DWORD id : {kPersonalRoot, kGuestRoot, kPersonalTrash})
    EXPECT_TRUE(catalogue_.RenameFolder(id, "it's mine", ""));
  EXPECT_TRUE(catalogue_.RefreshDB());
  EXPECT_EQ(Names(catalogue_), "개인 폴더|공용 폴더|게스트 폴더|it's mine|");
}

TEST_F(SessionTest, ASecondOpenIsRefusedAndChangesNothing) {
  EXPECT_FALSE(catalogue_.OpenDB(Path("other.db").c_str(), ""));
  EXPECT_EQ(catalogue_.GetFolderCount(), 6);
  EXPECT_TRUE(catalogue_.RefreshDB());
  EXPECT_EQ(catalogue_.GetFolderCount(), 6);
}

TEST_F(SessionTest, TheFirstTwentyPlacesOfAPasswordCount) {
  const std::string path = Path("p.db");
  const std::string first20(kPassword25, 20);
  const struct {
    std::string password;
    bool opens;
  } kCases[] = {{kPassword25, true},
                {first20, true},
                {first20 + "!!", true},
                {first20.substr(0, 19), false},
                {"", false},
                {"ABCDEFGHIJKLMNOPQRST", false}};
  for (const std::string& made : {std::string(kPassword25), first20}) {
    OpenCatalogue catalogue;
    ASSERT_TRUE(catalogue.CreateDB(path.c_str(), made.c_str()));
    for (const auto& c : kCases) {
      EXPECT_EQ(catalogue.OpenDB(path.c_str(), c.password.c_str()), c.opens) << c.password;
      EXPECT_TRUE(catalogue.CloseDB());
      EXPECT_EQ(TakeReports(), c.opens ? Reports() : Reports{3031}) << c.password;
    }
  }
  OpenCatalogue wide;  // the 20th and 21st byte are one character, which is left out whole
  ASSERT_TRUE(wide.CreateDB(path.c_str(), "abcdefghijklmnopqrs\xB0\xA1"));
  EXPECT_TRUE(wide.OpenDB(path.c_str(), "abcdefghijklmnopqrs"));
}

TEST_F(SessionTest, APasswordIsTheSameTextUnderBothCodePages) {
  const std::string korean = "가나다라마바사아자차";  // ten syllables, twenty places
  const struct {
    std::string password;
    bool opens;
  } kCases[] = {{korean, true},
                {korean + "카", true},
                {korean + "!", true},
                {korean.substr(0, 27), false},
                {"a" + korean, false}};
  const auto in = [](TextCodePage code_page, const std::string& utf8) {
    SetTextCodePage(code_page);
    return code_page == TextCodePage::utf8 ? utf8 : FromUtf8(utf8);
  };
  for (const TextCodePage made : {TextCodePage::korean949, TextCodePage::utf8}) {
    OpenCatalogue catalogue;
    const std::string path = Path("k.db");
    ASSERT_TRUE(catalogue.CreateDB(path.c_str(), in(made, korean).c_str()));
    for (const TextCodePage opened : {TextCodePage::korean949, TextCodePage::utf8})
      for (const auto& c : kCases) {
        EXPECT_EQ(catalogue.OpenDB(path.c_str(), in(opened, c.password).c_str()), c.opens)
            << c.password;
        catalogue.CloseDB();
        EXPECT_EQ(TakeReports(), c.opens ? Reports() : Reports{3031}) << c.password;
      }
  }
}

TEST_F(SessionTest, APasswordThatWasOnceCutInBytesStillOpensItsFile) {
  SetTextCodePage(TextCodePage::utf8);
  const std::string password = "가나다라마바사아";
  {
    CRkDaoDatabase database;  // as such files were made: the first 20 bytes, six syllables
    database.Create(Path("old.db").c_str());
    database.NewPassword("", password.substr(0, 18).c_str());
    database.ExecuteOrThrow("CREATE TABLE FolderInfo (dwFolderID INTEGER, szFolderName MEMO)");
  }
  OpenCatalogue catalogue;
  EXPECT_TRUE(catalogue.OpenDB(Path("old.db").c_str(), password.c_str()));
}

TEST_F(SessionTest, AFileThatIsOpenForReadingStaysAsItIs) {
  ASSERT_TRUE(catalogue_.RenameFolder(kGuestRoot, "mine", ""));
  catalogue_.CloseDB();
  ASSERT_TRUE(OpenForReading(catalogue_, file_.c_str(), ""));
  EXPECT_TRUE(catalogue_.RefreshDB());
  EXPECT_EQ(catalogue_.GetFolderName(kGuestRoot), "mine");
  EXPECT_FALSE(catalogue_.AddPhotoInfo(Photo("g"), true));
  EXPECT_FALSE(catalogue_.RenameFolder(kGuestRoot, "yours", ""));
  EXPECT_EQ(TakeReports(), Reports(2, 3027));
  EXPECT_EQ(catalogue_.GetFolderName(kGuestRoot), "mine");
}

TEST_F(SessionTest, ASecondOpenDoesNotWaitForTheLock) {
  std::atomic<bool> answered = false;
  const ScopedLock held(*catalogue_.GetDAOCriticalSection());
  std::jthread second([&] {
    EXPECT_FALSE(catalogue_.OpenDB(Path("other.db").c_str(), ""));
    answered = true;
  });
  for (int i = 0; i < 1000 && !answered; ++i) std::this_thread::sleep_for(10ms);
  EXPECT_TRUE(answered);
  if (!answered) second.detach();
}

TEST_F(SessionTest, EachFailureToOpenIsReportedOnceUnderItsNumber) {
  std::ofstream(Path("text.db")) << std::string(5000, 'x');
  std::ofstream(Path("empty.db")) << "";
  std::filesystem::create_directory(Path("folder.db"));
  std::filesystem::copy_file(file_, Path("short.db"));
  catalogue_.CloseDB();
  std::filesystem::copy_file(file_, Path("cut.db"));
  std::filesystem::resize_file(Path("cut.db"), 9000);
  const struct {
    const char *name, *password;
    int code;
  } kCases[] = {{"missing.db", "", 3024}, {"no/folder.db", "", 3044}, {"text.db", "", 3343},
                {"empty.db", "", 3343},   {"c.db", "secret", 3031},   {"cut.db", "", 3049}};
  for (const auto& c : kCases) {
    EXPECT_FALSE(catalogue_.OpenDB(Path(c.name).c_str(), c.password)) << c.name;
    EXPECT_EQ(TakeReports(), Reports{c.code}) << c.name;
  }
  EXPECT_FALSE(catalogue_.OpenDB(Path("folder.db").c_str(), ""));
  EXPECT_EQ(TakeReports().size(), 1u);
  EXPECT_TRUE(catalogue_.OpenDB(file_.c_str(), ""));
}

TEST_F(SessionTest, AClosedCatalogueFailsWithOneReportEach) {
  catalogue_.CloseDB();
  EXPECT_TRUE(catalogue_.CloseDB());
  FOLDERINFO folder;
  EXPECT_FALSE(catalogue_.GetFolderInfo(0u, folder));
  EXPECT_FALSE(catalogue_.AddPhotoInfo(Photo("g"), true));
  EXPECT_EQ(catalogue_.GetPhotoCount(), 0);
  EXPECT_EQ(catalogue_.GetFolderID("g"), kNoFolder);
  EXPECT_EQ(catalogue_.GetVersionInfo("PhotoMaster"), "");
  EXPECT_EQ(TakeReports(), Reports(5, 3420));
}

TEST_F(SessionTest, CreatingReplacesAFileButNeverAnOpenOne) {
  EXPECT_FALSE(catalogue_.CreateDB(file_.c_str(), ""));
  EXPECT_EQ(TakeReports(), Reports{3219});
  catalogue_.DeleteDB(file_.c_str());
  EXPECT_TRUE(std::filesystem::exists(file_));
  ASSERT_TRUE(AddFolder(5, 0, "x"));
  catalogue_.CloseDB();
  EXPECT_TRUE(catalogue_.CreateDB(file_.c_str(), ""));
  EXPECT_TRUE(catalogue_.OpenDB(file_.c_str(), ""));
  EXPECT_EQ(catalogue_.GetFolderCount(), 6);
  catalogue_.CloseDB();
  catalogue_.DeleteDB(file_.c_str());
  EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

#if defined(_WIN32)
constexpr const char* kNeedsChild = "what it limits is the process, which cannot fork there";
NOT_ON_WINDOWS(SessionTest, AFolderThatMayNotBeWrittenIsReportedOnce, kNeedsChild)
NOT_ON_WINDOWS(SessionTest, AFullDiskIsReportedOnceAndKeepsWhatWasStored, kNeedsChild)
NOT_ON_WINDOWS(SessionTest, AFailedCreationLeavesNoFile, kNeedsChild)
#else
TEST_F(SessionTest, AFolderThatMayNotBeWrittenIsReportedOnce) {
  catalogue_.CloseDB();
  const std::string odd = Path("a?b#%41.db");  // what means something in an address
  std::filesystem::copy_file(file_, odd);
  std::filesystem::permissions(folder_, std::filesystem::perms(0555));
  std::filesystem::permissions(file_, std::filesystem::perms(0444));
  EXPECT_EQ(InChild([&] {
              if (geteuid() == 0 && setuid(65534) != 0) return 9;
              if (catalogue_.OpenDB(file_.c_str(), "") || TakeReports().size() != 1) return 1;
              if (catalogue_.CreateDB(Path("new.db").c_str(), "")) return 2;
              if (TakeReports().size() != 1) return 3;
              if (!OpenForReading(catalogue_, odd.c_str(), "")) return 4;
              if (catalogue_.GetFolderCount() != 6 || !TakeReports().empty()) return 5;
              if (catalogue_.AddPhotoInfo(Photo("g"), true)) return 6;
              return TakeReports() == Reports{3027} ? 0 : 7;
            }),
            0);
  std::filesystem::permissions(folder_, std::filesystem::perms(0755));
}

TEST_F(SessionTest, AFullDiskIsReportedOnceAndKeepsWhatWasStored) {
  catalogue_.CloseDB();
  EXPECT_EQ(InChild([&] {
              std::signal(SIGXFSZ, SIG_IGN);
              if (!catalogue_.OpenDB(file_.c_str(), "")) return 1;
              if (!catalogue_.AddPhotoInfo(Photo("before"), false)) return 2;
              const auto size = static_cast<rlim_t>(std::filesystem::file_size(file_));
              const rlimit limit{size + 100'000, RLIM_INFINITY};
              setrlimit(RLIMIT_FSIZE, &limit);
              PhotoArray photos;
              for (int i = 0; i < 20'000; ++i) photos.Add(Photo("p" + std::to_string(i)));
              if (catalogue_.AddPhotoInfo(photos)) return 3;
              if (TakeReports() != Reports{3026}) return 4;
              if (catalogue_.CreateDB(Path("new.db").c_str(), "")) return 5;
              return 0;
            }),
            0);
  ASSERT_TRUE(catalogue_.OpenDB(file_.c_str(), ""));
  EXPECT_EQ(catalogue_.GetFolderID("before"), 0u);
}

TEST_F(SessionTest, AFailedCreationLeavesNoFile) {
  EXPECT_EQ(InChild([&] {
              std::signal(SIGXFSZ, SIG_IGN);
              const rlimit limit{30'000, RLIM_INFINITY};
              setrlimit(RLIMIT_FSIZE, &limit);
              OpenCatalogue catalogue;
              if (catalogue.CreateDB(Path("new.db").c_str(), "")) return 1;
              return TakeReports() == Reports{3026} ? 0 : 2;
            }),
            0);
  EXPECT_FALSE(std::filesystem::exists(Path("new.db")));
}

#endif

TEST_F(SessionTest, TheClockRunsOnFromWhatItWasSetTo) {
  catalogue_.SetTime(1000);
  const DWORD start = GetTickCount();
  EXPECT_EQ(catalogue_.GetTime(), 1000);
  std::this_thread::sleep_for(1100ms);
  const int passed = static_cast<int>((GetTickCount() - start) / 1000);
  EXPECT_NEAR(catalogue_.GetTime(), 1000 + passed, 1);
  EXPECT_GE(catalogue_.GetTime(), 1001);
  EXPECT_EQ(catalogue_.GetDBTime().GetLength(), 19);
  catalogue_.SetTime(-5);
  EXPECT_EQ(catalogue_.GetTime(), -5);
  EXPECT_EQ(catalogue_.GetNewRoomID(), 0xFFFFFFFF);
}

TEST_F(SessionTest, LongBinariesComeFromFilesAndColumns) {
  std::ofstream(Path("b"), std::ios::binary) << std::string("ab\0c", 4);
  CLongBinary holder;
  EXPECT_FALSE(catalogue_.cLoadFileData(Path("none").c_str(), holder));
  ASSERT_TRUE(catalogue_.cLoadFileData(Path("b").c_str(), holder));
  ASSERT_EQ(holder.m_dwDataLength, 4u);
  EXPECT_EQ(holder.m_hData[3], 'c');
  CBinData data;
  EXPECT_FALSE(catalogue_.cGetLongBinary(COleVariant("text"), data));
  EXPECT_TRUE(catalogue_.cGetLongBinary(COleVariant(std::vector<BYTE>{1, 2}), data));
  EXPECT_TRUE(catalogue_.cGetLongBinary(COleVariant(std::vector<BYTE>{1, 2, 3}), holder));
  EXPECT_EQ(data.GetLength(), 2u);
  EXPECT_EQ(holder.m_hData[2], 3);
}

}  // namespace
}  // namespace vdstomgr
