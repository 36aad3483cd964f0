#pragma once

#include "vdstomgr/tables/folder_columns.h"
#include "vdstomgr/tables/folder_table.h"

namespace vdstomgr::catalogue {

/// The catalogue's folders, roots without a name under their fixed one.
inline FolderTable FoldersOf(DatabaseSession& db) {
  return {db, "FolderInfo", [](CDaoRecordset& row) {
            FOLDERINFO folder = kFolderColumns.ReadFresh(row);
            FillRootName(folder);
            return folder;
          }};
}

}  // namespace vdstomgr::catalogue
