#pragma once

#include <functional>
#include <string_view>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/session/database_session.h"

/// The life of a database file: steps of operations that run outside a commit. They throw
/// CDaoException.
namespace vdstomgr {

/// The start of a password that counts: 20 places as in code page 949, where a character that is no
/// ASCII takes two, whatever the process's code page. The same text so opens the same file under
/// every code page. A character is never split.
std::string_view CutPassword(std::string_view password);

/// Calls `open` with the start of a password that counts. Passwords were once cut at 20 bytes of
/// the process's code page: when the file is under another password, tries that.
void WithEitherCut(std::string_view password, const std::function<void(std::string_view)>& open);

/// Makes a new file in place of any of that name, protected when the password is not empty, fills
/// it by `fill` in one commit and closes it. A creation that fails leaves no file. A file that is
/// open anywhere is refused.
void CreateDatabaseFile(DatabaseSession& session, const CString& path, const char* password,
                        const std::function<void()>& fill);

/// Opens a file, with `read_only` for reading alone, and runs `prepare` on it in one commit; when
/// that fails, the file is closed again.
void OpenDatabaseFile(DatabaseSession& session, const CString& path, const char* password,
                      bool read_only, const std::function<void()>& prepare);

}  // namespace vdstomgr
