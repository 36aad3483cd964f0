#pragma once

#include "vdstomgr/platform/common/callback.h"
#include "vdstomgr/platform/framework/map.h"
#include "vdstomgr/platform/os/lock.h"
#include "vdstomgr/records/folder_maps.h"
#include "vdstomgr/records/photo_info.h"
#include "vdstomgr/search/initials.h"
#include "vdstomgr/session/database_owner.h"

class CRkDaoRecordset;

namespace vdstomgr {
struct SearchAccess;
}

/// The search database of one photo collection: a copy of what names, sizes and dates of photos and
/// folders need to be searched, which the host keeps in step with its catalogue. Any thread may
/// call it.
///
/// Records are filled as far as the copy goes: a photo's GUID, digest, name, size, folder,
/// original's location, registration date and upload mark; a folder's id, parent, name and
/// modification date. Otherwise operations behave as those of CRkPhotoDBManager do.
class VDSTO_API CRkSearchDBManager : public vdstomgr::DatabaseOwner {
 public:
  CRkSearchDBManager();
  ~CRkSearchDBManager() override;

  /// The lock of all operations, normally a catalogue's, so that both databases are used under one;
  /// set before the first call, and borrowed. Null, as before the first call: one of its own.
  void SetDAOCriticalSection(CRITICAL_SECTION* lock);
  /// 1 when both tables are of the current version or of none, else 0: the host makes the database
  /// anew then.
  int CheckVersion();

  /// ---- Folders: changing ----

  /// Adds all, up to the first whose id is taken.
  bool AddFolder(const vdstomgr::FolderArray& folders);
  bool AddFolder(const FOLDERINFO& folder);
  /// The same of its parts; `modified` in seconds since 1970. The name goes into the table whole.
  bool AddFolder(DWORD id, const char* name, DWORD parent, std::int32_t modified);
  /// Deletes folders and the photos in them; what is below them stays.
  bool DeleteFolder(const CDWordArray& ids);
  bool DeleteFolder(DWORD id);
  /// Deletes all folders but the three roots; photos stay.
  bool ResetFolder();

  /// ---- Folders: reading ----

  /// False when there is no such folder.
  bool GetFolderInfo(DWORD id, FOLDERINFO& folder);
  /// Appends the folders that exist.
  int GetFolderInfo(const CDWordArray& ids, vdstomgr::FolderArray& folders);
  /// Reads parent, id and name only. False for the roots and the host's own ids, without a look.
  bool GetParentFolderInfo(DWORD id, FOLDERINFO& parent);
  /// 0xFFFFFFFF for a top-level folder and for a missing one.
  DWORD GetParentFolderID(DWORD id);
  /// Empty for a missing folder.
  CString GetFolderName(DWORD id);
  int GetTotalNoOfFolders();
  /// The public or the guest root when `id` is below it; else the folder below the personal root,
  /// or without a known parent, that `id` is or hangs under. 0xFFFFFFFF when the parents go in a
  /// circle.
  DWORD GetRootParentFolderID(DWORD id);
  /// By the root above it: 0 personal, 1 public, 2 guest; -1 when the folder is missing, under no
  /// root, or itself a root.
  int GetFolderType(DWORD id);
  /// All names from the top-level folder down, joined by '/', as they were when first asked for.
  /// Empty for a missing folder and for a circle of parents.
  CString GetServerPathName(DWORD id);
  /// Forgets the paths that GetServerPathName keeps.
  void InitServerNameCache();

  /// ---- Folders: lists ----

  /// Every folder under its id. Answers the map's size.
  int GetFolderInfoMap(vdstomgr::FolderMap& folders);
  /// The children of every folder, the roots left out, into the caller's map, whose arrays the
  /// caller deletes. Answers its size.
  int GetSubFolderInfoMap(vdstomgr::SubFolderMap& map);
  /// The same map, made once for the open file and this object's own: later changes do not show.
  vdstomgr::SubFolderMap* GetSubFolderInfoMapCash();
  /// The children, by name.
  int GetFolderList(vdstomgr::FolderArray& folders, DWORD parent);
  int GetFolderList(CDWordArray& ids, DWORD parent);
  /// The children by name, each followed by its own sub-folders when `recursive`.
  int GetSubFolder(DWORD parent, vdstomgr::FolderArray& folders, bool recursive);
  int GetSubFolder(DWORD parent, CDWordArray& ids, bool recursive);

  /// ---- Photos: changing ----

  /// Adds a photo; false, and nothing changed, when its GUID is there.
  bool AddPhotoInfo(const PHOTOINFO& photo);
  /// Adds all, up to the first whose GUID is taken.
  bool AddPhotoInfo(const vdstomgr::PhotoArray& photos);
  /// Rewrites a photo; a missing one is not added, and false.
  bool SetPhotoInfo(const PHOTOINFO& photo);
  /// Moves photos to another folder.
  bool SetFolder(const char* guid, DWORD folder);
  bool SetFolder(const CStringArray& guids, DWORD folder);
  /// Deletes photos; those that are not there are no failure.
  bool DeletePhoto(const char* guid);
  bool DeletePhoto(const CString& guid);
  bool DeletePhoto(const CStringArray& guids);
  /// All photos of that name in the folder.
  bool DeletePhoto(DWORD folder, const char* name);

  /// ---- Photos: reading ----

  /// Fills a fresh record; false, and the record as it was, when there is no such photo.
  bool GetPhotoInfo(const char* guid, PHOTOINFO& photo);
  /// Appends the photos that exist; `progress` is told (index, count, null, false) after each.
  int GetPhotoInfo(const CStringArray& guids, vdstomgr::PhotoArray& photos, CRkCallback progress);
  /// 0xFFFFFFFF when there is no such photo.
  DWORD GetFolderID(const char* guid);
  /// The photos of a folder, in no order.
  int GetPhotoInFolder(DWORD folder, CStringArray& guids);
  /// By file name.
  int GetPhotoInFolder(DWORD folder, vdstomgr::PhotoArray& photos);
  int GetTotalNoOfFiles();

  /// ---- Searching: up to `max` records are appended, at least one when there is one. They answer
  /// 1, and 0 on failure. ----

  /// Newest first.
  int SearchRecentUpload(vdstomgr::PhotoArray& photos, int max);
  /// Largest first.
  int SearchBigFile(vdstomgr::PhotoArray& photos, int max);
  /// By name: what holds the whole text, or every word of it; see BuildSearchQuery.
  int SearchFileName(const char* text, vdstomgr::PhotoArray& photos, int max);
  int SearchFolderName(const char* text, vdstomgr::FolderArray& folders, int max);

 protected:
  void cFillNewFile() override;
  void cPrepareOpenedFile() override;

  /// Fills a fresh record from the current row; false at the end of the rows. May throw.
  bool cGetPhotoInfoByRS(CRkDaoRecordset& rs, PHOTOINFO& photo);
  /// The children by name, each followed by its own when `recursive`; a folder in `visited` is not
  /// entered.
  void cGetSubFolder(DWORD parent, vdstomgr::FolderArray& folders,
                     vdstomgr::VisitedFolders& visited, bool recursive);

 private:
  friend struct vdstomgr::SearchAccess;  // of the searches by initials

  CRITICAL_SECTION m_csOwn;                                     // until the host gives one
  CMap<DWORD, DWORD, CString, const CString&> m_mapServerName;  // both caches: under the lock
  vdstomgr::SubFolderMap m_mapSubFolder;                        // the arrays owned
  bool m_bSubFolderMapMade = false;
};
