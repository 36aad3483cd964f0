#pragma once

#include <string>

namespace vdstomgr::os {

/// Shows a text (UTF-8) to whoever sits at the computer: on Windows in a message box, which is
/// waited for, elsewhere as a line of standard error.
void ShowMessage(const std::string& text);

}  // namespace vdstomgr::os
