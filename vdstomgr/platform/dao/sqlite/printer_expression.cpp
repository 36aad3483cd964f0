#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/sqlite/sql_printer.h"
#include "vdstomgr/platform/dao/sqlite/sql_text.h"
#include "vdstomgr/platform/text/ascii.h"
#include "vdstomgr/platform/text/case_folding.h"

namespace vdstomgr::sqlite {
namespace {

using jet::Arithmetic;
using jet::Expr;

// How tightly the engine's operators bind.
constexpr int kOr = 1;
constexpr int kAnd = 2;
constexpr int kNot = 3;
constexpr int kPredicate = 4;
constexpr int kSum = 5;
constexpr int kProduct = 6;
constexpr int kConcat = 7;
constexpr int kNegation = 8;
constexpr int kAtom = 9;

// The engine's tree of a chain longer than this is balanced: its depth is limited.
constexpr size_t kLongestFlatChain = 16;

struct OperatorText {
  std::string_view text;  // or the name of the function that stands for the operator
  int level;              // kAtom: a function
};

OperatorText TextOf(Arithmetic op) {
  switch (op) {
    case Arithmetic::Add:
      return {" + ", kSum};
    case Arithmetic::Subtract:
      return {" - ", kSum};
    case Arithmetic::Multiply:
      return {" * ", kProduct};
    case Arithmetic::Concat:
      return {" || ", kConcat};
    case Arithmetic::Divide:
      return {"jet_div", kAtom};
    case Arithmetic::IntegerDivide:
      return {"jet_intdiv", kAtom};
    case Arithmetic::Modulo:
      return {"jet_mod", kAtom};
    case Arithmetic::Power:
      return {"jet_pow", kAtom};
  }
  return {};
}

std::string_view TextOf(jet::Relation relation) {
  constexpr std::array<std::string_view, 6> kTexts = {" = ", " <> ", " < ", " <= ", " > ", " >= "};
  return kTexts[static_cast<size_t>(relation)];
}

struct LevelOfNode {
  int operator()(const jet::Logical& logical) const { return logical.is_and ? kAnd : kOr; }
  int operator()(const jet::Not&) const { return kNot; }
  int operator()(const jet::Comparison&) const { return kPredicate; }
  int operator()(const jet::LikeTest&) const { return kPredicate; }
  int operator()(const jet::Between&) const { return kPredicate; }
  int operator()(const jet::IsNull&) const { return kPredicate; }
  int operator()(const jet::InList&) const { return kPredicate; }
  int operator()(const jet::InSelect&) const { return kPredicate; }
  int operator()(const jet::Negation&) const { return kNegation; }
  int operator()(const jet::Calculation& calculation) const {
    return TextOf(calculation.rest.back().op).level;
  }
  template <class Node>
  int operator()(const Node&) const {
    return kAtom;
  }
};

bool IsColumn(const Expr& expr) {
  return std::holds_alternative<jet::ColumnRef>(expr.node);
}

bool IsTextLiteral(const Expr& expr) {
  const auto* literal = std::get_if<jet::LiteralRef>(&expr.node);
  return literal && literal->kind == jet::Literal::Kind::Text;
}

// Can the expression yield text to which the engine knows no order?
bool IsUnorderedText(const Expr& expr) {
  using Function = jet::Aggregate::Function;
  if (const auto* calculation = std::get_if<jet::Calculation>(&expr.node)) {
    return calculation->rest.back().op == Arithmetic::Concat;
  }
  if (const auto* aggregate = std::get_if<jet::Aggregate>(&expr.node)) {
    return aggregate->function == Function::Max || aggregate->function == Function::Min;
  }
  return std::holds_alternative<jet::ScalarSelect>(expr.node);
}

std::string WithTextOrder(std::string sql) {
  return sql + " COLLATE " + kTextOrderName;
}

std::string PrintReal(double value) {
  std::array<char, 40> buffer;
  const auto end =
      std::to_chars(buffer.begin(), buffer.end(), value, std::chars_format::scientific);
  return std::string(buffer.begin(), end.ptr);
}

std::string_view NotIf(bool negated) {
  return negated ? " NOT" : "";
}

}  // namespace

std::string SqlPrinter::Print(const Expr& expr) const {
  return std::visit([this](const auto& node) { return Node(node); }, expr.node);
}

std::string SqlPrinter::Bare(const Expr& expr) const {
  const auto* literal = std::get_if<jet::LiteralRef>(&expr.node);
  return literal ? LiteralValue(*literal) : Print(expr);
}

std::string SqlPrinter::Ordered(const Expr& expr) const {
  return IsUnorderedText(expr) ? WithTextOrder(Operand(expr, kConcat - 1)) : Print(expr);
}

std::string SqlPrinter::Operand(const Expr& expr, int level) const {
  const bool binds_tighter = std::visit(LevelOfNode(), expr.node) > level;
  return binds_tighter ? Print(expr) : "(" + Print(expr) + ")";
}

// A column on either side lends its order, and an index of it can be used only when nobody else
// names one.
std::string SqlPrinter::Compared(const Expr& left, std::span<const Expr* const> others) const {
  const bool has_order = std::any_of(others.begin(), others.end(), [](const Expr* other) {
    return IsColumn(*other) || IsTextLiteral(*other);
  });
  if (has_order || !IsUnorderedText(left)) return Operand(left, kPredicate);
  return WithTextOrder(Operand(left, kNegation));
}

std::string SqlPrinter::BareList(std::span<const Expr> items) const {
  return Join(items, ", ", [this](const Expr& item) { return Bare(item); });
}

std::string SqlPrinter::LiteralValue(const jet::LiteralRef& ref) const {
  if (options_.inline_literals.empty()) return "?" + std::to_string(ref.index + 1);
  assert(static_cast<size_t>(ref.index) < options_.inline_literals.size());
  const jet::Literal& literal = options_.inline_literals[static_cast<size_t>(ref.index)];
  switch (literal.kind) {
    case jet::Literal::Kind::Text:
      return QuoteText(literal.text);
    case jet::Literal::Kind::Integer:
      return std::to_string(literal.integer);
    case jet::Literal::Kind::Real:
      return PrintReal(literal.real);
  }
  return {};
}

std::string SqlPrinter::Node(const jet::LiteralRef& literal) const {
  const std::string value = LiteralValue(literal);
  return literal.kind == jet::Literal::Kind::Text ? WithTextOrder(value) : value;
}

std::string SqlPrinter::Node(const jet::Constant& constant) const {
  switch (constant) {
    case jet::Constant::Null:
      return "NULL";
    case jet::Constant::True:
      return "-1";
    case jet::Constant::False:
      return "0";
  }
  return {};
}

std::string SqlPrinter::Node(const jet::ColumnRef& column) const {
  if (IsRowidName(column.name)) dao::Throw(dao::Error::TooFewParameters, "1");
  const bool qualified = !column.table.empty();
  const std::string full_name = qualified ? column.table + "." + column.name : column.name;
  const auto& unknown = options_.unknown_columns;
  const bool is_unknown = std::any_of(unknown.begin(), unknown.end(),
                                      [&](const auto& name) { return SameName(name, full_name); });
  if (is_unknown) return "NULL";
  return qualified ? QuoteName(column.table) + "." + QuoteName(column.name)
                   : QuoteName(column.name);
}

std::string SqlPrinter::Node(const jet::Calculation& calculation) const {
  assert(!calculation.rest.empty());
  const bool infix_first = TextOf(calculation.rest.front().op).level != kAtom;
  std::string sql = infix_first
                        ? Operand(*calculation.first, TextOf(calculation.rest.front().op).level - 1)
                        : Print(*calculation.first);
  for (const auto& [op, operand] : calculation.rest) {
    const auto [text, level] = TextOf(op);
    if (level == kAtom) {
      sql = std::string(text) + "(" + sql + ", " + Print(*operand) + ")";
    } else {
      sql += std::string(text) + Operand(*operand, level);
    }
  }
  return sql;
}

// The blank keeps the sign of a negative number from making a comment.
std::string SqlPrinter::Node(const jet::Negation& negation) const {
  return "- " + Operand(*negation.operand, kNegation);
}

std::string SqlPrinter::Node(const jet::Comparison& comparison) const {
  const Expr* const right = comparison.right.get();
  return Compared(*comparison.left, {&right, 1}) + std::string(TextOf(comparison.relation)) +
         Operand(*right, kPredicate);
}

std::string SqlPrinter::Node(const jet::Logical& logical) const {
  return Chain(logical.operands, logical.is_and);
}

std::string SqlPrinter::Chain(std::span<const Expr> operands, bool is_and) const {
  const std::string_view keyword = is_and ? " AND " : " OR ";
  if (operands.size() <= kLongestFlatChain) {
    return Join(operands, keyword,
                [&](const Expr& operand) { return Operand(operand, is_and ? kAnd : kOr); });
  }
  const size_t half = operands.size() / 2;
  return "(" + Chain(operands.first(half), is_and) + ")" + std::string(keyword) + "(" +
         Chain(operands.subspan(half), is_and) + ")";
}

std::string SqlPrinter::Node(const jet::Not& negation) const {
  return "NOT " + Operand(*negation.operand, kNot);
}

std::string SqlPrinter::Node(const jet::LikeTest& like) const {
  const auto side = [this](const Expr& expr) {
    return IsTextLiteral(expr) ? Bare(expr) : Operand(expr, kPredicate);
  };
  return side(*like.text) + std::string(NotIf(like.negated)) + " LIKE " + side(*like.pattern);
}

std::string SqlPrinter::Node(const jet::Between& between) const {
  const std::array<const Expr*, 2> bounds = {between.low.get(), between.high.get()};
  return Compared(*between.value, bounds) + std::string(NotIf(between.negated)) + " BETWEEN " +
         Operand(*between.low, kPredicate) + " AND " + Operand(*between.high, kPredicate);
}

std::string SqlPrinter::Node(const jet::IsNull& is_null) const {
  return Operand(*is_null.value, kPredicate) + " IS" + std::string(NotIf(is_null.negated)) +
         " NULL";
}

std::string SqlPrinter::Node(const jet::InList& in) const {
  return Compared(*in.value, {}) + std::string(NotIf(in.negated)) + " IN (" + BareList(in.items) +
         ")";
}

std::string SqlPrinter::Node(const jet::InSelect& in) const {
  RequireOneColumn(*in.select);
  return Compared(*in.value, {}) + std::string(NotIf(in.negated)) + " IN (" +
         Query(*in.select, {.keep_order = false}) + ")";
}

std::string SqlPrinter::Node(const jet::Exists& exists) const {
  return "EXISTS (" + Query(*exists.select, {.keep_order = false}) + ")";
}

// The engine would silently take the first of several rows.
std::string SqlPrinter::Node(const jet::ScalarSelect& scalar) const {
  const jet::Select& select = *scalar.select;
  RequireOneColumn(select);
  const bool one_row = select.group_by.empty() && select.unions.empty() &&
                       std::holds_alternative<jet::Aggregate>(select.items.front().value.node);
  if (one_row) return "(" + Query(select, {.keep_order = false}) + ")";
  return "(SELECT jet_single(\"c1\") FROM (" +
         Query(select, {.keep_order = false, .numbered = true}) + "))";
}

std::string SqlPrinter::Node(const jet::Aggregate& aggregate) const {
  constexpr std::array<std::string_view, 5> kNames = {"COUNT", "MAX", "MIN", "SUM", "AVG"};
  return std::string(kNames[static_cast<size_t>(aggregate.function)]) + "(" +
         (aggregate.argument ? Ordered(*aggregate.argument) : "*") + ")";
}

}  // namespace vdstomgr::sqlite
