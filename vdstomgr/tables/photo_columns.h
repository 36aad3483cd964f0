#pragma once

#include "vdstomgr/records/photo_info.h"
#include "vdstomgr/session/column_kinds.h"

namespace vdstomgr {

/// A photo record and its row of PhotoMaster. The sides come after the thumbnail's location, which
/// decides whether they are read.
inline constexpr ColumnMap kPhotoColumns(std::array{
    FixedText<&PHOTOINFO::szGUID>("szGUID"),
    FixedText<&PHOTOINFO::szMD5>("szMD5"),
    PropertyText<&PHOTOINFO::GetFileName, &PHOTOINFO::SetFileName>("szFileName"),
    Number<&PHOTOINFO::byteFlag>("byteFlag"),
    Number<&PHOTOINFO::byteRating>("byteRating"),
    Number<&PHOTOINFO::bytePublic>("bytePublic"),
    Number<&PHOTOINFO::byteComment>("byteComment"),
    PropertyText<&PHOTOINFO::GetLTBURL, &PHOTOINFO::SetLTBURL>("szLTBURL"),
    PropertyText<&PHOTOINFO::GetRPURL, &PHOTOINFO::SetRPURL>("szRPURL"),
    PropertyText<&PHOTOINFO::GetOPURL, &PHOTOINFO::SetOPURL>("szOPURL"),
    DecimalText<&PHOTOINFO::FileSize>("dxFileSize"),
    NumberUnless<&PHOTOINFO::Width, &PHOTOINFO::byteNoLTB>("wWidth"),
    NumberUnless<&PHOTOINFO::Height, &PHOTOINFO::byteNoLTB>("wHeight"),
    Number<&PHOTOINFO::dwFolderID>("dwFolderID"),
    PropertyText<&PHOTOINFO::GetShooter, &PHOTOINFO::SetShooter>("szShooter"),
    PropertyText<&PHOTOINFO::GetCameraModel, &PHOTOINFO::SetCameraModel>("szCameraModel"),
    PropertyText<&PHOTOINFO::GetCameraLens, &PHOTOINFO::SetCameraLens>("szCameraLens"),
    Number<&PHOTOINFO::byteRotate>("byteRotate"),
    Date<&PHOTOINFO::ShootDate>("szShootDate"),
    Day<&PHOTOINFO::ShootDate>("szShootDay"),
    Date<&PHOTOINFO::RegDate>("szRegDate"),
    Day<&PHOTOINFO::RegDate>("szRegDay"),
    Date<&PHOTOINFO::UserModify>("szUserModify"),
    PropertyText<&PHOTOINFO::GetExifVer, &PHOTOINFO::SetExifVer>("szExifVer"),
    PropertyText<&PHOTOINFO::GetExifMaker, &PHOTOINFO::SetExifMaker>("szExifMaker"),
    PropertyText<&PHOTOINFO::GetExifModel, &PHOTOINFO::SetExifModel>("szExifModel"),
    PropertyText<&PHOTOINFO::GetExifExposure, &PHOTOINFO::SetExifExposure>("szExifExposure"),
    PropertyText<&PHOTOINFO::GetExifFnumber, &PHOTOINFO::SetExifFnumber>("szExifFnumber"),
    PropertyText<&PHOTOINFO::GetExifExposureBias, &PHOTOINFO::SetExifExposuerBias>(
        "szExifExposureBias"),
    Number<&PHOTOINFO::ExifFocalLength>("wExifFocalLength"),
    Number<&PHOTOINFO::Exif35FocalLength>("wExif35FocalLength"),
    Number<&PHOTOINFO::ExifISO>("wExifISO"),
    Number<&PHOTOINFO::ExifRotate>("byteExifRotate"),
    Number<&PHOTOINFO::ExifMeteringMode>("byteExifMeteringMode"),
    Number<&PHOTOINFO::ExifFlash>("byteExifFlash"),
    Date<&PHOTOINFO::ExifShootDate>("szExifShootDate"),
    Number<&PHOTOINFO::InfoSync>("byteInfoSync"),
    Number<&PHOTOINFO::TagSync>("byteTagSync"),
    Number<&PHOTOINFO::LastWriteTimeLow>("dwLastWriteTimeLow"),
    Number<&PHOTOINFO::LastWriteTimeHigh>("dwLastWriteTimeHigh"),
    PropertyText<&PHOTOINFO::GetUploadUserID, &PHOTOINFO::SetUploadUserID>("szUploadUserID"),
    Number<&PHOTOINFO::UploadEnd>("byteUploadEnd"),
    Number<&PHOTOINFO::LinkUrl>("byteLinkUrl"),
    Number<&PHOTOINFO::LockStatus>("byteLockStatus"),
    PropertyText<&PHOTOINFO::GetLockID, &PHOTOINFO::SetLockID>("szLockID"),
    Number<&PHOTOINFO::LockIDType>("byteLockIDType"),
    PropertyText<&PHOTOINFO::GetLockKey, &PHOTOINFO::SetLockKey>("szLockKey"),
    PropertyText<&PHOTOINFO::GetLockIP, &PHOTOINFO::SetLockIP>("szLockIP"),
    Date<&PHOTOINFO::LockTime>("szLockTime"),
    PropertyText<&PHOTOINFO::GetMemoID, &PHOTOINFO::SetMemoID>("szMemoID"),
    Number<&PHOTOINFO::CommentCount>("nCommentCount"),
    Number<&PHOTOINFO::TotalDownloadCount>("nTotalDownloadCount"),
    Number<&PHOTOINFO::LinkDownloadCount>("nLinkDownloadCount"),
});

}  // namespace vdstomgr
