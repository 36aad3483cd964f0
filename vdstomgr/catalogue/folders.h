#pragma once

#include "vdstomgr/catalogue/versions.h"
#include "vdstomgr/records/folder_info.h"
#include "vdstomgr/records/folder_maps.h"

namespace vdstomgr::catalogue {

/// The folder tree.
class VDSTO_API Folders : public Versions {
 public:
  ~Folders() override;

  /// ---- Reading one ----

  /// False when there is no such folder. A folder whose space is unknown gets that of its root, and
  /// its row is written back.
  bool GetFolderInfo(DWORD id, FOLDERINFO& folder);
  /// Appends the folders that exist; their space, creator, memo and comment fields are not read.
  int GetFolderInfo(const CDWordArray& ids, FolderArray& folders);
  /// Reads parent, id and name only. False for a top-level folder.
  bool GetParentFolderInfo(DWORD id, FOLDERINFO& parent);
  /// As it is stored: empty for a root without one, and for a missing folder.
  CString GetFolderName(DWORD id);
  /// Empty when there is no such folder.
  CString GetFolderDesc(DWORD id);
  /// 0xFFFFFFFF for a top-level folder and for a missing one.
  DWORD GetParentFolderID(DWORD id);
  /// The child of that name.
  DWORD GetSubFolderID(DWORD parent, const char* name);
  /// The top-level folder above `id`; `id` itself when it is one or is missing. 0xFFFFFFFF when the
  /// parents go in a circle.
  DWORD GetRootParentFolderID(DWORD id);
  /// 0 personal, 1 public, 2 guest; 0xFFFFFFFF when the folder is missing or under no root.
  DWORD GetFolderType(DWORD id);
  DWORD GetFolderType(const char* path);
  /// Is there such a folder?
  bool FolderExistsInDB(DWORD id);

  /// ---- Lists ----

  /// The children, by name.
  int GetFolderList(FolderArray& folders, DWORD parent);
  int GetFolderList(CDWordArray& ids, DWORD parent);
  /// The children, in no order.
  int GetSubFolderInfo(DWORD parent, FolderArray& folders);
  /// How many children a folder has.
  int GetSubFolderCountFromDB(DWORD parent);
  /// Every folder; a root without a name gets its fixed one.
  int GetAllFolderList(FolderArray& folders);
  /// Every folder under its stored name: a root without one gets none.
  int GetAllFolderListForSearch(FolderArray& folders);
  /// Every folder under its id. Answers the map's size.
  int GetFolderInfoForTree(FolderMap& folders);
  /// How many folders there are, the catalogue's own included.
  int GetFolderCount();

  /// ---- Sub-folders ----

  /// The children of every folder, read anew after a change of the folders. The map stays this
  /// object's; who walks it while others change folders holds the DAO lock.
  SubFolderMap* GetSubFolderInfoCashForTree();
  /// The same into the caller's map, whose arrays the caller deletes. Answers its size.
  int GetSubFolderInfoForTree(SubFolderMap& map);
  /// The children, each followed by its own sub-folders when `recursive`. Without `cache` the
  /// object's own map is used.
  int GetSubFolder(DWORD parent, FolderArray& folders, bool recursive,
                   SubFolderMap* cache = nullptr);
  int GetSubFolder(DWORD parent, CDWordArray& ids, bool recursive);
  /// The same walk on the table.
  int GetSubFolder2(DWORD parent, CDWordArray& ids, bool recursive);
  /// 1 when the sub-folders of `id` bring `count` above `limit`, else 0; `count` grows as they are
  /// met. A circle of parents is above every limit.
  int SubFolderCountIsLarge(DWORD id, int& count, int limit, bool recursive,
                            SubFolderMap* cache = nullptr);

  /// ---- Paths and free names ----

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

  /// ---- Changing ----

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
  bool AddFolder(const FolderArray& folders, bool unused = false);
  /// Adds the folder unless its id is taken.
  bool AddFolderInfo(const FOLDERINFO& folder);
  /// Rewrites the folder's row; a missing one is not added.
  bool SetFolderInfo(const FOLDERINFO& folder);
  /// Rewrites or adds each. The number changes nothing.
  bool SetFolderInfo(const FolderArray& folders, int unused = 0);
  /// Gives a folder another name and description.
  bool RenameFolder(DWORD id, const char* name, const char* desc);
  /// In seconds since 1970.
  bool UpdateFolderModifiedDate(DWORD id, std::int32_t time);
  bool UpdateFolderIModifiedDate(DWORD id, std::int32_t time);
  /// Puts the folder under another parent, whatever that is.
  bool MoveFolder(DWORD id, DWORD new_parent);
  bool MoveFolder(const CDWordArray& ids, DWORD new_parent);
  /// Deletes the row only.
  bool DeleteFolderInfo(DWORD id);
  bool DeleteFolderInfo(const CDWordArray& ids);

 protected:
  /// The children by name, each followed by its own when `recursive`; a folder in `visited` is not
  /// entered.
  void cGetSubFolder(DWORD parent, FolderArray& folders, VisitedFolders& visited, bool recursive);

  /// Guarded by the DAO lock, the arrays owned.
  SubFolderMap m_mapSubFolderDef;
};

}  // namespace vdstomgr::catalogue
