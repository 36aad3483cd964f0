#include "vdstomgr/catalogue/photo_columns.h"

#include "vdstomgr/catalogue/column_kinds.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace vdstomgr {

namespace {

using P = PHOTOINFO;

CString DateText(std::int32_t time) {
  return CUtilityLib::GetTime(time);
}

template <auto member>
consteval Column<P> Date(const char* name) {
  return Time<member, DateText>(name);
}

/// The day of a date: written beside it, never read back.
template <auto member>
consteval Column<P> Day(const char* name) {
  return {name, nullptr, [](const P& photo, dao::Value& value) {
            SetText(value, DateText(photo.*member).Left(10));
          }};
}

/// A side of the photo; the placeholder of a photo without a thumbnail keeps its own.
template <auto member>
consteval Column<P> Side(const char* name) {
  Column<P> column = Number<member>(name);
  column.read = [](const dao::Field& field, P& photo, std::string&) {
    if (!photo.byteNoLTB && !field.IsNull()) photo.*member = static_cast<WORD>(AsInteger(field));
  };
  return column;
}

// Reading and writing go through the columns in orders of their own; a column that stands in
// different places of the two has one entry for each. The sides are read after the thumbnail.
constexpr ColumnMap kPhotoColumns({
    FixedText<&P::szGUID>("szGUID"),
    FixedText<&P::szMD5>("szMD5"),
    PropertyText<&P::GetFileName, &P::SetFileName>("szFileName"),
    Number<&P::byteFlag>("byteFlag"),
    Number<&P::byteRating>("byteRating"),
    Number<&P::bytePublic>("bytePublic"),
    Number<&P::byteComment>("byteComment"),
    PropertyText<&P::GetLTBURL, &P::SetLTBURL>("szLTBURL"),
    ReadOnly(Side<&P::Height>("wHeight")),
    ReadOnly(Side<&P::Width>("wWidth")),
    PropertyText<&P::GetRPURL, &P::SetRPURL>("szRPURL"),
    PropertyText<&P::GetOPURL, &P::SetOPURL>("szOPURL"),
    DecimalText<&P::FileSize>("dxFileSize"),
    WriteOnly(Side<&P::Width>("wWidth")),
    WriteOnly(Side<&P::Height>("wHeight")),
    Number<&P::dwFolderID>("dwFolderID"),
    PropertyText<&P::GetShooter, &P::SetShooter>("szShooter"),
    PropertyText<&P::GetCameraModel, &P::SetCameraModel>("szCameraModel"),
    PropertyText<&P::GetCameraLens, &P::SetCameraLens>("szCameraLens"),
    Number<&P::byteRotate>("byteRotate"),
    Date<&P::ShootDate>("szShootDate"),
    Day<&P::ShootDate>("szShootDay"),
    Date<&P::RegDate>("szRegDate"),
    Day<&P::RegDate>("szRegDay"),
    Date<&P::UserModify>("szUserModify"),
    PropertyText<&P::GetExifVer, &P::SetExifVer>("szExifVer"),
    PropertyText<&P::GetExifMaker, &P::SetExifMaker>("szExifMaker"),
    PropertyText<&P::GetExifModel, &P::SetExifModel>("szExifModel"),
    PropertyText<&P::GetExifExposure, &P::SetExifExposure>("szExifExposure"),
    PropertyText<&P::GetExifFnumber, &P::SetExifFnumber>("szExifFnumber"),
    PropertyText<&P::GetExifExposureBias, &P::SetExifExposuerBias>("szExifExposureBias"),
    Number<&P::ExifFocalLength>("wExifFocalLength"),
    Number<&P::Exif35FocalLength>("wExif35FocalLength"),
    Number<&P::ExifISO>("wExifISO"),
    Number<&P::ExifRotate>("byteExifRotate"),
    Number<&P::ExifMeteringMode>("byteExifMeteringMode"),
    Number<&P::ExifFlash>("byteExifFlash"),
    Date<&P::ExifShootDate>("szExifShootDate"),
    Number<&P::InfoSync>("byteInfoSync"),
    Number<&P::TagSync>("byteTagSync"),
    WriteOnly(Number<&P::LastWriteTimeLow>("dwLastWriteTimeLow")),
    Number<&P::LastWriteTimeHigh>("dwLastWriteTimeHigh"),
    ReadOnly(Number<&P::LastWriteTimeLow>("dwLastWriteTimeLow")),
    PropertyText<&P::GetUploadUserID, &P::SetUploadUserID>("szUploadUserID"),
    Number<&P::UploadEnd>("byteUploadEnd"),
    Number<&P::LinkUrl>("byteLinkUrl"),
    Number<&P::LockStatus>("byteLockStatus"),
    WriteOnly(Number<&P::LockIDType>("byteLockIDType")),
    PropertyText<&P::GetLockID, &P::SetLockID>("szLockID"),
    ReadOnly(Number<&P::LockIDType>("byteLockIDType")),
    PropertyText<&P::GetLockKey, &P::SetLockKey>("szLockKey"),
    PropertyText<&P::GetLockIP, &P::SetLockIP>("szLockIP"),
    Date<&P::LockTime>("szLockTime"),
    PropertyText<&P::GetMemoID, &P::SetMemoID>("szMemoID"),
    Number<&P::CommentCount>("nCommentCount"),
    Number<&P::TotalDownloadCount>("nTotalDownloadCount"),
    Number<&P::LinkDownloadCount>("nLinkDownloadCount"),
});

}  // namespace

void ReadPhoto(CDaoRecordset& row, PHOTOINFO& photo) {
  kPhotoColumns.Read(row, photo);
}
void AddPhoto(CDaoRecordset& rows, const PHOTOINFO& photo) {
  kPhotoColumns.Add(rows, photo);
}
void EditPhoto(CDaoRecordset& row, const PHOTOINFO& photo) {
  kPhotoColumns.Edit(row, photo);
}

}  // namespace vdstomgr
