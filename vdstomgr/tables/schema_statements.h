#pragma once

/// The layout of a catalogue: the statements that make it, and the version of each table that has
/// one. Three keys share the constraint name IC0_PHOTOTAG; such names count within their table
/// only.
namespace vdstomgr {

inline constexpr char kPhotoMasterVersion[] = "2022-02-15 12:00:00";
inline constexpr char kPhotoTrashMasterVersion[] = "2016-06-16 12:00:00";
/// Of the lists of camera models and lenses: a list that was never fetched.
inline constexpr char kCameraListVersion[] = "2000-01-01 00:00:00";
inline constexpr char kSyncUploadListVersion[] = "2016-01-09 00:00:02";

inline constexpr char kCreateSyncUploadList[] =
    "CREATE TABLE SyncUploadList ("
    "nID COUNTER(1,1) PRIMARY KEY, nDispOrder INTEGER, szGUID CHAR(36), szOPPath MEMO, "
    "szFileName MEMO, dxFileSize VARCHAR(32), dxSentBytes VARCHAR(32), byteSmall BYTE, "
    "byteImage BYTE, byteRotate BYTE, szServerPath MEMO, nStatus INTEGER, "
    "nThumbStatus INTEGER, szLTBPath VARCHAR(255), szRPPath VARCHAR(255), "
    "szExifString VARCHAR(255), bOnlyOneTime BYTE, bPostEndMsgToSyncDlg BYTE, "
    "byteResume BYTE)";

/// The claim of the first ready row, and the row of a GUID.
inline constexpr const char* kIndexSyncUploadList[] = {
    "CREATE INDEX IX1_SyncUploadList ON SyncUploadList (szGUID)",
    "CREATE INDEX IX2_SyncUploadList ON SyncUploadList (nStatus, nDispOrder)",
};

inline constexpr char kCreatePhotoTrashMaster[] =
    "CREATE TABLE PhotoTrashMaster ("
    "szGUID CHAR(36) NOT NULL PRIMARY KEY, szMD5 CHAR(40), szFileName MEMO, "
    "szFolderPath MEMO, szLTBURL VARCHAR(255), dxFileSize VARCHAR(32), wWidth INTEGER, "
    "wHeight INTEGER, byteRotate BYTE, byteUploadEnd BYTE, szShootDate CHAR(19), "
    "szRegDate CHAR(19), szDeleteDate CHAR(19), szUploadUserID VARCHAR(50), "
    "szDeleteUserID VARCHAR(50))";

inline constexpr char kIndexPhotoTrashMaster[] =
    "CREATE INDEX IX0_PhotoTrashMaster ON PhotoTrashMaster (szDeleteDate)";

/// In the order in which they are run.
inline constexpr const char* kCreateStatements[] = {
    "CREATE TABLE Config_ActiveFolder (dwFolderID INTEGER PRIMARY KEY)",
    "CREATE TABLE FolderInfo ("
    "dwFolderID INTEGER PRIMARY KEY, dwParentID INTEGER, szFolderName MEMO, "
    "szDesc VARCHAR(255), nSpaceType INTEGER, szIconGUID CHAR(36), szIconURL VARCHAR(255), "
    "nPhotoCount INTEGER, bSystemFolder INTEGER, nFolderUpDownType INTEGER, "
    "bAllowPreviewImage INTEGER, bSharedOption INTEGER, bSecureFolder INTEGER, "
    "szGuestID VARCHAR(21), szFolderPassword VARCHAR(21), szSecureFolderSetter VARCHAR(21), "
    "szModifiedDate CHAR(19), szIModifiedDate CHAR(19), nCreatorSubIDType INTEGER, "
    "szCreatorSubID VARCHAR(21), szMemoID VARCHAR(36), bAllowComment INTEGER, "
    "nCommentCount INTEGER, byteCache BYTE)",
    "CREATE INDEX IX1_FOLDERDB ON FolderInfo (dwParentID, szFolderName)",
    "CREATE INDEX IX2_FOLDERDB ON FolderInfo (szIconGUID)",
    "CREATE TABLE TagInfo (dwTagID INTEGER NOT NULL PRIMARY KEY, szTagName VARCHAR(64))",
    "CREATE INDEX IX1_TAGDB ON TagInfo (szTagName)",
    "CREATE TABLE PhotoTag ("
    "szGUID CHAR(36), dwTagID INTEGER, CONSTRAINT IC0_PHOTOTAG PRIMARY KEY(szGUID, dwTagID))",
    "CREATE INDEX IX0_PHOTOTAGDB ON PhotoTag (szGUID, dwTagID)",
    "CREATE INDEX IX1_PHOTOTAGDB ON PhotoTag (dwTagID, szGUID)",
    "CREATE TABLE RoomInfo ("
    "dwRoomID INTEGER NOT NULL PRIMARY KEY, szRoomName VARCHAR(50), byteOrgDown BYTE, "
    "byteUseComment BYTE)",
    "CREATE INDEX IX0_RoomInfo ON RoomInfo (szRoomName)",
    "CREATE TABLE AlbumInfo ("
    "dwRoomID INTEGER, dwAlbumID INTEGER NOT NULL PRIMARY KEY, dwParentID INTEGER, "
    "szAlbumName VARCHAR(64), szDesc VARCHAR(255))",
    "CREATE INDEX IX0_AlbumInfo ON AlbumInfo (dwRoomID)",
    "CREATE INDEX IX1_AlbumInfo ON AlbumInfo (dwRoomID, dwParentID)",
    "CREATE INDEX IX2_AlbumInfo ON AlbumInfo (dwRoomID, dwParentID, szAlbumName)",
    "CREATE TABLE PhotoAlbum ("
    "szGUID CHAR(36), dwRoomID INTEGER, dwAlbumID INTEGER, "
    "CONSTRAINT IC0_PHOTOTAG PRIMARY KEY(szGUID, dwRoomID, dwAlbumID))",
    "CREATE INDEX IX0_PhotoAlbum ON PhotoAlbum (szGUID, dwRoomID, dwAlbumID)",
    "CREATE INDEX IX1_PhotoAlbum ON PhotoAlbum (dwRoomID, dwAlbumID, szGUID)",
    "CREATE TABLE UploadList ("
    "nID COUNTER(1,1) PRIMARY KEY, nDispOrder INTEGER, szGUID CHAR(36), szOPPath MEMO, "
    "szFileName MEMO, dxFileSize VARCHAR(32), dxSentBytes VARCHAR(32), byteSmall BYTE, "
    "byteImage BYTE, byteRotate BYTE, szServerPath MEMO, nStatus INTEGER, "
    "nThumbStatus INTEGER, szLTBPath VARCHAR(255), szRPPath VARCHAR(255), "
    "szExifString VARCHAR(255), byteResume BYTE)",
    "CREATE INDEX IX1_UploadList ON UploadList (nDispOrder)",
    "CREATE INDEX IX2_UploadList ON UploadList (szGUID)",
    "CREATE INDEX IX3_UploadList ON UploadList (nStatus)",
    "CREATE INDEX IX4_UploadList ON UploadList (nStatus, nDispOrder)",
    // The claims of small files and of thumbnails to be made.
    "CREATE INDEX IX5_UploadList ON UploadList (nStatus, byteSmall, nDispOrder)",
    "CREATE INDEX IX6_UploadList ON UploadList (nStatus, byteSmall, nThumbStatus, nDispOrder)",
    // The walk to the first ready row, in the order that IX1 gives rows of one place.
    "CREATE INDEX IX7_UploadList ON UploadList (nDispOrder, nID, nStatus)",
    kCreateSyncUploadList,
    kIndexSyncUploadList[0],
    kIndexSyncUploadList[1],
    "CREATE TABLE UploadTag ("
    "szGUID CHAR(36), dwTagID INTEGER, CONSTRAINT IC0_PHOTOTAG PRIMARY KEY(szGUID, dwTagID))",
    "CREATE INDEX IX1_UploadTag ON UploadTag (dwTagID)",
    "CREATE TABLE UploadAlbum ("
    "szGUID CHAR(36), dwRoomID INTEGER, dwAlbumID INTEGER, "
    "CONSTRAINT IC0_PHOTOTAG PRIMARY KEY(szGUID, dwRoomID, dwAlbumID))",
    "CREATE INDEX IX0_UploadAlbum ON UploadAlbum (szGUID)",
    "CREATE INDEX IX1_UploadAlbum ON UploadAlbum (dwRoomID, dwAlbumID)",
    "CREATE TABLE PhotoRP (szGUID CHAR(36) NOT NULL PRIMARY KEY, szPathName VARCHAR(255))",
    "CREATE INDEX IX1_PhotoRP ON PhotoRP (szPathName)",
    "CREATE TABLE PhotoOP (szGUID CHAR(36) NOT NULL PRIMARY KEY, szPathName VARCHAR(255))",
    "CREATE INDEX IX1_PhotoOP ON PhotoOP (szPathName)",
    "CREATE TABLE CameraModel (szName VARCHAR(64) NOT NULL PRIMARY KEY)",
    "CREATE TABLE CameraLens (szName VARCHAR(64) NOT NULL PRIMARY KEY)",
    "CREATE TABLE MyCameraModel (szName VARCHAR(64) NOT NULL PRIMARY KEY)",
    "CREATE TABLE MyCameraLens (szName VARCHAR(64) NOT NULL PRIMARY KEY)",
    "CREATE TABLE VersionInfo (szName VARCHAR(32) NOT NULL PRIMARY KEY, szVersion CHAR(19))",
    "CREATE TABLE PhotoMaster ("
    "szGUID CHAR(36) PRIMARY KEY, szMD5 CHAR(40), szFileName MEMO, byteFlag BYTE, "
    "byteRating BYTE, bytePublic BYTE, byteComment BYTE, szLTBURL VARCHAR(255), "
    "szRPURL VARCHAR(255), szOPURL VARCHAR(255), sz500URL VARCHAR(255), "
    "dxFileSize VARCHAR(32), wWidth INTEGER, wHeight INTEGER, dwFolderID INTEGER, "
    "szTitle VARCHAR(200), szDesc TEXT, szDisplayTag VARCHAR(64), szShooter VARCHAR(32), "
    "szCameraModel VARCHAR(64), szCameraLens VARCHAR(64), byteRotate BYTE, "
    "szShootDate CHAR(19), szShootDay CHAR(10), szRegDate CHAR(19), szRegDay CHAR(10), "
    "szUserModify CHAR(19), szExifVer VARCHAR(8), szExifMaker VARCHAR(32), "
    "szExifModel VARCHAR(32), szExifExposure VARCHAR(8), szExifFnumber VARCHAR(8), "
    "szExifExposureBias VARCHAR(8), wExifFocalLength INTEGER, wExif35FocalLength INTEGER, "
    "wExifISO INTEGER, byteExifRotate BYTE, byteExifMeteringMode BYTE, byteExifFlash BYTE, "
    "szExifShootDate CHAR(19), byteInfoSync BYTE, byteTagSync BYTE, byteUploadEnd BYTE, "
    "byteLinkUrl BYTE, dwLastWriteTimeLow INTEGER, dwLastWriteTimeHigh INTEGER, "
    "szUploadUserID VARCHAR(50), byteLockStatus BYTE, szLockID VARCHAR(50), "
    "byteLockIDType BYTE, szLockKey VARCHAR(41), szLockIP VARCHAR(30), szLockTime CHAR(19), "
    "szMemoID VARCHAR(36), nCommentCount INTEGER, nTotalDownloadCount INTEGER, "
    "nLinkDownloadCount INTEGER)",
    "CREATE INDEX IX1_PhotoMaster ON PhotoMaster (dwFolderID)",
    "CREATE INDEX IX3_PhotoMaster ON PhotoMaster (byteInfoSync)",
    "CREATE INDEX IX4_PhotoMaster ON PhotoMaster (byteTagSync)",
    "CREATE INDEX IX5_PhotoMaster ON PhotoMaster (szShootDay)",
    "CREATE INDEX IX6_PhotoMaster ON PhotoMaster (szRegDay)",
    "CREATE INDEX IX7_PhotoMaster ON PhotoMaster (dwFolderID, szFileName)",
    // finds the locked photos, which are few, among all
    "CREATE INDEX IX_LockStatus_PhotoMaster ON PhotoMaster (byteLockStatus)",
    kCreatePhotoTrashMaster,
    kIndexPhotoTrashMaster,
    "CREATE TABLE PhotoSyncProcess ("
    "szGUID CHAR(36) NOT NULL PRIMARY KEY, byteInfoSync BYTE, byteTagSync BYTE)",
    "CREATE INDEX IX0_PhotoSyncProcess ON PhotoSyncProcess (byteInfoSync)",
    "CREATE INDEX IX1_PhotoSyncProcess ON PhotoSyncProcess (byteTagSync)",
    "CREATE TABLE NotifyFolder_Tree (dwFolderID INTEGER NOT NULL PRIMARY KEY, byteType BYTE)",
    "CREATE TABLE NotifyFolder_List (dwFolderID INTEGER NOT NULL PRIMARY KEY, byteType BYTE)",
    "CREATE TABLE NotifyDate_Tree (dtDateID INTEGER NOT NULL PRIMARY KEY, byteType BYTE)",
    "CREATE TABLE NotifyDate_List (dtDateID INTEGER NOT NULL PRIMARY KEY, byteType BYTE)",
    "CREATE TABLE NotifyTag_Tree (dwTagID INTEGER NOT NULL PRIMARY KEY, byteType BYTE)",
    "CREATE TABLE NotifyTag_List (dwTagID INTEGER NOT NULL PRIMARY KEY, byteType BYTE)",
    "CREATE TABLE NotifyTrash_List (szGUID CHAR(36) NOT NULL PRIMARY KEY, byteType BYTE)",
    "Create Table IX_PT  (szGUID CHAR(36) PRIMARY KEY)",
    "Create Table IX_PT1  (szGUID CHAR(36) PRIMARY KEY)",
};

}  // namespace vdstomgr
