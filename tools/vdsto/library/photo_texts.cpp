#include "tools/vdsto/library/photo_texts.h"

#include "tools/vdsto/library/database_password.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

template <class Step>
auto Reporting(ExitCode code, Step step) {
  try {
    return step();
  } catch (const CDaoException& error) {
    throw ToolError(code, error.what());
  }
}

}  // namespace

PhotoTexts::PhotoTexts(const Library& library, const std::string& password) {
  Reporting(ExitCode::kCannotOpen,
            [&] { OpenUnderPassword(database_, library.CataloguePath(), password); });
}

PhotoTexts::Texts PhotoTexts::Of(const std::string& guid) {
  const std::string query = "SELECT szTitle, szDesc FROM PhotoMaster WHERE szGUID = '" + guid + "'";
  return Reporting(ExitCode::kCatalogue, [&] {
    CRkDaoRecordset rows(&database_);
    rows.Open(dbOpenDynaset, query.c_str());
    if (rows.IsEOF()) return Texts();
    return Texts{rows.GetFieldValue("szTitle").ToText().Str(),
                 rows.GetFieldValue("szDesc").ToText().Str()};
  });
}

}  // namespace vdsto
