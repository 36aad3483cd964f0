#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vdstomgr/platform/dao/column_table.h"
#include "vdstomgr/platform/dao/sqlite/printer.h"

struct sqlite3_stmt;

namespace vdstomgr::sqlite {

/// What stays the same for all statements of one shape.
struct Plan {
  StatementKind kind = StatementKind::Select;
  dao::ColumnTable columns;    ///< the output, the hidden row key not counted
  std::string editable_table;  ///< the table whose rows the query shows unchanged, or empty
  std::string row_sql;         ///< reads the same columns of one row by its key; empty: cannot be
  std::optional<TextQuery> text_query;
  std::vector<int> key_columns;  ///< where the output shows that table's primary key
};

struct StatementDeleter {
  void operator()(sqlite3_stmt* statement) const;
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, StatementDeleter>;

class StatementCache;

/// A prepared statement in use. Going out of scope it is reset and handed back to the cache it came
/// from, or finalised when the cache has no place for it any more.
class Statement {
 public:
  Statement(std::shared_ptr<const Plan> plan, StatementHandle handle)
      : plan_(std::move(plan)), handle_(std::move(handle)) {}
  Statement(Statement&&) noexcept = default;
  Statement& operator=(Statement&&) = delete;
  ~Statement();

  sqlite3_stmt* Handle() const { return handle_.get(); }
  const std::shared_ptr<const Plan>& SharedPlan() const { return plan_; }
  const Plan& GetPlan() const { return *plan_; }

 private:
  friend class StatementCache;

  std::shared_ptr<const Plan> plan_;
  StatementHandle handle_;
  std::weak_ptr<std::vector<StatementHandle>> home_;
};

/// Prepared statements by shape. A shape keeps its plan and any number of idle statements (a query
/// that is open while the same shape is run again needs a second one). Bounded: the shapes that
/// were not used for longest go first.
class StatementCache {
 public:
  /// An idle statement of that shape, or nothing.
  std::unique_ptr<Statement> Take(std::string_view key);
  /// The plan of that shape, or null.
  std::shared_ptr<const Plan> FindPlan(std::string_view key) const;
  /// Lets the statement return to the shape of that key when it is done.
  void Adopt(std::string_view key, Statement& statement);
  /// Forgets every shape, as after a change of the schema.
  void Clear() { shapes_.clear(); }

 private:
  struct Hash {
    using is_transparent = void;
    size_t operator()(std::string_view key) const { return std::hash<std::string_view>()(key); }
  };
  struct Shape {
    std::shared_ptr<const Plan> plan;
    std::shared_ptr<std::vector<StatementHandle>> idle;
    std::uint64_t last_use = 0;
  };

  void EvictOldest();

  std::unordered_map<std::string, Shape, Hash, std::equal_to<>> shapes_;
  std::uint64_t use_count_ = 0;
};

}  // namespace vdstomgr::sqlite
