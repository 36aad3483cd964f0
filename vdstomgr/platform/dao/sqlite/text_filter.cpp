#include "vdstomgr/platform/dao/sqlite/text_filter.h"

#include <utility>

namespace vdstomgr::sqlite {
namespace {

using jet::Expr;

// Nothing for what is not made of LIKE tests on `column`; null stands for whichever column the
// first test is on.
struct TestReader {
  const dao::TableSchema& table;
  const dao::ColumnSchema*& column;

  std::optional<TextTest> Read(const Expr& expr) {
    if (const auto* like = std::get_if<jet::LikeTest>(&expr.node)) return Read(*like);
    const auto* logical = std::get_if<jet::Logical>(&expr.node);
    if (!logical) return std::nullopt;
    TextTest test{logical->is_and ? TextTest::Kind::All : TextTest::Kind::Any, 0, {}};
    for (const Expr& operand : logical->operands) {
      std::optional<TextTest> part = Read(operand);
      if (!part) return std::nullopt;
      test.parts.push_back(std::move(*part));
    }
    return test;
  }

  std::optional<TextTest> Read(const jet::LikeTest& like) {
    const auto* text = std::get_if<jet::ColumnRef>(&like.text->node);
    const auto* pattern = std::get_if<jet::LiteralRef>(&like.pattern->node);
    if (like.negated || !text || !pattern || pattern->kind != jet::Literal::Kind::Text) {
      return std::nullopt;
    }
    const dao::ColumnSchema* tested = table.Find(text->name);
    if (!tested || !tested->text_index || (column && column != tested)) return std::nullopt;
    column = tested;
    return TextTest{TextTest::Kind::Like, pattern->index, {}};
  }
};

}  // namespace

std::optional<TextFilter> FindTextFilter(const Expr& where, const dao::TableSchema& table) {
  TextFilter filter;
  filter.test.kind = TextTest::Kind::All;
  const auto add = [&](const Expr& condition) {
    const dao::ColumnSchema* column = filter.column;
    if (auto test = TestReader{table, column}.Read(condition)) {
      filter.column = column;
      filter.test.parts.push_back(std::move(*test));
    } else {
      filter.others.push_back(&condition);
    }
  };
  const auto* logical = std::get_if<jet::Logical>(&where.node);
  if (logical && logical->is_and) {
    for (const Expr& operand : logical->operands) add(operand);
  } else {
    add(where);
  }
  return filter.column ? std::optional(std::move(filter)) : std::nullopt;
}

}  // namespace vdstomgr::sqlite
