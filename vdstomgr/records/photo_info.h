#pragma once

#include <cstdint>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/geometry.h"
#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/records/owned_text.h"
#include "vdstomgr/records/record_rules.h"

/// One photo of the catalogue: a row of PhotoMaster. A plain value; starts all zero and empty,
/// copies own their texts. Texts are in the process's code page; getters never return null.
struct VDSTO_API PHOTOINFO {
  char szGUID[37] = {};
  char szMD5[41] = {};
  BYTE byteFlag = 0;  ///< user flags, one bit each
  BYTE byteRating = 0;
  BYTE bytePublic = 0;
  BYTE byteComment = 0;
  BYTE byteNoLTB = 0;  ///< 1: the thumbnail location was set and is empty
  std::uint64_t FileSize = 0;
  WORD Width = 0;
  WORD Height = 0;
  DWORD dwFolderID = 0;
  BYTE byteRotate = 0;  ///< quarter turns, 0..3
  std::int32_t ShootDate = 0;
  std::int32_t RegDate = 0;
  std::int32_t UserModify = 0;
  WORD ExifFocalLength = 0;
  WORD Exif35FocalLength = 0;
  WORD ExifISO = 0;
  BYTE ExifRotate = 0;
  BYTE ExifMeteringMode = 0;
  BYTE ExifFlash = 0;
  std::int32_t ExifShootDate = 0;
  DWORD LastWriteTimeLow = 0;
  DWORD LastWriteTimeHigh = 0;
  BYTE InfoSync = 0;  ///< 1: attributes changed since the last synchronisation
  BYTE TagSync = 0;   ///< 1: tags changed since the last synchronisation
  BYTE Deleted = 0;   ///< in memory only
  BYTE UploadEnd = 0;
  BYTE LinkUrl = 0;
  BYTE LockStatus = 0;
  BYTE LockIDType = 0;
  std::int32_t LockTime = 0;
  std::int32_t CommentCount = 0;
  std::int32_t TotalDownloadCount = 0;
  std::int32_t LinkDownloadCount = 0;

  const char* GetFileName() const { return m_FileName.Get(); }
  const char* GetLTBURL() const { return m_LTBURL.Get(); }
  const char* GetRPURL() const { return m_RPURL.Get(); }
  const char* GetOPURL() const { return m_OPURL.Get(); }
  const char* GetAltOPURL() const { return m_AltOPURL.Get(); }
  const char* GetShooter() const { return m_Shooter.Get(); }
  const char* GetCameraModel() const { return m_CameraModel.Get(); }
  const char* GetCameraLens() const { return m_CameraLens.Get(); }
  const char* GetExifVer() const { return m_ExifVer.Get(); }
  const char* GetExifMaker() const { return m_ExifMaker.Get(); }
  const char* GetExifModel() const { return m_ExifModel.Get(); }
  const char* GetExifExposure() const { return m_ExifExposure.Get(); }
  const char* GetExifFnumber() const { return m_ExifFnumber.Get(); }
  const char* GetExifExposureBias() const { return m_ExifExposureBias.Get(); }
  const char* GetUploadUserID() const { return m_UploadUserID.Get(); }
  const char* GetLockID() const { return m_LockID.Get(); }
  const char* GetLockKey() const { return m_LockKey.Get(); }
  const char* GetLockIP() const { return m_LockIP.Get(); }
  const char* GetMemoID() const { return m_MemoID.Get(); }

  /// Text setters copy; null or an empty text empties the field.
  void SetFileName(const char* text) { m_FileName.Assign(text); }
  void SetRPURL(const char* text) { m_RPURL.Assign(text); }
  void SetOPURL(const char* text) { m_OPURL.Assign(text); }
  void SetAltOPURL(const char* text) { m_AltOPURL.Assign(text); }
  void SetShooter(const char* text) { m_Shooter.Assign(text); }
  void SetCameraModel(const char* text) { m_CameraModel.Assign(text); }
  void SetCameraLens(const char* text) { m_CameraLens.Assign(text); }
  void SetExifVer(const char* text) { m_ExifVer.Assign(text); }
  void SetExifMaker(const char* text) { m_ExifMaker.Assign(text); }
  void SetExifModel(const char* text) { m_ExifModel.Assign(text); }
  void SetExifExposure(const char* text) { m_ExifExposure.Assign(text); }
  void SetExifFnumber(const char* text) { m_ExifFnumber.Assign(text); }
  /// The spelling is the interface's.
  void SetExifExposuerBias(const char* text) { m_ExifExposureBias.Assign(text); }
  void SetUploadUserID(const char* text) { m_UploadUserID.Assign(text); }
  void SetLockID(const char* text) { m_LockID.Assign(text); }
  void SetLockKey(const char* text) { m_LockKey.Assign(text); }
  void SetLockIP(const char* text) { m_LockIP.Assign(text); }
  void SetMemoID(const char* text) { m_MemoID.Assign(text); }

  /// Without a thumbnail a photo has the size of the placeholder, 400 x 400, until it gets one.
  void SetLTBURL(const char* text);
  /// Null leaves the GUID as it is; more than 36 bytes are cut.
  void SetGUID(const char* guid);

  void SetFileSize(std::uint64_t bytes) { FileSize = bytes; }
  void SetFolderID(DWORD id) { dwFolderID = id; }
  void SetRotate(BYTE quarter_turns) { byteRotate = quarter_turns; }
  void SetRating(BYTE rating) { byteRating = rating; }
  void SetPublic(BYTE state) { bytePublic = state; }
  void SetComment(BYTE mark) { byteComment = mark; }
  void SetExifFocalLength(int value) { ExifFocalLength = static_cast<WORD>(value); }
  void SetExif35FocalLength(int value) { Exif35FocalLength = static_cast<WORD>(value); }
  void SetExifISO(int value) { ExifISO = static_cast<WORD>(value); }
  void SetExifRotate(BYTE value) { ExifRotate = value; }
  void SetExifMeteringMode(BYTE value) { ExifMeteringMode = value; }
  void SetExifFlash(BYTE value) { ExifFlash = value; }
  void SetInfoSync(BYTE mark) { InfoSync = mark; }
  void SetTagSync(BYTE mark) { TagSync = mark; }
  void SetDeleted(BYTE mark) { Deleted = mark; }
  void SetUploadEnd(BYTE mark) { UploadEnd = mark; }
  void SetLinkUrl(BYTE state) { LinkUrl = state; }
  void SetLockStatus(BYTE state) { LockStatus = state; }
  void SetLockIDType(BYTE type) { LockIDType = type; }
  void SetCommentCount(int count) { CommentCount = count; }
  void SetTotalDownloadCount(int count) { TotalDownloadCount = count; }
  void SetLinkDownloadCount(int count) { LinkDownloadCount = count; }

  /// Times are seconds since 1970; -1 (no time) is kept as 0.
  void SetShootDate(std::int32_t time) { ShootDate = vdstomgr::TimeOrZero(time); }
  void SetRegDate(std::int32_t time) { RegDate = vdstomgr::TimeOrZero(time); }
  void SetUserModify(std::int32_t time) { UserModify = vdstomgr::TimeOrZero(time); }
  void SetExifShootDate(std::int32_t time) { ExifShootDate = vdstomgr::TimeOrZero(time); }
  void SetLockTime(std::int32_t time) { LockTime = vdstomgr::TimeOrZero(time); }
  void SetLastWriteTime(DWORD low, DWORD high) { LastWriteTimeLow = low, LastWriteTimeHigh = high; }

  /// Ignored while byteNoLTB is 1, so that the placeholder keeps its size.
  void SetWidthHeight(int cx, int cy);

  /// All user flags at once.
  void SetFlag(BYTE flags) { byteFlag = flags; }
  /// One user flag; there are the bits 0 to 7.
  void SetFlag(int bit, bool on);

  /// The size that fits the photo into `area`, keeping its proportions: as wide as the area when it
  /// lies, as high when it stands. Whether it lies honours the user's rotation always; the
  /// proportions do only with `rotate`. A photo whose width or height is 0 fills the area.
  CSize GetImageSizeInArea(CSize area, bool rotate) const;
  /// The rotated size in the middle of `area`, not clipped. The flag changes nothing.
  CRect GetImageRectInArea(CRect area, bool unused) const;

 private:
  vdstomgr::OwnedText m_FileName;
  vdstomgr::OwnedText m_LTBURL;
  vdstomgr::OwnedText m_RPURL;
  vdstomgr::OwnedText m_OPURL;
  vdstomgr::OwnedText m_AltOPURL;
  vdstomgr::OwnedText m_Shooter;
  vdstomgr::OwnedText m_CameraModel;
  vdstomgr::OwnedText m_CameraLens;
  vdstomgr::OwnedText m_ExifVer;
  vdstomgr::OwnedText m_ExifMaker;
  vdstomgr::OwnedText m_ExifModel;
  vdstomgr::OwnedText m_ExifExposure;
  vdstomgr::OwnedText m_ExifFnumber;
  vdstomgr::OwnedText m_ExifExposureBias;
  vdstomgr::OwnedText m_UploadUserID;
  vdstomgr::OwnedText m_LockID;
  vdstomgr::OwnedText m_LockKey;
  vdstomgr::OwnedText m_LockIP;
  vdstomgr::OwnedText m_MemoID;
};

namespace vdstomgr {
using PhotoArray = CArray<PHOTOINFO, PHOTOINFO&>;
}
