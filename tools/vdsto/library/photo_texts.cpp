#include "tools/vdsto/library/photo_texts.h"

namespace vdsto {

PhotoTexts::Texts PhotoTexts::Of(const std::string& guid) {
  const std::string query = "SELECT szTitle, szDesc FROM PhotoMaster WHERE szGUID = '" + guid + "'";
  return file_.Query(query, [](CRkDaoRecordset& rows) {
    if (rows.IsEOF()) return Texts();
    return Texts{rows.GetFieldValue("szTitle").ToText().Str(),
                 rows.GetFieldValue("szDesc").ToText().Str()};
  });
}

}  // namespace vdsto
