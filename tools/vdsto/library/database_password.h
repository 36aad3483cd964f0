#pragma once
#include <string>

#include "vdstomgr/vdstomgr.h"

/// How a database of the library folder is opened beside the classes of the catalogue.
namespace vdsto {

/// The start of a password that counts.
std::string CountingPassword(const std::string& password);

/// Opens `database` under the catalogue's password, however that was cut when the file was made.
/// Answers the password as the file knows it. Throws CDaoException.
std::string OpenUnderPassword(CDaoDatabase& database, const std::string& path,
                              const std::string& password);

}  // namespace vdsto
