#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/os/system_error.h"

#include <sqlite3.h>

#include <array>
#include <cassert>
#include <optional>
#include <string>

namespace vdstomgr::sqlite {
namespace {

using dao::Error;

struct KnownPhrase {
  std::string_view phrase;  // how the engine's message begins
  Error error;
};

// Faults of a statement that the engine tells apart in its message only. The message continues with
// the name concerned.
constexpr std::array kPhrases = {
    KnownPhrase{"no such table: ", Error::UnknownTable},
    KnownPhrase{"ambiguous column name: ", Error::AmbiguousColumn},
    KnownPhrase{"no such function: ", Error::UndefinedFunction},
    KnownPhrase{"misuse of aggregate", Error::SyntaxInExpression},
    KnownPhrase{"index ", Error::IndexExists},
};

// A function of ours fails with "<number>|<message>", so that its number survives the engine.
std::optional<std::pair<int, std::string>> OwnError(std::string_view message) {
  const size_t bar = message.find('|');
  if (bar == std::string_view::npos || bar == 0 || bar > 5) return std::nullopt;
  int number = 0;
  for (const char c : message.substr(0, bar)) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + (c - '0');
  }
  return std::pair(number, std::string(message.substr(bar + 1)));
}

std::string_view AfterColon(std::string_view message) {
  const size_t colon = message.find(": ");
  return colon == std::string_view::npos ? message : message.substr(colon + 2);
}

[[noreturn]] void ThrowStatementError(std::string_view message, std::string_view statement) {
  if (message.starts_with("table ") && message.ends_with(" already exists")) {
    const std::string_view name = message.substr(6, message.size() - 6 - 15);
    dao::Throw(Error::TableExists, name);
  }
  for (const KnownPhrase& known : kPhrases) {
    if (message.starts_with(known.phrase)) {
      dao::Throw(known.error, message.substr(known.phrase.size()));
    }
  }
  dao::ThrowWithMessage(Error::SyntaxInExpression, "Syntax error in query expression '" +
                                                       std::string(statement.substr(0, 200)) +
                                                       "': " + std::string(message));
}

// The names of CHECK constraints say what they keep: "type.<column>", "range.<column>"...
[[noreturn]] void ThrowCheckFailure(std::string_view message) {
  const std::string_view name = AfterColon(message);
  const std::string_view column = name.substr(std::min(name.size(), name.find('.') + 1));
  if (name.starts_with("size.")) dao::Throw(Error::TextTooLong, column);
  if (name.starts_with("range.")) dao::Throw(Error::NumberOverflow, column);
  dao::Throw(Error::DataConversion, column);
}

// The message names the column as "table.column".
[[noreturn]] void ThrowNullFailure(sqlite3* db, std::string_view message) {
  const std::string_view name = AfterColon(message);
  const size_t point = std::min(name.size(), name.find('.'));
  const std::string table(name.substr(0, point));
  const std::string column(name.substr(std::min(name.size(), point + 1)));
  int is_key = 0;
  sqlite3_table_column_metadata(db, nullptr, table.c_str(), column.c_str(), nullptr, nullptr,
                                nullptr, &is_key, nullptr);
  if (is_key) dao::Throw(Error::NullKey);
  dao::Throw(Error::RequiredFieldNull, column);
}

[[noreturn]] void ThrowConstraintError(sqlite3* db, int code, std::string_view message) {
  switch (code) {
    case SQLITE_CONSTRAINT_CHECK:
      ThrowCheckFailure(message);
    case SQLITE_CONSTRAINT_NOTNULL:
      ThrowNullFailure(db, message);
    default:
      dao::Throw(Error::DuplicateKey);
  }
}

bool IsDiskFull(int code, const std::error_code& error) {
  return code == SQLITE_FULL || ((code & 0xff) == SQLITE_IOERR && os::IsNoSpace(error));
}

}  // namespace

void ThrowFileError(const std::error_code& error, std::string_view path) {
  if (os::IsNoSpace(error)) dao::Throw(Error::DiskFull);
  if (error == std::errc::file_exists) dao::Throw(Error::DatabaseExists);
  if (error == std::errc::no_such_file_or_directory) dao::Throw(Error::FileNotFound, path);
  if (error == std::errc::io_error) dao::Throw(Error::DiskOrNetwork);
  for (const std::errc bad_path : {std::errc::not_a_directory, std::errc::filename_too_long,
                                   std::errc::too_many_symbolic_link_levels}) {
    if (error == bad_path) dao::Throw(Error::InvalidPath, path);
  }
  dao::Throw(Error::FileNotAccessible, path);
}

void ThrowEngineError(sqlite3* db, int code, std::string_view subject) {
  assert(code != SQLITE_OK && code != SQLITE_ROW && code != SQLITE_DONE);
  const std::string message = db ? sqlite3_errmsg(db) : sqlite3_errstr(code);
  const std::error_code system_error(db ? sqlite3_system_errno(db) : 0, std::system_category());
  if (const auto own = OwnError(message)) {
    dao::ThrowWithMessage(static_cast<Error>(own->first), own->second);
  }
  if (IsDiskFull(code, system_error)) dao::Throw(Error::DiskFull);
  switch (code & 0xff) {
    case SQLITE_CONSTRAINT:
      ThrowConstraintError(db, code, message);
    case SQLITE_ERROR:
      ThrowStatementError(message, subject);
    case SQLITE_MISMATCH:
      dao::Throw(Error::DataConversion, subject);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      dao::Throw(Error::Locked);
    case SQLITE_READONLY:
      dao::Throw(Error::ReadOnly);
    case SQLITE_CORRUPT:
      dao::Throw(Error::FileDamaged, subject);
    case SQLITE_NOTADB:
      dao::Throw(Error::NotADatabase, subject);
    case SQLITE_CANTOPEN:
      ThrowFileError(system_error, subject);
    case SQLITE_NOMEM:
      throw std::bad_alloc();
    default:
      dao::Throw(Error::DiskOrNetwork);
  }
}

void Check(sqlite3* db, int code, std::string_view subject) {
  if (code != SQLITE_OK) ThrowEngineError(db, code, subject);
}

}  // namespace vdstomgr::sqlite
