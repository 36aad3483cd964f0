#pragma once

#include <string>
#include <vector>

#include "vdstomgr/platform/export.h"

class CDaoDatabase;
class CDaoRecordset;

namespace vdstomgr {

/// What is wrong inside an open database, in English (UTF-8): the engine reads every page, index,
/// key and constraint. Empty when nothing is. Writes nothing, and works beside those who do. Throws
/// CDaoException when the database is not open.
VDSTO_API std::vector<std::string> CheckDatabase(CDaoDatabase& database);

/// The names of the columns of an open recordset, in the process's code page.
VDSTO_API std::vector<std::string> ColumnNamesOf(CDaoRecordset& recordset);

}  // namespace vdstomgr
