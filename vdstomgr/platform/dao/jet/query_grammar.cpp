#include <utility>

#include "vdstomgr/platform/dao/jet/grammar.h"

namespace vdstomgr::jet {
namespace {

using dao::Error;

std::optional<LiteralRef> ParseTop(TokenReader& reader) {
  if (!reader.Accept("TOP")) return std::nullopt;
  const Token& count = reader.Current();
  const bool is_count =
      count.kind == Token::Kind::Literal && count.literal.kind == Literal::Kind::Integer;
  if (!is_count) reader.Fail();
  return reader.Take().literal;
}

// "*" or "t.*"
std::optional<SelectItem> ParseAllColumns(TokenReader& reader) {
  SelectItem item;
  item.all = true;
  if (reader.Accept("*")) return item;
  if (!reader.IsName()) return std::nullopt;
  TokenReader ahead = reader;
  item.all_of = ahead.TakeName();
  if (!ahead.Accept(".") || !ahead.Accept("*")) return std::nullopt;
  reader = ahead;
  return item;
}

SelectItem ParseItem(TokenReader& reader) {
  if (auto all = ParseAllColumns(reader)) return std::move(*all);
  SelectItem item;
  item.value = ParseExpression(reader);
  if (reader.Accept("AS")) item.alias = reader.TakeName();
  return item;
}

Source ParseSource(TokenReader& reader) {
  Source source;
  if (!reader.Accept("(")) {
    source.table = reader.TakeName();
    source.alias = ParseAlias(reader);
    return source;
  }
  if (reader.Is("SELECT")) {
    source.select = std::make_unique<Select>(ParseSelect(reader));
    reader.Expect(")");
    source.alias = ParseAlias(reader);
    return source;
  }
  source.group = std::make_unique<From>(ParseSources(reader));
  reader.Expect(")");
  return source;
}

std::optional<Join> ParseJoinKind(TokenReader& reader) {
  if (reader.Accept(",")) return Join::Comma;
  std::optional<Join> join;
  if (reader.Accept("INNER")) {
    join = Join::Inner;
  } else if (reader.Is("LEFT") || reader.Is("RIGHT")) {
    join = reader.Is("LEFT") ? Join::Left : Join::Right;
    reader.Take();
    reader.Accept("OUTER");
  }
  if (join) reader.Expect("JOIN");
  return join;
}

// A literal here would be a column's position. It is part of what the statement means, but not of
// its shape; name the column instead.
Expr ParseKey(TokenReader& reader) {
  const TokenReader before = reader;
  Expr key = ParseExpression(reader);
  if (std::holds_alternative<LiteralRef>(key.node)) {
    const TokenReader::Clause clause(reader, Error::SyntaxInExpression);
    before.Fail();
  }
  return key;
}

std::vector<SortKey> ParseOrderBy(TokenReader& reader) {
  std::vector<SortKey> keys;
  if (!reader.Accept("ORDER")) return keys;
  reader.Expect("BY");
  do {
    SortKey key{ParseKey(reader)};
    key.descending = reader.Accept("DESC");
    if (!key.descending) reader.Accept("ASC");
    keys.push_back(std::move(key));
  } while (reader.Accept(","));
  return keys;
}

std::vector<Expr> ParseGroupBy(TokenReader& reader) {
  std::vector<Expr> keys;
  if (!reader.Accept("GROUP")) return keys;
  reader.Expect("BY");
  do {
    keys.push_back(ParseKey(reader));
  } while (reader.Accept(","));
  return keys;
}

Select ParseSelectCore(TokenReader& reader) {
  reader.Expect("SELECT");
  Select select;
  select.distinct = reader.Accept("DISTINCT");
  if (!select.distinct) reader.Accept("ALL");
  select.top = ParseTop(reader);
  do {
    select.items.push_back(ParseItem(reader));
  } while (reader.Accept(","));
  if (reader.Accept("FROM")) select.from = ParseSources(reader);
  select.where = ParseOptionalCondition(reader, "WHERE");
  select.group_by = ParseGroupBy(reader);
  select.having = ParseOptionalCondition(reader, "HAVING");
  return select;
}

void ParseUnions(TokenReader& reader, Select& select) {
  while (reader.Is("UNION")) {
    if (select.top) reader.Fail();
    reader.Take();
    Select::UnionArm arm;
    arm.keep_duplicates = reader.Accept("ALL");
    arm.select = ParseSelectCore(reader);
    if (arm.select.top) reader.Fail();
    select.unions.push_back(std::move(arm));
  }
}

}  // namespace

std::string ParseAlias(TokenReader& reader) {
  if (reader.Accept("AS")) return reader.TakeName();
  return reader.IsName() ? reader.TakeName() : std::string();
}

From ParseSources(TokenReader& reader) {
  const TokenReader::Clause clause(reader, Error::SyntaxInFrom);
  const TokenReader::Nesting nesting(reader);
  From from;
  from.sources.push_back({Join::Comma, ParseSource(reader), nullptr});
  while (const auto join = ParseJoinKind(reader)) {
    JoinedSource joined{*join, ParseSource(reader), nullptr};
    if (*join != Join::Comma) {
      reader.Expect("ON");
      joined.on = ParseExpressionPtr(reader);
    }
    from.sources.push_back(std::move(joined));
  }
  return from;
}

Select ParseSelect(TokenReader& reader) {
  const TokenReader::Clause clause(reader, Error::SyntaxInExpression);
  const TokenReader::Nesting nesting(reader);
  Select select = ParseSelectCore(reader);
  ParseUnions(reader, select);
  select.order_by = ParseOrderBy(reader);
  return select;
}

}  // namespace vdstomgr::jet
