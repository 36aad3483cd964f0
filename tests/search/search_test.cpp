#include "search_test.h"

#include "tests/temporary_folder.h"

namespace vdstomgr {

SearchTest::SearchTest() {
  folder_ = MakeTemporaryFolder("search");
  file_ = Path("s.db");
  SetTextCodePage(TextCodePage::utf8);
  SetDatabaseErrorHandler([this](int code, const char*) { reports_.push_back(code); });
  InitializeCriticalSection(&lock_);
  search_.SetDAOCriticalSection(&lock_);
  EXPECT_TRUE(search_.CreateDB(file_.c_str(), nullptr));
  EXPECT_TRUE(search_.OpenDB(file_.c_str(), ""));
}

SearchTest::~SearchTest() {
  EXPECT_EQ(reports_, std::vector<int>());
  SetDatabaseErrorHandler(nullptr);
  SetTextCodePage(TextCodePage::korean949);
  search_.CloseDB();
  DeleteCriticalSection(&lock_);
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void SearchTest::Run(const std::vector<std::string>& statements) {
  for (const std::string& statement : statements)
    EXPECT_TRUE(search_.m_db->ExecuteOrFail("%s", Raw(statement))) << statement;
}

std::vector<std::string> SearchTest::Ask(const std::string& query) {
  std::vector<std::string> answers;
  search_.m_db->Guarded([&] {
    for (Row& row : search_.m_db->Select("%s", Raw(query))) {
      std::string& answer = answers.emplace_back();
      for (int i = 0; i < row.Recordset().GetFieldCount(); ++i) {
        COleVariant value = row.Recordset().GetFieldValue(i);
        if (value.vt != VT_NULL) value.ChangeType(VT_BSTR);
        answer += (i ? "|" : "") + (value.vt == VT_NULL ? std::string() : value.strVal.Str());
      }
    }
  });
  return answers;
}

std::string SearchTest::Found(const char* text, int max) {
  PhotoArray photos;
  EXPECT_EQ(search_.SearchFileName(text, photos, max), 1) << text;
  CStringArray names;
  for (const PHOTOINFO& photo : photos) names.Add(photo.GetFileName());
  return Listed(names);
}

PHOTOINFO SearchTest::Photo(const std::string& guid, const std::string& name, DWORD folder,
                            std::uint64_t size, std::int32_t registered) {
  PHOTOINFO photo;
  photo.SetGUID(guid.c_str());
  photo.SetFileName(name.c_str());
  photo.SetFolderID(folder);
  photo.SetFileSize(size);
  photo.SetRegDate(registered);
  return photo;
}

}  // namespace vdstomgr
