#pragma once
#include <string>

#include "vdstomgr/vdstomgr.h"

/// How a database of the library folder is opened beside the classes of the catalogue.
namespace vdsto {

/// The start of a password that counts.
std::string CountingPassword(const std::string& password);

/// Opens `database` for reading under the catalogue's password, however that was cut when the file
/// was made; with `to_write` for writing too, where that can be. Throws CDaoException.
void OpenUnderPassword(CDaoDatabase& database, const std::string& path, const std::string& password,
                       bool to_write = false);

}  // namespace vdsto
