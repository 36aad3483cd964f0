#include "bench/peer_photos.h"

#include <iterator>

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
static_assert(std::size(kWritten) == kPhotoColumnCount);

std::string Joined(const char* separator, const char* suffix, bool numbers) {
  std::string list;
  for (int i = 0; i < kPhotoColumnCount; ++i) {
    if (i > 0) list += separator;
    if (!numbers) list += kWritten[i];
    list += suffix;
    if (numbers || *suffix) list += std::to_string(i + 1);
  }
  return list;
}

void Bind(const PeerStatement& statement, const PHOTOINFO& p) {
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

}  // namespace

std::string PhotoColumns(const char* prefix) {
  return prefix + Joined((std::string(", ") + prefix).c_str(), "", false);
}

void FillPhoto(Reader r, PHOTOINFO& p) {
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

PeerPhotos::PeerPhotos(const std::string& path) : db_(path) {
  const std::string columns = PhotoColumns();
  insert_ = db_.Prepare("INSERT INTO PhotoMaster (" + columns + ") VALUES (" +
                        Joined(", ", "?", true) + ")");
  has_ = db_.Prepare("SELECT 1 FROM PhotoMaster WHERE szGUID = ?1");
  update_ =
      db_.Prepare("UPDATE PhotoMaster SET " + Joined(", ", " = ?", false) + " WHERE szGUID = ?1");
  read_ = db_.Prepare("SELECT " + columns + " FROM PhotoMaster WHERE szGUID = ?1");
  set_title_ =
      db_.Prepare("UPDATE PhotoMaster SET szTitle = ?1, byteInfoSync = 1 WHERE szGUID = ?2");
}

bool PeerPhotos::Insert(const PHOTOINFO& photo) {
  Bind(insert_, photo);
  return PeerDatabase::Run(insert_);
}

bool PeerPhotos::Has(const char* guid) {
  Binder(has_).Text(guid);
  const bool found = Next(has_);
  Reset(has_);
  return found;
}

bool PeerPhotos::Update(const PHOTOINFO& photo) {
  Bind(update_, photo);
  return db_.Change(update_);
}

bool PeerPhotos::Read(const char* guid, PHOTOINFO& photo) {
  Binder(read_).Text(guid);
  return ReadOne(read_, photo, FillPhoto);
}

bool PeerPhotos::SetTitle(const char* guid, const char* title) {
  Binder(set_title_).Text(title).Text(guid);
  return db_.Change(set_title_);
}

}  // namespace bench
