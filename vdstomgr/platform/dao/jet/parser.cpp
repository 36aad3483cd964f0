#include "vdstomgr/platform/dao/jet/parser.h"

#include <utility>

#include "vdstomgr/platform/dao/jet/grammar.h"
#include "vdstomgr/platform/text/ascii.h"

namespace vdstomgr::jet {
namespace {

using dao::Error;

std::vector<Expr> ParseValues(TokenReader& reader) {
  reader.Expect("VALUES");
  reader.Expect("(");
  std::vector<Expr> values;
  do {
    values.push_back(ParseExpression(reader));
  } while (reader.Accept(","));
  reader.Expect(")");
  return values;
}

Insert ParseInsert(TokenReader& reader) {
  const TokenReader::Clause clause(reader, Error::SyntaxInInsert);
  reader.Expect("INSERT");
  reader.Expect("INTO");
  Insert insert;
  insert.table = reader.TakeName();
  if (reader.Is("(")) insert.columns = reader.TakeNameList();
  if (reader.Is("SELECT")) {
    insert.select = std::make_unique<Select>(ParseSelect(reader));
  } else {
    insert.values = ParseValues(reader);
  }
  return insert;
}

Assignment ParseAssignment(TokenReader& reader, const Update& update) {
  const TokenReader at_target = reader;
  Assignment assignment{reader.TakeName(), {}};
  if (reader.Accept(".")) {
    const std::string table = std::exchange(assignment.column, reader.TakeName());
    if (!SameName(table, update.alias.empty() ? update.table : update.alias)) at_target.Fail();
  }
  reader.Expect("=");
  assignment.value = ParseExpression(reader);
  return assignment;
}

Update ParseUpdate(TokenReader& reader) {
  const TokenReader::Clause clause(reader, Error::SyntaxInUpdate);
  reader.Expect("UPDATE");
  Update update;
  update.table = reader.TakeName();
  update.alias = ParseAlias(reader);
  reader.Expect("SET");
  do {
    update.assignments.push_back(ParseAssignment(reader, update));
  } while (reader.Accept(","));
  update.where = ParseOptionalCondition(reader, "WHERE");
  return update;
}

Delete ParseDelete(TokenReader& reader) {
  const TokenReader::Clause clause(reader, Error::SyntaxInFrom);
  reader.Expect("DELETE");
  Delete statement;
  if (reader.IsName()) {
    statement.target = reader.TakeName();
    reader.Expect(".");
    reader.Expect("*");
  } else {
    reader.Accept("*");
  }
  reader.Expect("FROM");
  statement.from = ParseSources(reader);
  statement.where = ParseOptionalCondition(reader, "WHERE");
  return statement;
}

Statement ParseStatement(TokenReader& reader) {
  if (reader.Is("SELECT")) return ParseSelect(reader);
  if (reader.Is("INSERT")) return ParseInsert(reader);
  if (reader.Is("UPDATE")) return ParseUpdate(reader);
  if (reader.Is("DELETE")) return ParseDelete(reader);
  if (reader.Is("CREATE")) return ParseCreate(reader);
  if (reader.Is("DROP")) return ParseDrop(reader);
  reader.Fail();
}

}  // namespace

Statement Parse(std::string_view key, std::span<const Literal> literals) {
  TokenReader reader(key, literals);
  Statement statement = ParseStatement(reader);
  reader.Accept(";");
  if (!reader.AtEnd()) dao::Throw(Error::TextAfterStatement);
  return statement;
}

}  // namespace vdstomgr::jet
