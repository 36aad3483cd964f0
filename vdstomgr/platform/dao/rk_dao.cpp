#include "vdstomgr/platform/dao/rk_dao.h"

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/dao_exception.h"

void CRkDaoDatabase::Execute(const char* sql, int options) {
  try {
    CDaoDatabase::Execute(sql, options);
  } catch (const CDaoException& error) {
    if (vdstomgr::dao::IsFileTrouble(error.Code())) throw;
  }
}
