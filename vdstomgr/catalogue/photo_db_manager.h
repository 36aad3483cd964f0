#pragma once

#include <atomic>
#include <cstdint>

#include "vdstomgr/catalogue/clock.h"
#include "vdstomgr/catalogue/database_session.h"
#include "vdstomgr/platform/common/callback.h"
#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/framework/map.h"
#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/platform/os/lock.h"
#include "vdstomgr/platform/utility/bin_data.h"
#include "vdstomgr/records/count_in_folder.h"
#include "vdstomgr/records/folder_info.h"
#include "vdstomgr/records/photo_info.h"

namespace vdstomgr {

using FolderMap = CMap<DWORD, DWORD, FOLDERINFO, FOLDERINFO&>;
/// From a parent's id to the records of its children.
using SubFolderMap = CMap<DWORD, DWORD, FolderArray*, FolderArray*>;

/// Deletes the arrays of a map and empties it.
VDSTO_API void DeleteSubFolders(SubFolderMap& map);

}  // namespace vdstomgr

/// The catalogue of one photo collection: one object per database file. Any thread may call it.
///
/// Unless it says otherwise, an operation takes the DAO lock, commits what it wrote as one unit,
/// and never throws: a failure is reported once through the database-error hook (a duplicate key is
/// not) and answered with the operation's failure value: false, 0, an empty text, or 0xFFFFFFFF for
/// an id. What was done before the failure stays. Texts are in the process's code page; null is an
/// empty text. Lists given to be filled are appended to, and answers that count them count what
/// they held before too. GUIDs go into statements as they are; names and descriptions are quoted.
class VDSTO_API CRkPhotoDBManager : private vdstomgr::DatabaseSession {
 public:
  CRkPhotoDBManager();
  virtual ~CRkPhotoDBManager();

  /// ---- Session ----

  /// Makes a new catalogue in place of any file of that name, and leaves it closed. The password's
  /// first 20 bytes count, cut between characters; null or empty makes a file that any tool reads.
  /// A creation that fails leaves no file. Refused while this object has a catalogue open.
  bool CreateDB(const char* path, const char* password);
  /// Opens a catalogue and gives the three roots their fixed names again. False when one is open.
  bool OpenDB(const char* path, const char* password);
  /// True also when nothing is open.
  bool CloseDB();
  /// Closes and opens again what was opened last. Always true.
  bool RefreshDB();
  /// Deletes a catalogue file; nothing is reported.
  void DeleteDB(const char* path);

  /// The lock of all database work, for holding it over several calls. Lives as long as this
  /// object.
  CRITICAL_SECTION* GetDAOCriticalSection() { return &m_csDAO; }
  /// In bytes; 1,048,576 at first. Takes no lock.
  void SetSmallFileUploadMaxSize(std::uint64_t bytes) { m_nSmallFileUploadMaxSize = bytes; }

  /// The catalogue's clock, in seconds since 1970: set from outside, it runs on by itself. The
  /// three take no lock.
  void SetTime(std::int32_t time) { m_clock.Set(time); }
  std::int32_t GetTime() const { return m_clock.Now(); }
  /// The time as the 19-character text of date columns.
  CString GetDBTime() const { return m_clock.NowText(); }

  /// Both always answer 0xFFFFFFFF: these ids come from elsewhere. They take no lock.
  DWORD GetNewRoomID() const { return 0xFFFFFFFF; }
  DWORD GetNewAlbumID() const { return 0xFFFFFFFF; }

  /// ---- Schema and versions ----

  /// Writes the rows that a new catalogue starts with; those that are there stay.
  void InitFieldData();
  /// The version of a table; the name goes into the statement as it is. Empty when unknown.
  CString GetVersionInfo(const char* name);
  /// Changes a version that is there; never adds one. Both texts go in as they are.
  bool SetVersionInfo(const char* name, const char* version);
  /// Has the open catalogue the current layout of photos? When it has, but its trash has an old
  /// one, the trash is made anew and empty.
  bool CheckPhotoMasterDBVersion();
  /// Makes the synchronisation queue of `database` anew when its version is an old one. Always
  /// true.
  bool CreateSyncUploadListTable(CRkDaoDatabase& database);
  /// Appends every folder's id to one of the two lists; answers the sum of their sizes.
  int GetVersionFolderList(CDWordArray& active, CDWordArray& other);

  /// ---- Folders: reading one ----

  /// False when there is no such folder. A folder whose space is unknown gets that of its root, and
  /// its row is written back.
  bool GetFolderInfo(DWORD id, FOLDERINFO& folder);
  /// Appends the folders that exist; their space, creator, memo and comment fields are not read.
  int GetFolderInfo(const CDWordArray& ids, vdstomgr::FolderArray& folders);
  /// Reads parent, id and name only. False for a top-level folder.
  bool GetParentFolderInfo(DWORD id, FOLDERINFO& parent);
  CString GetFolderName(DWORD id);
  CString GetFolderDesc(DWORD id);
  DWORD GetParentFolderID(DWORD id);
  /// The child of that name.
  DWORD GetSubFolderID(DWORD parent, const char* name);
  /// The top-level folder above `id`; `id` itself when it is one or is missing. 0xFFFFFFFF when the
  /// parents go in a circle.
  DWORD GetRootParentFolderID(DWORD id);
  /// 0 personal, 1 public, 2 guest; 0xFFFFFFFF when the folder is missing or under no root.
  DWORD GetFolderType(DWORD id);
  DWORD GetFolderType(const char* path);
  bool FolderExistsInDB(DWORD id);

  /// ---- Folders: lists ----

  /// The children, by name.
  int GetFolderList(vdstomgr::FolderArray& folders, DWORD parent);
  int GetFolderList(CDWordArray& ids, DWORD parent);
  /// The children, in no order.
  int GetSubFolderInfo(DWORD parent, vdstomgr::FolderArray& folders);
  int GetSubFolderCountFromDB(DWORD parent);
  int GetAllFolderList(vdstomgr::FolderArray& folders);
  /// Every folder under its stored name: a root without one gets none.
  int GetAllFolderListForSearch(vdstomgr::FolderArray& folders);
  int GetFolderInfoForTree(vdstomgr::FolderMap& folders);

  /// ---- Folders: sub-folders ----

  /// The children of every folder, read anew after a change of the folders. The map stays this
  /// object's; who walks it while others change folders holds the DAO lock.
  vdstomgr::SubFolderMap* GetSubFolderInfoCashForTree();
  /// The same into the caller's map, whose arrays the caller deletes. Answers its size.
  int GetSubFolderInfoForTree(vdstomgr::SubFolderMap& map);
  /// The children, each followed by its own sub-folders when `recursive`. Without `cache` the
  /// object's own map is used.
  int GetSubFolder(DWORD parent, vdstomgr::FolderArray& folders, bool recursive,
                   vdstomgr::SubFolderMap* cache = nullptr);
  int GetSubFolder(DWORD parent, CDWordArray& ids, bool recursive);
  /// The same walk on the table.
  int GetSubFolder2(DWORD parent, CDWordArray& ids, bool recursive);
  /// 1 when the sub-folders of `id` bring `count` above `limit`, else 0; `count` grows as they are
  /// met. A circle of parents is above every limit.
  int SubFolderCountIsLarge(DWORD id, int& count, int limit, bool recursive,
                            vdstomgr::SubFolderMap* cache = nullptr);
  /// The same against the number of limited, secure and shared folders, as it was when the process
  /// first asked: on purpose it is never counted again.
  int SubFolderCountIsLargeForCheckFolderAuthorityEdit(DWORD id, bool recursive);
  /// The same against the number of upload-only, secure and shared folders.
  int SubFolderCountIsLargeForCheckFolderAuthorityDownload(DWORD id, bool recursive);

  /// ---- Folders: paths and free names ----

  /// Walks the names between '/' from the top-level folders down.
  DWORD GetFolderIDFromPath(const char* path);
  /// All names from the top-level folder down, joined by '/'. Empty for a missing folder and for a
  /// circle of parents.
  CString GetServerPathName(DWORD id);
  /// The same without the root's name: "/" for a root, "/name" for its child.
  CString GetServerPathName2(DWORD id);
  /// `name`, or the first of "name (0)" to "name (9999)" that no child has; empty when all are
  /// taken.
  CString GetNewSubFolderName(const char* name, DWORD parent);
  /// A name made from `file_name`, never itself, that no photo of the folder has; empty after
  /// 10,000.
  CString GetEditSaveFileName(const char* file_name, DWORD folder);

  /// ---- Folders: changing ----

  /// Adds a folder; false when the id is taken. Texts go into the table whole.
  bool AddFolder(DWORD dwFolderID, DWORD dwParentID, const char* szFolderName, const char* szDesc,
                 int nSpaceType, const char* szIconGUID, const char* szIconURL, int nPhotoCount,
                 bool bSystemFolder, int nFolderUpDownType, int bAllowPreviewImage,
                 int bSharedOption, int bSecureFolder, const char* szGuestID,
                 const char* szFolderPassword, const char* szSecureFolderSetter,
                 std::int32_t szModifiedDate, std::int32_t szIModifiedDate, int nCreatorSubIDType,
                 const char* szCreatorSubID, const char* szMemoID, int bAllowComment,
                 int nCommentCount);
  /// Adds all, up to the first whose id is taken. The flag changes nothing.
  bool AddFolder(const vdstomgr::FolderArray& folders, bool unused = false);
  /// Adds the folder unless its id is taken.
  bool AddFolderInfo(const FOLDERINFO& folder);
  /// Rewrites the folder's row; a missing one is not added.
  bool SetFolderInfo(const FOLDERINFO& folder);
  /// Rewrites or adds each. The number changes nothing.
  bool SetFolderInfo(const vdstomgr::FolderArray& folders, int unused = 0);
  bool RenameFolder(DWORD id, const char* name, const char* desc);
  /// In seconds since 1970.
  bool UpdateFolderModifiedDate(DWORD id, std::int32_t time);
  bool UpdateFolderIModifiedDate(DWORD id, std::int32_t time);
  /// Puts the folder under another parent, whatever that is.
  bool MoveFolder(DWORD id, DWORD new_parent);
  bool MoveFolder(const CDWordArray& ids, DWORD new_parent);
  /// Deletes the folder with its photos, not its sub-folders. The catalogue's own folders stay.
  bool DeleteFolder(DWORD id);
  /// Deletes the row only.
  bool DeleteFolderInfo(DWORD id);
  bool DeleteFolderInfo(const CDWordArray& ids);
  /// Deletes the photos of the folders, and with `delete_folders` the folders; `progress` is told
  /// (index, count, null, false) after each, with the lock held.
  bool DeleteFoldersAndRelations(const CDWordArray& ids, bool delete_folders, CRkCallback progress);

  /// ---- Folders: attributes ----

  int GetAllSharedFolderCount();
  int GetAllSecureFolderCount();
  /// Folders whose up/down type is anything but unrestricted.
  int GetAllLimitedUpDownFolderCount();
  int GetAllUpOnlyFolderCount();

  /// ---- Photos: whole records ----

  /// Adds a photo. When its GUID is taken: rewrites it with `bUpdateIfExists`, else false.
  bool AddPhotoInfo(const PHOTOINFO& info, bool bUpdateIfExists);
  /// Adds all, up to the first whose GUID is taken.
  bool AddPhotoInfo(const vdstomgr::PhotoArray& list);
  /// Rewrites a photo. When it is missing: adds it with `bAddIfMissing`, else false.
  bool SetPhotoInfo(const PHOTOINFO& info, bool bAddIfMissing);
  /// Fills a fresh record; false, and the record as it was, when there is no such photo.
  bool GetPhotoInfo(const char* guid, PHOTOINFO& info);
  /// Appends the photos that exist; `progress` is told (index, count, null, false) after each.
  int GetPhotoInfo(const CStringArray& guids, vdstomgr::PhotoArray& out, CRkCallback progress);
  CString GetPhotoName(const char* guid);
  /// 0xFFFFFFFF when there is no such photo.
  DWORD GetFolderID(const char* guid);
  bool IsPhoto(DWORD folder, const char* file_name);

  /// ---- Photos: queries ----

  int GetPhotoCount();
  int GetFolderCount();
  /// The first photo of that name in the folder, or all of them.
  CString GetPhotoGUID(DWORD folder, const char* file_name);
  int GetPhotoGUID(DWORD folder, const char* file_name, CStringArray& out);
  int GetPhotoInFolder(DWORD folder, CStringArray& out);
  /// By file name.
  int GetPhotoInFolder(DWORD folder, vdstomgr::PhotoArray& out);
  /// One record per folder that holds photos.
  int GetPhotoCountInFolders(vdstomgr::CountArray& out);
  /// The same for the given folders; an empty list of them is a failure.
  int GetPhotoCountInFolders(const CDWordArray& folders, vdstomgr::CountArray& out);

 protected:
  void cSetDBName(const char* path) { m_strDBName = path; }
  /// The text with every single quote doubled, to stand between single quotes in a statement.
  CString cToDBString(const char* text) const;
  /// A whole file into a new block of the holder. False, and the holder as it was, when it cannot
  /// be read.
  bool cLoadFileData(const char* path, CLongBinary& holder);
  /// The bytes of a long-binary column. False when the variant holds none.
  bool cGetLongBinary(const COleVariant& value, CLongBinary& holder);
  bool cGetLongBinary(const COleVariant& value, CBinData& data);

  /// The first rows into the given database. Takes no lock and may throw.
  void InitFieldData(CRkDaoDatabase& database);

  /// The children by name, each followed by its own when `recursive`; a folder in `visited` is not
  /// entered. May throw.
  void cGetSubFolder(DWORD parent, vdstomgr::FolderArray& folders,
                     CMap<DWORD, DWORD, DWORD, DWORD>& visited, bool recursive);

  /// Fills a fresh record from the current row; false at the end of the rows. May throw.
  bool cGetPhotoInfoByRS(CRkDaoRecordset& rs, PHOTOINFO& info);

  /// Guarded by the DAO lock, the arrays owned.
  vdstomgr::SubFolderMap m_mapSubFolderDef;

 private:
  /// A guarded operation that changes folders; true unless it failed.
  template <class Body>
  bool ChangingFolders(Body&& body) {
    return Guarded(false, [&] {
      struct MarkAtExit {
        int& changed;
        ~MarkAtExit() { changed = 1; }
      } mark{m_nFolderChanged};
      body();
      return true;
    });
  }

  // What operations are made of. These run under a guard and throw.
  void CreateSchema();
  void RestoreRootNames();
  void CloseQuietly();
  void RenewTrashTable();

  bool FindFolder(DWORD id, FOLDERINFO& folder);
  bool FindParent(DWORD id, FOLDERINFO& parent);
  DWORD FindParentID(DWORD id);
  DWORD FindSubFolder(DWORD parent, const char* name);
  enum class RootName { Included, LeftOut };
  CString PathName(DWORD id, RootName root_name);
  enum class Write { AddOnly, EditOnly, AddOrEdit };
  void WriteFolder(const FOLDERINFO& folder, Write how);
  void FillSubFolderMap(vdstomgr::SubFolderMap& map);

  bool FindPhoto(const char* guid, PHOTOINFO& info);
  bool HasPhoto(DWORD folder, const char* file_name);

  CRITICAL_SECTION m_csDAO;
  CString m_strDBName;
  CString m_strOpenPath;
  CString m_strOpenPassword;
  bool m_bOpen = false;
  int m_nFolderChanged = 1;  // since m_mapSubFolderDef was filled
  std::atomic<std::uint64_t> m_nSmallFileUploadMaxSize{1'048'576};
  vdstomgr::Clock m_clock;
};
