#include "vdstomgr/session/database_session.h"

#include <span>
#include <string>

namespace vdstomgr {

namespace {

/// Where statements are composed; kept for its memory. What runs a statement is done with its text
/// when it returns.
std::string& StatementMemory() {
  thread_local std::string statement;
  return statement;
}

const char* Composed(const char* format, std::span<const SqlArgument> arguments,
                     const SqlArgument& item = kEachGuid) {
  std::string& statement = StatementMemory();
  ComposeStatement(statement, format, arguments, item);
  return statement.c_str();
}

}  // namespace

int DatabaseSession::RunText(CRkDaoDatabase& database, const char* format, Arguments arguments) {
  database.Execute(Composed(format, arguments));
  return database.GetRecordsAffected();
}

int DatabaseSession::RunTextOrThrow(const char* format, Arguments arguments) {
  CRkDaoDatabase& database = Database();
  database.ExecuteOrThrow(Composed(format, arguments));
  return database.GetRecordsAffected();
}

int DatabaseSession::RunFor(const SqlArgument& item, const char* format, Arguments arguments) {
  CRkDaoDatabase& database = Database();
  database.Execute(Composed(format, arguments, item));
  return database.GetRecordsAffected();
}

Rows DatabaseSession::SelectText(const char* format, Arguments arguments) {
  return Rows(Database(), Composed(format, arguments));
}

}  // namespace vdstomgr
