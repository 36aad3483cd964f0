#pragma once

#include "../catalogue/operation_table.h"
#include "vdstomgr/session/database_session.h"

namespace vdstomgr {

/// The database of a search manager.
class OpenSearch : public CRkSearchDBManager {
 public:
  using CRkSearchDBManager::cToDBString;
  using CRkSearchDBManager::m_db;
};

/// A folder of its own for every test, a new open search database in it under a lock of the host's,
/// texts in UTF-8, and the database errors reported.
class SearchTest : public ::testing::Test {
 protected:
  SearchTest();
  ~SearchTest() override;

  std::string Path(const char* name) const { return (folder_ / name).string(); }
  /// Runs statements on the open database.
  void Run(const std::vector<std::string>& statements);
  /// The answers of a query, row by row, columns joined by '|'; null columns as empty ones.
  std::vector<std::string> Ask(const std::string& query);
  /// The names that a search finds, joined by ','.
  std::string Found(const char* text, int max = 1000);

  static PHOTOINFO Photo(const std::string& guid, const std::string& name, DWORD folder = 0,
                         std::uint64_t size = 0, std::int32_t registered = 0);

  std::filesystem::path folder_;
  std::string file_;
  std::vector<int> reports_;
  CRITICAL_SECTION lock_;
  OpenSearch search_;
};

}  // namespace vdstomgr
