#include <fstream>

#include "catalogue_test.h"

namespace vdstomgr {
namespace {

class StatementsTest : public CatalogueTest {
 protected:
  void SetUp() override {
    SetTextCodePage(TextCodePage::utf8);
    database_.Open(file_.c_str());
  }

  /// 0, or the number of the failure.
  int Run(const std::string& statement) try {
    if (!statement.starts_with("SELECT")) {
      database_.ExecuteOrThrow(statement.c_str());
      return 0;
    }
    CRkDaoRecordset rows(&database_);
    for (rows.Open(dbOpenDynaset, statement.c_str()); !rows.IsEOF();) rows.MoveNext();
    return 0;
  } catch (const CDaoException& error) {
    return error.Code();
  }

  CRkDaoDatabase database_;
};

TEST_F(StatementsTest, EveryStatementIsAnsweredAsTheTableSays) {
  std::ifstream table(VDSTO_TESTS_FOLDER "/catalogue/statements.sql");
  int statements = 0;
  for (std::string line; std::getline(table, line);) {
    const std::size_t blank = line.find(' ');
    if (line.empty() || line.starts_with("--")) continue;
    const std::string statement = line.substr(blank + 1);
    EXPECT_EQ(Run(statement), std::stoi(line.substr(0, blank))) << statement;
    ++statements;
  }
  EXPECT_GT(statements, 250);
}

}  // namespace
}  // namespace vdstomgr
