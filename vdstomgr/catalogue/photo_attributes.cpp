#include "vdstomgr/catalogue/photo_attributes.h"

#include "vdstomgr/session/database_session.h"

namespace vdstomgr::catalogue {

bool PhotoAttributes::SetTagSyncFlag(const char* guid) {
  return m_db->ExecuteOnRow("UPDATE PhotoMaster SET byteTagSync = 1 WHERE szGUID = '%s'",
                            Raw(guid));
}

bool PhotoAttributes::SetTagSyncFlag(const CStringArray& guids) {
  return m_db->ExecuteForEach(guids, "UPDATE PhotoMaster SET byteTagSync = 1 WHERE szGUID = '%s'",
                              kEachGuid);
}

}  // namespace vdstomgr::catalogue
