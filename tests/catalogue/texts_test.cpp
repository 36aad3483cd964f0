#include <climits>
#include <functional>

#include "catalogue_test.h"
#include "vdstomgr/session/database_session.h"

namespace vdstomgr {
namespace {

constexpr int kMemo = INT_MAX;
constexpr bool kRaw = true;  ///< it stands in the statement as it is

int Characters(const std::string& utf8) {
  return static_cast<int>(std::ranges::count_if(utf8, [](char c) { return (c & 0xC0) != 0x80; }));
}

/// What is hard for a column of that width, and every Hangul syllable, some at a time.
std::vector<CString> TextsFor(int width) {
  std::vector<CString> texts{"a\xFF\x81z", "\xB0"};  // no characters in either code page
  for (const char* text : {"", "it's", "''", "\"q\"", "100%d%s", "b\\s\\", "[a-z]*", "?#!]", "';--",
                           " p ", "t\tn\n", "ÿ😀", "\u1112\u1161"})
    texts.push_back(FromUtf8(text));
  const int full = std::min(width, 400);
  for (const char* piece : {"x", "힣", "'"})
    for (const int count : {full, full + 1, 50'000}) {
      std::string text;
      for (int i = 0; i < count; ++i) text += piece;
      texts.push_back(FromUtf8(text));
    }
  std::string syllables;
  for (int next = 0xAC00; next <= 0xD7A3; ++next) {
    for (const int byte : {0xE0 | next >> 12, 0x80 | (next >> 6 & 63), 0x80 | (next & 63)})
      syllables += static_cast<char>(byte);
    if (Characters(syllables) < std::min(width, 30) && next < 0xD7A3) continue;
    texts.push_back(FromUtf8(std::exchange(syllables, "")));
  }
  return texts;
}

class TextsTest : public CatalogueTest, public testing::WithParamInterface<TextCodePage> {
 protected:
  void SetUp() override {
    SetTextCodePage(GetParam());
    ASSERT_TRUE(catalogue_.RefreshDB() && AddFolder(1, 0, "n"));
    TRASHPHOTOINFO trash;
    trash.SetGUID("g");
    catalogue_.AddPhotoInfo(Photo("g"), false), catalogue_.AddTrashPhotoInfo(trash, false);
    catalogue_.AddRoomInfo({1, "n", 0, 0}), catalogue_.AddAlbumInfo(1, 1, 0, "n", "");
    catalogue_.AddTagInfo("n", 1), catalogue_.AddRP("g", ""), catalogue_.AddOP("g", "");
  }
  /// A column of that width in characters. What fits stands in it as it is; what does not changes
  /// nothing. `write` leaves in the text what the record that it goes through holds of it.
  void Check(const char* what, int width, const std::function<void(CString&)>& write,
             const std::function<CString()>& read, bool is_raw = false) {
    SCOPED_TRACE(what);
    for (CString text : TextsFor(width)) {
      const CString before = read();
      write(text);
      const std::string utf8 = ToUtf8(text);
      if (is_raw && utf8.find("''") != utf8.npos) continue;  // comes out as one
      const bool fits = Characters(utf8) <= width && !(is_raw && text.Find('\'') >= 0);
      ASSERT_EQ(read(), fits ? CString(FromUtf8(utf8)) : before) << utf8;
      ASSERT_TRUE(TakeReports().empty() || !fits) << utf8;
    }
  }
};

/// A field of a record, by what puts a text into it and what takes it out.
#define FIELD(Record, load, store, width, put, take)           \
  Check(                                                       \
      #Record " " #take, width,                                \
      [this](CString& text) {                                  \
        Record r;                                              \
        catalogue_.load, put, text = r.take, catalogue_.store; \
      },                                                       \
      [this] {                                                 \
        Record r;                                              \
        return catalogue_.load, CString(r.take);               \
      })
#define PHOTO(name, width)                                                                \
  FIELD(PHOTOINFO, GetPhotoInfo("g", r), SetPhotoInfo(r, true), width, r.Set##name(text), \
        Get##name())
#define TRASH(name, width)                                                            \
  FIELD(TRASHPHOTOINFO, GetTrashPhotoInfo("g", r), SetTrashPhotoInfo(r, true), width, \
        r.Set##name(text), sz##name)
#define FOLDER(field, width)                                       \
  FIELD(FOLDERINFO, GetFolderInfo(1u, r), SetFolderInfo(r), width, \
        CopyToFixed(r.field, text.Str()), field)

TEST_P(TextsTest, GoIntoRecordsWholeOrNotAtAll) {
  PHOTO(FileName, kMemo), PHOTO(LTBURL, 255), PHOTO(RPURL, 255), PHOTO(OPURL, 255),
      PHOTO(Shooter, 32), PHOTO(CameraModel, 64), PHOTO(CameraLens, 64), PHOTO(ExifVer, 8),
      PHOTO(ExifMaker, 32), PHOTO(ExifModel, 32), PHOTO(ExifExposure, 8), PHOTO(ExifFnumber, 8),
      PHOTO(UploadUserID, 50), PHOTO(LockID, 50), PHOTO(LockKey, 41), PHOTO(LockIP, 30),
      PHOTO(MemoID, 36);
  TRASH(FileName, kMemo), TRASH(FolderPath, kMemo), TRASH(LTBURL, 255), TRASH(MD5, 40),
      TRASH(UploadUserID, 50), TRASH(DeleteUserID, 50);
  FOLDER(szFolderName, kMemo), FOLDER(szDesc, 255), FOLDER(szIconGUID, 36), FOLDER(szIconURL, 255),
      FOLDER(szGuestID, 21), FOLDER(szFolderPassword, 21), FOLDER(szSecureFolderSetter, 21),
      FOLDER(szCreatorSubID, 21), FOLDER(szMemoID, 36);
  FIELD(PHOTOINFO, GetPhotoInfo("g", r), SetPhotoInfo(r, true), 40,
        CopyToFixed(r.szMD5, text.Str()), szMD5);
  FIELD(PHOTOINFO, GetPhotoInfo("g", r), SetPhotoInfo(r, true), 8, r.SetExifExposuerBias(text),
        GetExifExposureBias());
  FIELD(ROOMINFO, GetRoomInfo(1, r), SetRoomInfo(r), 50, CopyToFixed(r.szRoomName, text.Str()),
        szRoomName);
}

/// A column, by an operation and by where it stands.
#define BY(width, call, column, rows, ...)                                                       \
  Check(                                                                                         \
      #call, width, [this](CString& text) { catalogue_.call; },                                  \
      [this] { return catalogue_.m_db->AskText("SELECT " column " FROM " rows); } __VA_OPT__(, ) \
          __VA_ARGS__)
#define THE_FOLDER "FolderInfo WHERE dwFolderID = 1"

TEST_P(TextsTest, GoThroughStatementsWholeOrNotAtAll) {
  BY(200, SetTitle("g", text), "szTitle", "PhotoMaster");
  BY(kMemo, SetFileName("g", text), "szFileName", "PhotoMaster");
  BY(kMemo, SetDesc("g", text), "szDesc", "PhotoMaster");
  BY(32, SetShooter("g", text), "szShooter", "PhotoMaster");
  BY(64, SetCameraModel("g", text), "szCameraModel", "PhotoMaster");
  BY(64, SetCameraLens("g", text), "szCameraLens", "PhotoMaster");
  BY(kMemo, RenameFolder(1, text, "d"), "szFolderName", THE_FOLDER);
  BY(255, RenameFolder(1, "n", text), "szDesc", THE_FOLDER);
  BY(64, ChangeTagName(1, text), "szTagName", "TagInfo");
  BY(64, ChangeAlbumName(1, 1, text, "d"), "szAlbumName", "AlbumInfo");
  BY(255, ChangeAlbumName(1, 1, "n", text), "szDesc", "AlbumInfo");
  BY(255, SetRP("g", text), "szPathName", "PhotoRP");
  BY(255, SetOP("g", text), "szPathName", "PhotoOP");
  BY(21, SetFolderPassword(1, 1, text), "szFolderPassword", THE_FOLDER, kRaw);
  BY(21, SetFolderPassword(1, 1, "", text), "szSecureFolderSetter", THE_FOLDER, kRaw);
  BY(21, SetCreatorSubIDInfo(1, text, 1), "szCreatorSubID", THE_FOLDER, kRaw);
  BY(19, SetVersionInfo("CameraLens", text), "szVersion", "VersionInfo WHERE szName = 'CameraLens'",
     kRaw);
}

TEST_P(TextsTest, AreListedWholeOrNotAtAll) {
  const struct {
    bool (catalogue::SideTables::*add)(const char*);
    int (catalogue::SideTables::*get)(CStringArray&);
  } kLists[] = {{&OpenCatalogue::AddModel, &OpenCatalogue::GetModel},
                {&OpenCatalogue::AddMyModel, &OpenCatalogue::GetMyModel},
                {&OpenCatalogue::AddLens, &OpenCatalogue::GetLens},
                {&OpenCatalogue::AddMyLens, &OpenCatalogue::GetMyLens}};
  for (const auto& list : kLists) {
    CString last;
    const auto add = [&](const CString& text) {
      CStringArray names;
      (catalogue_.*list.add)(text), (catalogue_.*list.get)(names);
      const CString name = FromUtf8(ToUtf8(text));
      if (std::ranges::count(names, name) == 1) last = name;
    };
    Check("a list", 64, add, [&] { return last; });
  }
}

INSTANTIATE_TEST_SUITE_P(CodePages, TextsTest,
                         testing::Values(TextCodePage::korean949, TextCodePage::utf8));

}  // namespace
}  // namespace vdstomgr
