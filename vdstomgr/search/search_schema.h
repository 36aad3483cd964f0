#pragma once

/// The layout of a search database: the statements that make it, in the order in which they are
/// run, and the version of its two tables.
namespace vdstomgr {

inline constexpr char kSearchVersion[] = "2014-10-01 00:00:00";

inline constexpr const char* kCreateSearchStatements[] = {
    "CREATE TABLE VersionInfo (szName VARCHAR(32) NOT NULL PRIMARY KEY, szVersion CHAR(19))",
    "CREATE TABLE SearchFolderInfo ("
    "dwFolderID INTEGER PRIMARY KEY, dwParentID INTEGER, szFolderName MEMO, "
    "szModifiedDate CHAR(19))",
    "CREATE INDEX IX1_FOLDERDB ON SearchFolderInfo (dwParentID, szFolderName)",
    "CREATE TABLE SearchPhotoMaster ("
    "szGUID CHAR(36) PRIMARY KEY, szMD5 CHAR(40), szFileName MEMO, dxFileSize DOUBLE, "
    "szOPURL VARCHAR(255), dwFolderID INTEGER, byteUploadEnd BYTE, szRegDate CHAR(19))",
    "CREATE INDEX IX1_PhotoMaster ON SearchPhotoMaster (dwFolderID)",
    "CREATE INDEX IX2_PhotoMaster ON SearchPhotoMaster (szRegDate)",
    "CREATE INDEX IX3_PhotoMaster ON SearchPhotoMaster (szGUID)",
    "CREATE INDEX IX4_PhotoMaster ON SearchPhotoMaster (szFileName)",
};

/// Indexes that searches are ordered by, beside those that the layout has always had; they are made
/// when a file without them is opened.
inline constexpr const char* kSearchIndexStatements[] = {
    "CREATE INDEX IX2_FOLDERDB ON SearchFolderInfo (szFolderName)",
    "CREATE INDEX IX5_PhotoMaster ON SearchPhotoMaster (dxFileSize DESC)",
};

}  // namespace vdstomgr
