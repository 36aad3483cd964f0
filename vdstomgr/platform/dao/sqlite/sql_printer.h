#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vdstomgr/platform/dao/sqlite/output_columns.h"
#include "vdstomgr/platform/dao/sqlite/printer.h"
#include "vdstomgr/platform/dao/sqlite/text_filter.h"

namespace vdstomgr::sqlite {

/// How a query is printed in its place.
struct QueryForm {
  bool keep_order = true;  ///< false where nobody can see the order
  bool numbered = false;   ///< output columns are named "c1", "c2" ... instead of their names
  std::string_view rowid_of = {};     ///< not empty: that source's rowid as one more column
  const TextFilter* texts = nullptr;  ///< conditions to be printed as a search of texts
  bool lists_keys = false;            ///< only the rows whose keys are in a list
  bool begins_at_text = false;        ///< only the rows from a text of `texts` on
};

/// The parts of Print. Every function returns the SQL of one piece of the tree.
class SqlPrinter {
 public:
  SqlPrinter(const dao::SchemaView& schema, const PrintOptions& options)
      : schema_(schema), options_(options) {}

  std::string Query(const jet::Select& select, const QueryForm& form) const;

  std::string Action(const jet::Insert& insert) const;
  std::string Action(const jet::Update& update) const;
  std::string Action(const jet::Delete& statement) const;

  std::string Schema(const jet::CreateTable& create) const;
  std::string Schema(const jet::CreateIndex& create) const;
  std::string Schema(const jet::DropTable& drop) const;
  std::string Schema(const jet::DropIndex& drop) const;

 private:
  /// An expression; the text order is attached to text that a column does not lend it.
  std::string Print(const jet::Expr& expr) const;
  /// The same where no comparison looks at it: a text literal stands alone.
  std::string Bare(const jet::Expr& expr) const;
  /// An expression whose own order counts: in ORDER BY, GROUP BY, a list of output columns.
  std::string Ordered(const jet::Expr& expr) const;
  /// An operand of an operator of that level: in parentheses unless it binds tighter.
  std::string Operand(const jet::Expr& expr, int level) const;
  /// The left side of a comparison with `others`, none of which may know the text order.
  std::string Compared(const jet::Expr& left, std::span<const jet::Expr* const> others) const;
  /// A list of expressions, separated by commas.
  std::string BareList(std::span<const jet::Expr> items) const;

  std::string Node(const jet::LiteralRef& literal) const;
  std::string Node(const jet::Constant& constant) const;
  std::string Node(const jet::ColumnRef& column) const;
  std::string Node(const jet::Calculation& calculation) const;
  std::string Node(const jet::Negation& negation) const;
  std::string Node(const jet::Comparison& comparison) const;
  std::string Node(const jet::Logical& logical) const;
  std::string Node(const jet::Not& negation) const;
  std::string Node(const jet::LikeTest& like) const;
  std::string Node(const jet::Between& between) const;
  std::string Node(const jet::IsNull& is_null) const;
  std::string Node(const jet::InList& in) const;
  std::string Node(const jet::InSelect& in) const;
  std::string Node(const jet::Exists& exists) const;
  std::string Node(const jet::ScalarSelect& scalar) const;
  std::string Node(const jet::Aggregate& aggregate) const;
  std::string LiteralValue(const jet::LiteralRef& literal) const;
  std::string Chain(std::span<const jet::Expr> operands, bool is_and) const;

  std::string TopWithTies(const jet::Select& select, const QueryForm& form) const;
  std::string Core(const jet::Select& select, const QueryForm& form) const;
  std::string Items(const jet::Select& select, const QueryForm& form) const;
  std::string Output(const OutputColumn& output, std::string_view name) const;
  std::string NumberedItems(std::span<const OutputColumn> outputs) const;
  void RequireOneColumn(const jet::Select& select) const;
  /// FROM to HAVING
  std::string Body(const jet::Select& select, const QueryForm& form = {}) const;
  bool PicksByList(const jet::Select& select) const;
  /// `last_hint` goes behind the last source's name.
  std::string Sources(const jet::From& from, std::string_view last_hint = {}) const;
  std::string Source(const jet::Source& source) const;
  std::string SortKey(const jet::SortKey& key, std::span<const OutputColumn> numbered) const;
  std::string Where(const jet::ExprPtr& condition) const;
  std::string SearchingWhere(const QueryForm& form) const;

  std::string Stored(const jet::Expr& value, dao::ColumnType type,
                     const std::vector<VisibleSource>& sources) const;
  std::string InsertedRows(const jet::Select& select,
                           const std::vector<const dao::ColumnSchema*>& columns) const;
  const VisibleSource& DeleteTarget(const jet::Delete& statement,
                                    const std::vector<VisibleSource>& sources) const;

  const dao::SchemaView& schema_;
  const PrintOptions& options_;
};

}  // namespace vdstomgr::sqlite
