#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/dao/jet/shape.h"
#include "vdstomgr/platform/dao/sqlite/compiler.h"
#include "vdstomgr/platform/dao/sqlite/schema_cache.h"
#include "vdstomgr/platform/dao/sqlite/statement_cache.h"

struct sqlite3;

namespace vdstomgr::sqlite {

class Query;
class TableWriter;

struct DatabaseCloser {
  void operator()(sqlite3* db) const;
};
using DatabaseHandle = std::unique_ptr<sqlite3, DatabaseCloser>;

/// One open SQLite file: statements by shape, the commit group, the queries that are being walked.
class Connection final : public dao::Connection {
 public:
  /// Takes over an engine handle that is open, keyed and proved readable.
  Connection(DatabaseHandle db, std::string path);
  ~Connection() override;

  int Execute(std::string_view sql, dao::RunMode mode) override;
  std::unique_ptr<dao::Query> Open(std::string_view sql) override;
  void BeginGroup() override { ++group_depth_; }
  void EndGroup() override;
  void SetPassword(std::string_view password) override;
  void IndexTexts(std::string_view table, std::string_view column) override;
  void HoldState() override;
  bool CopyTo(const std::string& path, std::string_view password,
              const dao::CopyProgress& progress) override;

  sqlite3* Handle() const { return db_.get(); }

  /// A statement of the given text in the dialect, its literals bound.
  std::unique_ptr<Statement> Prepare(std::string_view sql, dao::RunMode mode);

  /// A statement of SQL in the engine's own dialect that this library composed, cached by its text.
  std::unique_ptr<Statement> PrepareOwn(const std::string& sql);

  /// The same, for the caller to keep.
  StatementHandle PrepareToKeep(const std::string& sql) { return compiler_.Prepare(sql); }

  /// Binds the literals of a statement's shape.
  void Bind(sqlite3_stmt* statement, std::span<const jet::Literal> literals);

  /// Something is wrong with an index of texts: they are looked through, and made anew where
  /// needed, before the next statement that is not in the middle of something.
  void DoubtTextIndexes() { doubts_text_indexes_ = true; }

  /// The writer of a table's rows.
  TableWriter& Writer(const std::string& table);

  /// Runs one writing step between what a write needs before it (open queries note their remaining
  /// rows, the group's transaction is begun) and after it (a very long group is committed).
  /// Returns the number of rows changed.
  int Write(sqlite3_stmt* statement);

  /// Open queries; they are told before anything is written and when the connection closes.
  void Enlist(Query* query) { queries_.push_back(query); }
  void Delist(Query* query) { std::erase(queries_, query); }

 private:
  void Run(const char* sql);
  void Begin();
  void Commit();
  void SchemaChanged();
  void MakeTextIndex(std::string_view table, std::string_view column);
  void MendTextIndexes();
  void TakeTextChanges();

  std::string path_;
  DatabaseHandle db_;
  SchemaCache schema_;
  Compiler compiler_;
  StatementCache whole_;  // by run mode
  StatementCache skipping_;
  StatementCache own_;  // SQL in the engine's own dialect
  jet::Shape shape_;    // kept for its memory
  std::unordered_map<std::string, std::unique_ptr<TableWriter>> writers_;
  std::vector<Query*> queries_;
  StatementHandle begin_;
  StatementHandle commit_;
  std::vector<std::pair<std::string, std::string>> text_indexes_;  // table and column
  bool doubts_text_indexes_ = false;
  int group_depth_ = 0;
  int writes_in_transaction_ = 0;
};

}  // namespace vdstomgr::sqlite
