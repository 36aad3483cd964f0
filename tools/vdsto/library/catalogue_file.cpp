#include "tools/vdsto/library/catalogue_file.h"

#include "tools/vdsto/library/database_password.h"

namespace vdsto {

CatalogueFile::CatalogueFile(const Library& library) {
  try {
    OpenUnderPassword(database_, library.CataloguePath(), library.Password());
  } catch (const CDaoException& error) {
    throw ToolError(ExitCode::kCannotOpen, error.what());
  }
}

}  // namespace vdsto
