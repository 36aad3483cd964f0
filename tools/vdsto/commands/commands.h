#pragma once
#include <ostream>
#include <string>
#include <vector>

#include "tools/vdsto/library/library.h"
#include "tools/vdsto/tool_error.h"

/// One function per command; each writes its answer to `out` and throws ToolError when it cannot.
namespace vdsto {

/// How a command writes its answer.
enum class OutputForm { kHuman, kJson };

/// False when the user interrupted it.
bool RunImport(const LibraryOptions& options, const std::vector<std::string>& folders,
               OutputForm form, std::ostream& out);
void RunTree(Library& library, OutputForm form, std::ostream& out);
void RunList(Library& library, const std::string& path, OutputForm form, std::ostream& out);
void RunInfo(Library& library, const std::string& photo, OutputForm form, std::ostream& out);
void RunStat(Library& library, OutputForm form, std::ostream& out);

/// Writes a photo's thumbnail to the file `target`, or to `out` when that is "-".
void RunThumb(Library& library, const std::string& photo, const std::string& target,
              OutputForm form, std::ostream& out);

/// What `vdsto store` does to the image store of a library.
ExitCode RunStoreStat(const LibraryOptions& options, OutputForm form, std::ostream& out);
/// Answers kDamaged when there are faults.
ExitCode RunStoreVerify(const LibraryOptions& options, OutputForm form, std::ostream& out);
/// Answers kDamaged when no sound store came of it.
ExitCode RunStoreRepair(const LibraryOptions& options, OutputForm form, std::ostream& out);
ExitCode RunStoreCompact(const LibraryOptions& options, OutputForm form, std::ostream& out);
ExitCode RunStoreSync(const LibraryOptions& options, OutputForm form, std::ostream& out);

}  // namespace vdsto
