#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "vdstomgr/platform/dao/jet/literal.h"
#include "vdstomgr/platform/dao/schema.h"

/// The syntax tree of a statement. A tree belongs to a shape: literals stand in it by their place
/// in the shape's list, so one tree serves all statements of the shape. (Only the sizes of a
/// CREATE TABLE are values; such a tree serves the one statement it was parsed from.)
///
/// Long chains ("a OR b OR c ...") are one node with many operands, so the depth of a tree is
/// bounded by the depth to which the parser lets parentheses nest.
namespace vdstomgr::jet {

struct Expr;
struct Select;
using ExprPtr = std::unique_ptr<Expr>;
using SelectPtr = std::unique_ptr<Select>;

struct LiteralRef {
  int index = 0;  ///< place in the shape's list, from 0
  Literal::Kind kind = Literal::Kind::Text;
};

enum class Constant { Null, True, False };

struct ColumnRef {
  std::string table;  ///< table or alias; empty when the column stands alone
  std::string name;
};

enum class Arithmetic { Power, Multiply, Divide, IntegerDivide, Modulo, Add, Subtract, Concat };

/// Operators of one precedence level, applied from left to right.
struct Calculation {
  struct Step {
    Arithmetic op;
    ExprPtr operand;
  };
  ExprPtr first;
  std::vector<Step> rest;
};

struct Negation {
  ExprPtr operand;
};

enum class Relation { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };

struct Comparison {
  Relation relation;
  ExprPtr left, right;
};

/// AND or OR over two or more operands.
struct Logical {
  bool is_and = true;
  std::vector<Expr> operands;
};

struct Not {
  ExprPtr operand;
};

struct LikeTest {
  bool negated = false;
  ExprPtr text, pattern;
};

struct Between {
  bool negated = false;
  ExprPtr value, low, high;
};

struct IsNull {
  bool negated = false;
  ExprPtr value;
};

struct InList {
  bool negated = false;
  ExprPtr value;
  std::vector<Expr> items;
};

struct InSelect {
  bool negated = false;
  ExprPtr value;
  SelectPtr select;
};

struct Exists {
  SelectPtr select;
};

/// A sub-query that stands for one value.
struct ScalarSelect {
  SelectPtr select;
};

struct Aggregate {
  enum class Function { Count, Max, Min, Sum, Avg };
  Function function = Function::Count;
  ExprPtr argument;  ///< null: COUNT(*)
};

struct Expr {
  std::variant<LiteralRef, Constant, ColumnRef, Calculation, Negation, Comparison, Logical, Not,
               LikeTest, Between, IsNull, InList, InSelect, Exists, ScalarSelect, Aggregate>
      node;
};

struct SelectItem {
  bool all = false;  ///< "*", or "t.*" when `all_of` is set
  std::string all_of;
  Expr value;         ///< when not `all`
  std::string alias;  ///< empty when none was given
};

struct From;

/// A table, a derived table or a join in parentheses: exactly one of the first three is set.
struct Source {
  std::string table;
  SelectPtr select;
  std::unique_ptr<From> group;
  std::string alias;
};

enum class Join { Comma, Inner, Left, Right };

struct JoinedSource {
  Join join = Join::Comma;  ///< to all sources before it; of no meaning in the first
  Source source;
  ExprPtr on;  ///< null for a comma
};

struct From {
  std::vector<JoinedSource> sources;
};

struct SortKey {
  Expr value;
  bool descending = false;
};

struct Select {
  struct UnionArm;

  bool distinct = false;
  std::optional<LiteralRef> top;  ///< an integer, never negative
  std::vector<SelectItem> items;
  From from;  ///< may be empty: SELECT 1
  ExprPtr where;
  std::vector<Expr> group_by;
  ExprPtr having;
  std::vector<UnionArm> unions;   ///< further queries whose rows are added to this one's
  std::vector<SortKey> order_by;  ///< of the whole union
};

struct Select::UnionArm {
  bool keep_duplicates = false;
  Select select;
};

struct Insert {
  std::string table;
  std::vector<std::string> columns;  ///< empty: all, in the table's order
  std::vector<Expr> values;
  SelectPtr select;  ///< instead of values
};

struct Assignment {
  std::string column;
  Expr value;
};

struct Update {
  std::string table;
  std::string alias;
  std::vector<Assignment> assignments;
  ExprPtr where;
};

struct Delete {
  std::string target;  ///< the "t" of "DELETE t.*"; empty when not given
  From from;
  ExprPtr where;
};

struct ColumnDefinition {
  dao::ColumnSchema schema;
  bool fixed_width = false;  ///< CHAR(n), not VARCHAR(n)
};

struct CreateTable {
  std::string table;
  std::vector<ColumnDefinition> columns;
  std::vector<std::string> primary_key;
  std::vector<std::vector<std::string>> unique_keys;
};

struct CreateIndex {
  struct Column {
    std::string name;
    bool descending = false;
  };
  bool unique = false;
  std::string name;  ///< unique within its table only
  std::string table;
  std::vector<Column> columns;
};

struct DropTable {
  std::string table;
};

struct DropIndex {
  std::string name;
  std::string table;
};

using Statement =
    std::variant<Select, Insert, Update, Delete, CreateTable, CreateIndex, DropTable, DropIndex>;

}  // namespace vdstomgr::jet
