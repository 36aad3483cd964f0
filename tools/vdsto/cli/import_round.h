#pragma once
#include "tools/vdsto/cli/answer.h"
#include "tools/vdsto/import/importer.h"
#include "tools/vdsto/library/import_lock.h"

/// One import, as several commands make it, and what they say of it.
namespace vdsto {

/// Makes the library when it is not there, puts it in order and imports `roots`. Tells on standard
/// error what the user should know of the library. Throws ToolError.
ImportSummary ImportInto(const LibraryOptions& options, const ImportLock& lock,
                         const ImportRoots& roots, bool quiet);

/// What an import did.
Facts Describe(const ImportSummary& summary);

}  // namespace vdsto
