#pragma once

#include "vdstomgr/catalogue/folders.h"

namespace vdstomgr::catalogue {

/// What folders are besides their place in the tree. Texts go into statements as they are: one that
/// holds a single quote breaks its statement, which changes nothing then and is not reported.
class VDSTO_API FolderAttributes : public Folders {
 public:
  /// ---- Secure and shared folders, limits of use ----

  /// The password is kept as it is. True also for a missing folder, as below.
  bool SetFolderPassword(DWORD id, int secure, const char* password);
  bool SetFolderPassword(DWORD id, int secure, const char* password, const char* setter);
  bool SetFolderPassword(const CDWordArray& ids, int secure, const char* password);
  bool SetFolderPassword(const CDWordArray& ids, int secure, const char* password,
                         const char* setter);
  /// Marks folders as shared (1) or not (0).
  bool SetSharedOption(DWORD id, int shared);
  bool SetSharedOption(const CDWordArray& ids, int shared);
  /// Writes the three values when one of them is new, and with `to_sub_folders` does the same to
  /// all sub-folders. False for a missing folder.
  bool SetFolderUpDownType(DWORD id, int type, int allow_preview, int to_sub_folders,
                           int allow_comment);
  /// Who made the folder, and what kind of id that is.
  bool SetCreatorSubIDInfo(DWORD id, const char* creator, int type);

  /// Folders that are marked as shared.
  int GetAllSharedFolder(CDWordArray& ids);
  int GetAllSharedFolderCount();
  /// Folders that are marked as secure.
  int GetAllSecureFolder(CDWordArray& ids);
  int GetAllSecureFolderCount();
  /// Folders whose up/down type is anything but unrestricted.
  int GetAllLimitedUpDownFolder(CDWordArray& ids);
  int GetAllLimitedUpDownFolderCount();
  /// Folders to which photos may be uploaded only.
  int GetAllUpOnlyFolder(CDWordArray& ids);
  int GetAllUpOnlyFolderCount();
  /// Secure folders and, when asked for, their passwords in the same order.
  int GetSecureFolderList(CDWordArray& ids, CStringArray* passwords = nullptr);
  /// Secure folders without a password: nothing opens them.
  int GetAllSecureFolderLocked(CDWordArray& ids);
  /// The GUIDs of locked photos.
  int GetAllLockedFile(CStringArray& guids);

  /// SubFolderCountIsLarge against the number of limited, secure and shared folders, as it was when
  /// the process first asked: on purpose it is never counted again.
  int SubFolderCountIsLargeForCheckFolderAuthorityEdit(DWORD id, bool recursive);
  /// The same against the number of upload-only, secure and shared folders.
  int SubFolderCountIsLargeForCheckFolderAuthorityDownload(DWORD id, bool recursive);

  /// ---- The cache mark and the stored number of photos ----

  /// Takes the mark from all folders.
  bool ResetFolderCache();
  /// Gives one folder the mark or takes it.
  bool SetFolderCache(DWORD id, bool cached);
  /// False also when there is no such folder.
  bool GetFolderCache(DWORD id);

  /// Counts the photos in a folder, not in those below it.
  int GetPhotoCountAtFolder(DWORD id);
  /// Counts the photos and stores their number in the folder.
  int UpdatePhotoCountAtFolder(DWORD id);
  /// Counts the photos that have a thumbnail location.
  int GetRealPhotoCountAtFolder(DWORD id);
  /// Every folder; reads id and stored number of photos only.
  int GetAllFolderListForPhotoCount(FolderArray& folders);

  /// ---- When folders changed ----

  /// When the table of folders was last brought in step with the server, and last refreshed, in
  /// seconds since 1970. Always 1, on purpose, also when nothing is stored because a reset has
  /// taken the row of the time; `time` stays as it is when none is known.
  int SetLastFolderDBSyncTime(std::int32_t time);
  int GetLastFolderDBSyncTime(std::int32_t& time);
  int SetLastFolderDBRefreshTime(std::int32_t time);
  int GetLastFolderDBRefreshTime(std::int32_t& time);
  /// The folders changed at or after `time`, newest first.
  int GetFolderListForNewFileList(FolderArray& folders, std::int32_t time);
};

}  // namespace vdstomgr::catalogue
