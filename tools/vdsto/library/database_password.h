#pragma once
#include <string>

#include "vdstomgr/vdstomgr.h"

/// How a database of the library folder is opened beside the classes of the catalogue.
namespace vdsto {

/// What the library answers to one.
constexpr int kWrongDatabasePassword = 3031;

/// Is the file a database that no password encrypts? False also for one that cannot be read.
bool IsPlainDatabase(const std::string& path);

/// The start of a password that counts.
std::string CountingPassword(const std::string& password);

/// Opens `database` for reading under the catalogue's password, however that was cut when the file
/// was made; with `to_write` for writing too, where that can be. Answers the password as the file
/// knows it. Throws CDaoException.
std::string OpenUnderPassword(CDaoDatabase& database, const std::string& path,
                              const std::string& password, bool to_write = false);

}  // namespace vdsto
