#pragma once
#include <string>

#include "tools/vdsto/library/library.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {

/// The catalogue's file over a connection of its own, for what the catalogue keeps and its
/// operations do not tell. To be read only.
class CatalogueFile {
 public:
  /// Throws ToolError.
  explicit CatalogueFile(const Library& library);

  /// Gives `read` the rows of a query, which it is to walk. Throws ToolError.
  template <class Read>
  auto Query(const std::string& sql, Read read) {
    try {
      CRkDaoRecordset rows(&database_);
      rows.Open(dbOpenDynaset, sql.c_str());
      return read(rows);
    } catch (const CDaoException& error) {
      throw ToolError(ExitCode::kCatalogue, error.what());
    }
  }

 private:
  CRkDaoDatabase database_;
};

}  // namespace vdsto
