#pragma once

#include "vdstomgr/catalogue/rows.h"
#include "vdstomgr/platform/dao/dao_recordset.h"
#include "vdstomgr/records/folder_info.h"

/// A folder record and its row of FolderInfo.
namespace vdstomgr {

/// The current row as a record; null columns leave its fields at their first values.
FOLDERINFO ReadFolder(CDaoRecordset& row);
/// The same, with the fixed name for a root that has none.
FOLDERINFO ReadNamedFolder(CDaoRecordset& row);
/// Appends all rows.
void AppendNamedFolders(Rows rows, FolderArray& folders);

/// Gives a root without a name its fixed one.
void FillRootName(FOLDERINFO& folder);

/// Adds the record as a new row of an open query on FolderInfo.
void AddFolderRow(CDaoRecordset& rows, const FOLDERINFO& folder);
/// Rewrites the current row.
void EditFolderRow(CDaoRecordset& row, const FOLDERINFO& folder);
/// Fills the pending row.
void FillFolderRow(CDaoRecordset& row, const FOLDERINFO& folder);

}  // namespace vdstomgr
