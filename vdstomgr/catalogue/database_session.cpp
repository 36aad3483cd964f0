#include "vdstomgr/catalogue/database_session.h"

#include <new>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/platform/text/code_page.h"

namespace vdstomgr {

namespace {

/// Reports the exception being handled, unless it is a duplicate key.
void ReportFailure() {
  try {
    throw;
  } catch (const CDaoException& error) {
    if (error.Code() != static_cast<int>(dao::Error::DuplicateKey))
      ReportDatabaseError(error.Code(), FromUtf8(error.what()).c_str());
  } catch (const std::bad_alloc&) {
    ReportDatabaseError(0, "Out of memory.");
  } catch (const std::exception& error) {
    ReportDatabaseError(0, FromUtf8(error.what()).c_str());
  } catch (...) {
    ReportDatabaseError(0, "Unknown error.");
  }
}

}  // namespace

bool DatabaseSession::RunGuarded(Commit commit, BodyRef body) {
  const ScopedLock guard(*m_pLock);
  try {
    commit == Commit::None ? body() : RunInOneCommit(m_db, body);
    return true;
  } catch (...) {
    ReportFailure();
    return false;
  }
}

void DatabaseSession::RunInOneCommit(CRkDaoDatabase& database, BodyRef body) {
  database.BeginGroup();
  try {
    body();
  } catch (...) {
    try {
      database.EndGroup();
    } catch (const std::exception&) {  // the body's failure is the one to be told
    }
    throw;
  }
  database.EndGroup();
}

const char* DatabaseSession::Compose(const char* format,
                                     std::initializer_list<SqlArgument> arguments) {
  ComposeStatement(m_statement, format, arguments);
  return m_statement.c_str();
}

int DatabaseSession::Execute(CRkDaoDatabase& database, const char* sql) {
  database.Execute(sql);
  return database.GetRecordsAffected();
}

int DatabaseSession::ExecuteOrThrow(const char* sql) {
  m_db.ExecuteOrThrow(sql);
  return m_db.GetRecordsAffected();
}

}  // namespace vdstomgr
