#pragma once

#include <string_view>
#include <system_error>

#include "vdstomgr/platform/dao/dao_error.h"

struct sqlite3;

namespace vdstomgr::sqlite {

/// Turns the engine's last failure on `db` into a CDaoException with the dialect's number.
/// `code` is the (extended) result of the call that failed; `subject` names the file or statement.
[[noreturn]] void ThrowEngineError(sqlite3* db, int code, std::string_view subject);

/// Turns the file system's refusal to open or make the file into a CDaoException.
[[noreturn]] void ThrowFileError(const std::error_code& error, std::string_view path);

/// Throws unless `code` is SQLITE_OK.
void Check(sqlite3* db, int code, std::string_view subject);

}  // namespace vdstomgr::sqlite
