#include "tools/vdsto/tool_error.h"

#include "tools/vdsto/text/text.h"

namespace vdsto {

void ThrowSystemError(const std::string& path, const std::error_code& error) {
  throw ToolError(ExitCode::kCannotOpen, Printable(path) + ": " + error.message());
}

void ThrowErrno(const std::string& path, int error) {
  ThrowSystemError(path, {error, std::generic_category()});
}

}  // namespace vdsto
