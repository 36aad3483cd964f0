#pragma once

#include <memory>

#include "vdstomgr/platform/export.h"

namespace vdstomgr {

class DatabaseSession;

/// Where every class of operations on a database begins. The operations of one object share one
/// session: its lock, its guard and its database.
class VDSTO_API DatabaseOperations {
 public:
  DatabaseOperations(const DatabaseOperations&) = delete;
  DatabaseOperations& operator=(const DatabaseOperations&) = delete;

 protected:
  DatabaseOperations();
  virtual ~DatabaseOperations();

  const std::unique_ptr<DatabaseSession> m_db;
};

}  // namespace vdstomgr
