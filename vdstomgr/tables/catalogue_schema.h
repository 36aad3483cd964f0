#pragma once

#include "vdstomgr/platform/dao/rk_dao.h"

/// A catalogue's tables and the rows it starts with. Statements that fail say nothing; trouble with
/// the file is thrown. The caller holds the database's lock.
namespace vdstomgr {

void CreateCatalogueTables(CRkDaoDatabase& database);
/// Those that are there stay.
void InsertFirstRows(CRkDaoDatabase& database);

}  // namespace vdstomgr
