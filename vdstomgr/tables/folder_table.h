#pragma once

#include "vdstomgr/records/folder_ids.h"
#include "vdstomgr/records/folder_maps.h"
#include "vdstomgr/session/database_session.h"

namespace vdstomgr {

/// What can be asked of any table of folders. Steps of operations: they run under the session's
/// guard and throw.
class FolderTable {
 public:
  /// Makes a record of the current row.
  using Reader = FOLDERINFO (*)(CDaoRecordset& row);
  /// What a root whose name is empty is called where only its name is read.
  enum class NamelessRoot { FixedName, Nameless };

  FolderTable(DatabaseSession& session, const char* table, Reader read,
              NamelessRoot nameless_root = NamelessRoot::FixedName)
      : session_(session), table_(table), read_(read), nameless_root_(nameless_root) {}

  /// False, and `folder` as it was, when there is none.
  bool Find(DWORD id, FOLDERINFO& folder) const;
  /// Reads parent, id and name of the folder above; false when no row of it is there.
  bool FindParent(DWORD id, FOLDERINFO& parent) const;
  /// 0xFFFFFFFF for a missing folder.
  DWORD FindParentID(DWORD id) const;
  /// The child of that name; 0xFFFFFFFF when there is none.
  DWORD FindSubFolder(DWORD parent, const char* name) const;

  /// Append all rows of a query.
  void Append(Rows rows, FolderArray& folders) const;
  Rows SelectAll() const;
  Rows SelectChildrenByName(DWORD parent) const;
  /// The children by name, each followed by its own when `recursive`; a folder in `visited` is not
  /// entered.
  void AppendSubFolders(DWORD parent, FolderArray& folders, VisitedFolders& visited,
                        bool recursive) const;
  /// Every folder but the roots into the array of its parent.
  void FillSubFolderMap(SubFolderMap& map) const;

  enum class RootName { Included, LeftOut };
  /// All names from the top-level folder down, joined by '/'. Empty for a missing folder and for a
  /// circle of parents.
  CString PathName(DWORD id, RootName root_name) const;

 private:
  DatabaseSession& session_;
  Raw table_;
  Reader read_;
  NamelessRoot nameless_root_;
};

/// Gives a root without a name its fixed one.
void FillRootName(FOLDERINFO& folder);

}  // namespace vdstomgr
