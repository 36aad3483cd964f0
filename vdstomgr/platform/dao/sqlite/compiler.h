#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/dao/jet/literal.h"
#include "vdstomgr/platform/dao/sqlite/statement_cache.h"

struct sqlite3;

namespace vdstomgr::sqlite {

class SchemaCache;

/// Makes prepared statements of texts. Runs none of them.
class Compiler {
 public:
  /// The arguments stay the caller's.
  Compiler(sqlite3* db, const SchemaCache& schema) : db_(db), schema_(schema) {}

  struct Compiled {
    std::unique_ptr<Statement> statement;  ///< its literals are not bound yet
    bool serves_others;                    ///< it is the same for every statement of its shape
  };

  /// Compiles the shape of a statement in the dialect. `known_plan` is the shape's plan when
  /// another statement of it was compiled before, or null.
  Compiled Compile(std::string_view shape, std::span<const jet::Literal> literals,
                   dao::RunMode mode, std::shared_ptr<const Plan> known_plan) const;

  /// Compiles SQL in the engine's own dialect.
  StatementHandle Prepare(const std::string& sql) const;

 private:
  StatementHandle PrepareTree(const jet::Statement& tree, PrintOptions options,
                              Printed& printed) const;
  /// Does the engine put rows in order before it shows them?
  bool SortsRows(const std::string& sql) const;
  std::shared_ptr<const Plan> MakePlan(sqlite3_stmt* statement, const Printed& printed) const;
  void DescribeRows(Plan& plan) const;

  sqlite3* db_;
  const SchemaCache& schema_;
};

}  // namespace vdstomgr::sqlite
