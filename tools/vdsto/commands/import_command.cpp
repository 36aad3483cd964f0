#include <iostream>

#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/commands/photo_text.h"
#include "tools/vdsto/import/importer.h"
#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/library/import_lock.h"
#include "tools/vdsto/picture/picture_probe.h"
#include "tools/vdsto/tool_error.h"

#include <nlohmann/json.hpp>

namespace vdsto {

bool RunImport(const LibraryOptions& options, const std::vector<std::string>& folders,
               OutputForm form, std::ostream& out) {
  InitialiseProbing();
  bool told = false;
  const ImportLock lock(options.folder, [&] {
    if (!told) std::cerr << "waiting for another import into this library" << std::endl;
    told = true;
  });
  Library library(options, lock);
  const ImportSummary summary = ImportFolders(library, folders, form == OutputForm::kJson);
  if (form == OutputForm::kJson) {
    out << JsonText(SummaryAsJson(summary));
  } else {
    PrintSummary(summary, out);
  }
  return !summary.interrupted;
}

}  // namespace vdsto
