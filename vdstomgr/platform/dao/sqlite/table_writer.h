#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/dao/sqlite/statement_cache.h"

namespace vdstomgr::sqlite {

class Connection;

/// Adds, changes and deletes single rows of one table by their row key, through statements that
/// stay prepared as long as the schema stays. A draft's values stand for the output columns of
/// `plan`.
class TableWriter {
 public:
  TableWriter(Connection& connection, std::string table)
      : connection_(connection), table_(std::move(table)) {}

  /// Returns the key of the new row.
  std::int64_t Insert(const std::shared_ptr<const Plan>& plan, const dao::RowDraft& row);
  /// Throws RecordDeleted when there is no row of that key.
  void Update(const std::shared_ptr<const Plan>& plan, const dao::RowDraft& row, std::int64_t key);
  void Delete(std::int64_t key);

 private:
  struct Form {  // a statement for one set of columns
    std::shared_ptr<const Plan> plan;
    std::vector<bool> is_set;
    StatementHandle statement;
  };
  using SqlWriter = std::string (TableWriter::*)(const std::vector<std::string>& columns) const;

  sqlite3_stmt* FormFor(std::vector<Form>& forms, const std::shared_ptr<const Plan>& plan,
                        const dao::RowDraft& row, SqlWriter write_sql);
  std::string InsertSql(const std::vector<std::string>& columns) const;
  std::string UpdateSql(const std::vector<std::string>& columns) const;

  Connection& connection_;
  std::string table_;
  std::vector<Form> inserts_;
  std::vector<Form> updates_;
};

}  // namespace vdstomgr::sqlite
