#pragma once

#include "vdstomgr/platform/dao/dao_recordset.h"
#include "vdstomgr/records/photo_info.h"

/// A photo record and its row of PhotoMaster.
namespace vdstomgr {

/// Fills a fresh record from the current row; what no column carries stays.
void ReadPhoto(CDaoRecordset& row, PHOTOINFO& photo);
/// Adds the record as a new row of an open query on PhotoMaster.
void AddPhoto(CDaoRecordset& rows, const PHOTOINFO& photo);
/// Rewrites the current row, its GUID included.
void EditPhoto(CDaoRecordset& row, const PHOTOINFO& photo);

}  // namespace vdstomgr
