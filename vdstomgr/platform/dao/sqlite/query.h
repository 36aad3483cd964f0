#pragma once

#include <memory>
#include <vector>

#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/dao/sqlite/statement_cache.h"
#include "vdstomgr/platform/dao/sqlite/text_search.h"

namespace vdstomgr::sqlite {

class Connection;

/// A dynaset over a live statement: rows are stepped as they are asked for. Before anything is
/// written the rest of the walk is noted (by row key where the rows are a table's own, by value
/// otherwise) and the statement is let go, since stepping it on would show written rows again.
class Query final : public dao::Query {
 public:
  /// `search` is what the statement's text tests are asked of; null when it has none.
  Query(Connection& connection, std::unique_ptr<Statement> statement,
        std::unique_ptr<TextSearch> search);
  ~Query() override;

  const dao::ColumnTable& Columns() const override { return plan_->columns; }
  bool AtEnd() override;
  void MoveNext() override;
  void Restart() override;
  void Window(int first, int count) override;
  dao::Field Get(int column) override;
  bool IsUpdatable() const override { return HasRowKeys(); }
  void Insert(const dao::RowDraft& row) override;
  void Update(const dao::RowDraft& row) override;
  void Delete() override;

  /// Makes the walk independent of the live statement.
  void NoteRemainingRows();
  /// The connection is going away: everything but destruction throws ObjectClosed from now on.
  void Abandon();

 private:
  enum class State { Before, Live, Noted, End };

  struct NotedRow {
    std::int64_t key = 0;
    std::vector<dao::Value> values;  // the primary key, or all columns when rows have no key
    bool deleted = false;
  };

  bool HasRowKeys() const { return !plan_->row_sql.empty(); }
  Connection& Db() const;
  void Step();
  int NextRow();
  bool GoOnWith(std::unique_ptr<Statement> next);
  void LetGo();
  void End();
  NotedRow NoteCurrentRow() const;
  NotedRow& CurrentRow();
  std::int64_t CurrentKey();
  void FetchCurrentRow();
  bool IsStillTheSameRow(const NotedRow& row) const;

  Connection* connection_;
  std::shared_ptr<const Plan> plan_;
  std::unique_ptr<TextSearch> search_;
  std::unique_ptr<Statement> statement_;
  std::unique_ptr<Statement> walk_;     // the first of a search, when others have taken its place
  std::vector<std::int64_t> shown_;     // keys of the rows that a search's walks have shown
  std::unique_ptr<Statement> fetched_;  // shows the current noted row
  std::vector<NotedRow> noted_;
  size_t position_ = 0;
  State state_ = State::Before;
};

}  // namespace vdstomgr::sqlite
