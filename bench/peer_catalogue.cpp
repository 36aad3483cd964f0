#include "bench/peer_catalogue.h"

#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "vdstomgr/platform/dao/sqlite/functions.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace bench {
namespace {

constexpr const char* kWritten[] = {"szGUID",
                                    "szMD5",
                                    "szFileName",
                                    "byteFlag",
                                    "byteRating",
                                    "bytePublic",
                                    "byteComment",
                                    "szLTBURL",
                                    "szRPURL",
                                    "szOPURL",
                                    "dxFileSize",
                                    "wWidth",
                                    "wHeight",
                                    "dwFolderID",
                                    "szShooter",
                                    "szCameraModel",
                                    "szCameraLens",
                                    "byteRotate",
                                    "szShootDate",
                                    "szShootDay",
                                    "szRegDate",
                                    "szRegDay",
                                    "szUserModify",
                                    "szExifVer",
                                    "szExifMaker",
                                    "szExifModel",
                                    "szExifExposure",
                                    "szExifFnumber",
                                    "szExifExposureBias",
                                    "wExifFocalLength",
                                    "wExif35FocalLength",
                                    "wExifISO",
                                    "byteExifRotate",
                                    "byteExifMeteringMode",
                                    "byteExifFlash",
                                    "szExifShootDate",
                                    "byteInfoSync",
                                    "byteTagSync",
                                    "dwLastWriteTimeLow",
                                    "dwLastWriteTimeHigh",
                                    "szUploadUserID",
                                    "byteUploadEnd",
                                    "byteLinkUrl",
                                    "byteLockStatus",
                                    "byteLockIDType",
                                    "szLockID",
                                    "szLockKey",
                                    "szLockIP",
                                    "szLockTime",
                                    "szMemoID",
                                    "nCommentCount",
                                    "nTotalDownloadCount",
                                    "nLinkDownloadCount"};
constexpr int kWrittenCount = static_cast<int>(std::size(kWritten));

[[noreturn]] void Die(sqlite3* db) {
  std::fprintf(stderr, "peer: %s\n", sqlite3_errmsg(db));
  std::abort();
}

std::string Joined(const char* separator, const char* suffix, bool numbers) {
  std::string list;
  for (int i = 0; i < kWrittenCount; ++i) {
    if (i > 0) list += separator;
    if (!numbers) list += kWritten[i];
    list += suffix;
    if (numbers || *suffix) list += std::to_string(i + 1);
  }
  return list;
}

// Binds one row, column after column.
class Binder {
 public:
  explicit Binder(sqlite3_stmt* statement) : statement_(statement) {}

  Binder& Text(const char* process_text) {
    text_.clear();
    vdstomgr::AppendUtf8(process_text, text_);
    return Bind(text_.data(), static_cast<int>(text_.size()));
  }
  Binder& Number(std::int64_t value) {
    sqlite3_bind_int64(statement_, ++place_, value);
    return *this;
  }
  Binder& Time(std::int32_t time) {
    const CString text = CUtilityLib::GetTime(time);
    return Bind(text, text.GetLength());
  }
  Binder& TimeAndDay(std::int32_t time) {
    const CString text = CUtilityLib::GetTime(time);
    return Bind(text, text.GetLength()).Bind(text, 10);
  }
  Binder& Size(std::uint64_t size) {
    const CString text = CUtilityLib::GetString(size);
    return Bind(text, text.GetLength());
  }

 private:
  Binder& Bind(const char* text, int size) {
    sqlite3_bind_text(statement_, ++place_, text, size, SQLITE_TRANSIENT);
    return *this;
  }

  sqlite3_stmt* statement_;
  int place_ = 0;
  std::string text_;
};

void BindPhoto(sqlite3_stmt* statement, const PHOTOINFO& p) {
  Binder(statement)
      .Text(p.szGUID)
      .Text(p.szMD5)
      .Text(p.GetFileName())
      .Number(p.byteFlag)
      .Number(p.byteRating)
      .Number(p.bytePublic)
      .Number(p.byteComment)
      .Text(p.GetLTBURL())
      .Text(p.GetRPURL())
      .Text(p.GetOPURL())
      .Size(p.FileSize)
      .Number(p.Width)
      .Number(p.Height)
      .Number(static_cast<std::int32_t>(p.dwFolderID))
      .Text(p.GetShooter())
      .Text(p.GetCameraModel())
      .Text(p.GetCameraLens())
      .Number(p.byteRotate)
      .TimeAndDay(p.ShootDate)
      .TimeAndDay(p.RegDate)
      .Time(p.UserModify)
      .Text(p.GetExifVer())
      .Text(p.GetExifMaker())
      .Text(p.GetExifModel())
      .Text(p.GetExifExposure())
      .Text(p.GetExifFnumber())
      .Text(p.GetExifExposureBias())
      .Number(p.ExifFocalLength)
      .Number(p.Exif35FocalLength)
      .Number(p.ExifISO)
      .Number(p.ExifRotate)
      .Number(p.ExifMeteringMode)
      .Number(p.ExifFlash)
      .Time(p.ExifShootDate)
      .Number(p.InfoSync)
      .Number(p.TagSync)
      .Number(static_cast<std::int32_t>(p.LastWriteTimeLow))
      .Number(static_cast<std::int32_t>(p.LastWriteTimeHigh))
      .Text(p.GetUploadUserID())
      .Number(p.UploadEnd)
      .Number(p.LinkUrl)
      .Number(p.LockStatus)
      .Number(p.LockIDType)
      .Text(p.GetLockID())
      .Text(p.GetLockKey())
      .Text(p.GetLockIP())
      .Time(p.LockTime)
      .Text(p.GetMemoID())
      .Number(p.CommentCount)
      .Number(p.TotalDownloadCount)
      .Number(p.LinkDownloadCount);
}

// Reads one row, column after column.
class Reader {
 public:
  explicit Reader(sqlite3_stmt* statement) : statement_(statement) {}

  const char* Text() {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, ++place_));
    text_.clear();
    if (text) {
      const auto size = static_cast<size_t>(sqlite3_column_bytes(statement_, place_));
      vdstomgr::AppendFromUtf8({text, size}, text_);
    }
    return text_.c_str();
  }
  template <size_t N>
  void Text(char (&target)[N]) {
    std::snprintf(target, N, "%s", Text());
  }
  template <class Target>
  void Number(Target& target) {
    target = static_cast<Target>(sqlite3_column_int64(statement_, ++place_));
  }
  void Time(std::int32_t& target) {
    const std::int32_t time = CUtilityLib::GetTime(Text());
    target = time == -1 ? 0 : time;
  }
  std::uint64_t Size() { return CUtilityLib::StrToINT64(Text()); }
  void Skip() { ++place_; }

 private:
  sqlite3_stmt* statement_;
  int place_ = -1;
  std::string text_;
};

void FillPhoto(sqlite3_stmt* statement, PHOTOINFO& p) {
  Reader r(statement);
  r.Text(p.szGUID), r.Text(p.szMD5), p.SetFileName(r.Text());
  r.Number(p.byteFlag), r.Number(p.byteRating), r.Number(p.bytePublic), r.Number(p.byteComment);
  p.SetLTBURL(r.Text()), p.SetRPURL(r.Text()), p.SetOPURL(r.Text()), p.SetFileSize(r.Size());
  WORD width = 0, height = 0;
  r.Number(width), r.Number(height), p.SetWidthHeight(width, height), r.Number(p.dwFolderID);
  p.SetShooter(r.Text()), p.SetCameraModel(r.Text()), p.SetCameraLens(r.Text());
  r.Number(p.byteRotate);
  r.Time(p.ShootDate), r.Skip(), r.Time(p.RegDate), r.Skip(), r.Time(p.UserModify);
  p.SetExifVer(r.Text()), p.SetExifMaker(r.Text()), p.SetExifModel(r.Text());
  p.SetExifExposure(r.Text()), p.SetExifFnumber(r.Text()), p.SetExifExposuerBias(r.Text());
  r.Number(p.ExifFocalLength), r.Number(p.Exif35FocalLength), r.Number(p.ExifISO);
  r.Number(p.ExifRotate), r.Number(p.ExifMeteringMode), r.Number(p.ExifFlash);
  r.Time(p.ExifShootDate), r.Number(p.InfoSync), r.Number(p.TagSync);
  r.Number(p.LastWriteTimeLow), r.Number(p.LastWriteTimeHigh), p.SetUploadUserID(r.Text());
  r.Number(p.UploadEnd), r.Number(p.LinkUrl), r.Number(p.LockStatus), r.Number(p.LockIDType);
  p.SetLockID(r.Text()), p.SetLockKey(r.Text()), p.SetLockIP(r.Text()), r.Time(p.LockTime);
  p.SetMemoID(r.Text()), r.Number(p.CommentCount), r.Number(p.TotalDownloadCount);
  r.Number(p.LinkDownloadCount);
}

void FillFolder(sqlite3_stmt* statement, FOLDERINFO& f) {
  Reader r(statement);
  r.Number(f.dwFolderID), r.Number(f.dwParentID), r.Text(f.szFolderName), r.Text(f.szDesc);
  r.Number(f.nSpaceType), r.Text(f.szIconGUID), r.Text(f.szIconURL), r.Number(f.nPhotoCount);
  r.Number(f.bSystemFolder), r.Number(f.nFolderUpDownType), r.Number(f.bAllowPreviewImage);
  r.Number(f.bSharedOption), r.Number(f.bSecureFolder), r.Text(f.szGuestID);
  r.Text(f.szFolderPassword), r.Text(f.szSecureFolderSetter);
  r.Time(f.szModifiedDate), r.Time(f.szIModifiedDate), r.Number(f.nCreatorSubIDType);
  r.Text(f.szCreatorSubID), r.Text(f.szMemoID), r.Number(f.bAllowComment);
  r.Number(f.nCommentCount);
}

}  // namespace

PeerCatalogue::PeerCatalogue(const std::string& path) {
  if (sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr)) {
    Die(db_);
  }
  vdstomgr::sqlite::InstallFunctions(db_);
  sqlite3_exec(db_, "PRAGMA cache_size = -65536; PRAGMA journal_mode = WAL", nullptr, nullptr,
               nullptr);
  const std::string columns = Joined(", ", "", false);
  begin_ = Prepare("BEGIN IMMEDIATE");
  commit_ = Prepare("COMMIT");
  insert_ =
      Prepare("INSERT INTO PhotoMaster (" + columns + ") VALUES (" + Joined(", ", "?", true) + ")");
  has_ = Prepare("SELECT 1 FROM PhotoMaster WHERE szGUID = ?1");
  update_ = Prepare("UPDATE PhotoMaster SET " + Joined(", ", " = ?", false) + " WHERE szGUID = ?1");
  read_photo_ = Prepare("SELECT " + columns + " FROM PhotoMaster WHERE szGUID = ?1");
  read_folder_ = Prepare(
      "SELECT dwFolderID, dwParentID, szFolderName, szDesc, nSpaceType, szIconGUID, szIconURL, "
      "nPhotoCount, bSystemFolder, nFolderUpDownType, bAllowPreviewImage, bSharedOption, "
      "bSecureFolder, szGuestID, szFolderPassword, szSecureFolderSetter, szModifiedDate, "
      "szIModifiedDate, nCreatorSubIDType, szCreatorSubID, szMemoID, bAllowComment, nCommentCount "
      "FROM FolderInfo WHERE dwFolderID = ?1");
  set_title_ = Prepare("UPDATE PhotoMaster SET szTitle = ?1, byteInfoSync = 1 WHERE szGUID = ?2");
}

PeerCatalogue::~PeerCatalogue() {
  for (sqlite3_stmt* statement :
       {begin_, commit_, insert_, has_, update_, read_photo_, read_folder_, set_title_}) {
    sqlite3_finalize(statement);
  }
  sqlite3_close(db_);
}

sqlite3_stmt* PeerCatalogue::Prepare(const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v3(db_, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr))
    Die(db_);
  return statement;
}

void PeerCatalogue::Begin() {
  sqlite3_step(begin_);
  sqlite3_reset(begin_);
}

void PeerCatalogue::Commit() {
  sqlite3_step(commit_);
  sqlite3_reset(commit_);
}

bool PeerCatalogue::InsertPhoto(const PHOTOINFO& photo) {
  BindPhoto(insert_, photo);
  const bool done = sqlite3_step(insert_) == SQLITE_DONE;
  sqlite3_reset(insert_);
  return done;
}

bool PeerCatalogue::HasPhoto(const char* guid) {
  Binder(has_).Text(guid);
  const bool found = sqlite3_step(has_) == SQLITE_ROW;
  sqlite3_reset(has_);
  return found;
}

bool PeerCatalogue::UpdatePhoto(const PHOTOINFO& photo) {
  BindPhoto(update_, photo);
  const bool done = sqlite3_step(update_) == SQLITE_DONE;
  sqlite3_reset(update_);
  return done && sqlite3_changes(db_) > 0;
}

bool PeerCatalogue::ReadPhoto(const char* guid, PHOTOINFO& photo) {
  Binder(read_photo_).Text(guid);
  const bool found = sqlite3_step(read_photo_) == SQLITE_ROW;
  if (found) FillPhoto(read_photo_, photo);
  sqlite3_reset(read_photo_);
  return found;
}

bool PeerCatalogue::ReadFolder(DWORD id, FOLDERINFO& folder) {
  Binder(read_folder_).Number(static_cast<std::int32_t>(id));
  const bool found = sqlite3_step(read_folder_) == SQLITE_ROW;
  if (found) FillFolder(read_folder_, folder);
  sqlite3_reset(read_folder_);
  return found;
}

bool PeerCatalogue::SetTitle(const char* guid, const char* title) {
  Binder(set_title_).Text(title).Text(guid);
  const bool done = sqlite3_step(set_title_) == SQLITE_DONE;
  sqlite3_reset(set_title_);
  return done && sqlite3_changes(db_) > 0;
}

}  // namespace bench
