#include "tools/vdsto/library/temporary_folder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {

TemporaryFolder::TemporaryFolder() {
  const std::string set = EnvironmentVariable("TMPDIR");
  path_ = Joined(set.empty() ? "/tmp" : set, "vdsto-XXXXXX");
  if (mkdtemp(path_.data()) != nullptr) return;
  throw ToolError(ExitCode::kCannotOpen,
                  path_ + " cannot be made: " + std::generic_category().message(errno) +
                      " (TMPDIR names the folder for temporary files)");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace vdsto
