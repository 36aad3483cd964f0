#include "catalogue_test.h"

#include "tests/temporary_folder.h"

namespace vdstomgr {

CatalogueTest::CatalogueTest() {
  folder_ = MakeTemporaryFolder("catalogue");
  file_ = Path("c.db");
  SetDatabaseErrorHandler([this](int code, const char*) { reports_.push_back(code); });
  EXPECT_TRUE(catalogue_.CreateDB(file_.c_str(), nullptr));
  EXPECT_TRUE(catalogue_.OpenDB(file_.c_str(), ""));
}

CatalogueTest::~CatalogueTest() {
  EXPECT_EQ(reports_, Reports());
  SetDatabaseErrorHandler(nullptr);
  SetTextCodePage(TextCodePage::korean949);
  std::error_code ignored;
  catalogue_.CloseDB();
  std::filesystem::remove_all(folder_, ignored);
}

void CatalogueTest::RunBeside(const char* statement) {
  CRkDaoDatabase database;
  database.Open(file_.c_str());
  database.ExecuteOrThrow(statement);
}

std::vector<std::string> CatalogueTest::Ask(const char* query) {
  CRkDaoDatabase database;
  database.Open(file_.c_str());
  CRkDaoRecordset rows(&database);
  std::vector<std::string> answers;
  for (rows.Open(dbOpenDynaset, query); !rows.IsEOF(); rows.MoveNext()) {
    std::string& answer = answers.emplace_back();
    for (int i = 0; i < rows.GetFieldCount(); ++i) {
      COleVariant value = rows.GetFieldValue(i);
      const bool null = value.vt == VT_NULL;
      if (!null) value.ChangeType(VT_BSTR);
      answer += (i ? "|" : "") + (null ? std::string("null") : value.strVal.Str());
    }
  }
  return answers;
}

PHOTOINFO CatalogueTest::Photo(const std::string& guid, DWORD folder, const char* name) {
  PHOTOINFO photo;
  photo.SetGUID(guid.c_str());
  photo.SetFolderID(folder);
  photo.SetFileName(name);
  return photo;
}

bool CatalogueTest::AddFolder(DWORD id, DWORD parent, const char* name) {
  FOLDERINFO folder;
  folder.dwFolderID = id;
  folder.dwParentID = parent;
  CopyToFixed(folder.szFolderName, name);
  return catalogue_.AddFolderInfo(folder);
}

}  // namespace vdstomgr
