#include "vdstomgr/session/database_operations.h"

#include "vdstomgr/session/database_session.h"

namespace vdstomgr {

DatabaseOperations::DatabaseOperations() : m_db(std::make_unique<DatabaseSession>()) {}
DatabaseOperations::~DatabaseOperations() = default;

}  // namespace vdstomgr
