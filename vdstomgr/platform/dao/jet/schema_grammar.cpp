#include <algorithm>
#include <array>
#include <utility>

#include "vdstomgr/platform/dao/jet/grammar.h"
#include "vdstomgr/platform/text/ascii.h"

namespace vdstomgr::jet {
namespace {

using dao::ColumnSchema;
using dao::ColumnType;
using dao::Error;

constexpr int kLongestSizedText = 255;

struct TypeName {
  enum class Size { None, Default255, Optional };
  std::string_view word;
  ColumnType type;
  Size size = Size::None;
};

// A TEXT without a size is a long text, a CHAR or VARCHAR without one holds 255 characters.
constexpr std::array kTypes = {
    TypeName{"BYTE", ColumnType::Byte},
    TypeName{"INTEGER", ColumnType::Integer},
    TypeName{"INT", ColumnType::Integer},
    TypeName{"LONG", ColumnType::Integer},
    TypeName{"COUNTER", ColumnType::Counter},
    TypeName{"DOUBLE", ColumnType::Double},
    TypeName{"FLOAT", ColumnType::Double},
    TypeName{"CHAR", ColumnType::Text, TypeName::Size::Default255},
    TypeName{"VARCHAR", ColumnType::Text, TypeName::Size::Default255},
    TypeName{"TEXT", ColumnType::LongText, TypeName::Size::Optional},
    TypeName{"MEMO", ColumnType::LongText},
    TypeName{"LONGTEXT", ColumnType::LongText},
};

const TypeName& ParseTypeName(TokenReader& reader) {
  const auto* found = std::find_if(kTypes.begin(), kTypes.end(),
                                   [&](const TypeName& known) { return reader.Is(known.word); });
  if (found == kTypes.end()) reader.Fail();
  reader.Take();
  return *found;
}

void ParseTextSize(TokenReader& reader, TypeName::Size rule, ColumnSchema& column) {
  if (reader.Accept("(")) {
    const TokenReader at_size = reader;
    const std::int64_t size = reader.TakeInteger();
    if (size < 1 || size > kLongestSizedText) at_size.Fail();
    reader.Expect(")");
    column.size = static_cast<int>(size);
  } else if (rule == TypeName::Size::Default255) {
    column.size = kLongestSizedText;
  }
  if (column.size > 0) column.type = ColumnType::Text;
}

// Counters begin at 1 and grow by 1; any other seed or step is refused.
void ParseSeed(TokenReader& reader) {
  if (!reader.Accept("(")) return;
  const TokenReader at_seed = reader;
  const std::int64_t seed = reader.TakeInteger();
  reader.Expect(",");
  const std::int64_t step = reader.TakeInteger();
  if (seed != 1 || step != 1) at_seed.Fail();
  reader.Expect(")");
}

ColumnDefinition ParseColumnType(TokenReader& reader) {
  ColumnDefinition column;
  column.schema.name = reader.TakeName();
  column.fixed_width = reader.Is("CHAR");
  const TypeName& type = ParseTypeName(reader);
  column.schema.type = type.type;
  if (type.type == ColumnType::Counter) ParseSeed(reader);
  if (type.size != TypeName::Size::None) ParseTextSize(reader, type.size, column.schema);
  return column;
}

void SetPrimaryKey(TokenReader& reader, CreateTable& create, std::vector<std::string> columns) {
  if (!create.primary_key.empty()) reader.Fail();
  create.primary_key = std::move(columns);
}

// NOT NULL, PRIMARY KEY, UNIQUE behind a column's type, in any order; the latter two may be named.
bool ParseColumnConstraint(TokenReader& reader, CreateTable& create, ColumnSchema& column) {
  if (reader.Accept("NOT")) {
    reader.Expect("NULL");
    column.required = true;
    return true;
  }
  const bool named = reader.Accept("CONSTRAINT");
  if (named) reader.TakeName();
  if (reader.Accept("PRIMARY")) {
    reader.Expect("KEY");
    SetPrimaryKey(reader, create, {column.name});
    return true;
  }
  if (reader.Accept("UNIQUE")) {
    create.unique_keys.push_back({column.name});
    return true;
  }
  if (named) reader.Fail();
  return false;
}

void ParseColumn(TokenReader& reader, CreateTable& create) {
  const TokenReader::Clause clause(reader, Error::SyntaxInFieldDefinition);
  ColumnDefinition column = ParseColumnType(reader);
  while (ParseColumnConstraint(reader, create, column.schema)) {
  }
  create.columns.push_back(std::move(column));
}

void ParseTableConstraint(TokenReader& reader, CreateTable& create) {
  if (reader.Accept("CONSTRAINT")) reader.TakeName();
  if (reader.Accept("PRIMARY")) {
    reader.Expect("KEY");
    SetPrimaryKey(reader, create, reader.TakeNameList());
  } else {
    reader.Expect("UNIQUE");
    create.unique_keys.push_back(reader.TakeNameList());
  }
}

ColumnSchema& FindColumn(CreateTable& create, const std::string& name) {
  const auto found =
      std::find_if(create.columns.begin(), create.columns.end(),
                   [&](const auto& column) { return SameName(column.schema.name, name); });
  if (found == create.columns.end()) dao::Throw(Error::SyntaxInCreateTable, name);
  return found->schema;
}

// What can be judged only when all columns are known.
void CheckTable(CreateTable& create) {
  for (const auto& key : create.primary_key) FindColumn(create, key).key = true;
  for (const auto& columns : create.unique_keys) {
    for (const auto& name : columns) FindColumn(create, name);
  }
  for (const ColumnDefinition& column : create.columns) {
    const ColumnSchema& schema = column.schema;
    const bool is_first = &FindColumn(create, schema.name) == &schema;
    const bool is_key = schema.key && create.primary_key.size() == 1;
    if (!is_first || (schema.type == ColumnType::Counter && !is_key)) {
      dao::Throw(Error::SyntaxInFieldDefinition, schema.name);
    }
  }
}

CreateTable ParseCreateTable(TokenReader& reader) {
  const TokenReader::Clause clause(reader, Error::SyntaxInCreateTable);
  CreateTable create;
  create.table = reader.TakeName();
  reader.Expect("(");
  do {
    if (reader.Is("CONSTRAINT") || reader.Is("PRIMARY") || reader.Is("UNIQUE")) {
      ParseTableConstraint(reader, create);
    } else {
      ParseColumn(reader, create);
    }
  } while (reader.Accept(","));
  reader.Expect(")");
  CheckTable(create);
  return create;
}

CreateIndex ParseCreateIndex(TokenReader& reader, bool unique) {
  const TokenReader::Clause clause(reader, Error::SyntaxInCreateIndex);
  CreateIndex create;
  create.unique = unique;
  create.name = reader.TakeName();
  reader.Expect("ON");
  create.table = reader.TakeName();
  reader.Expect("(");
  do {
    CreateIndex::Column column{reader.TakeName()};
    column.descending = reader.Accept("DESC");
    if (!column.descending) reader.Accept("ASC");
    create.columns.push_back(std::move(column));
  } while (reader.Accept(","));
  reader.Expect(")");
  return create;
}

}  // namespace

Statement ParseCreate(TokenReader& reader) {
  reader.Expect("CREATE");
  if (reader.Accept("TABLE")) return ParseCreateTable(reader);
  const bool unique = reader.Accept("UNIQUE");
  reader.Expect("INDEX");
  return ParseCreateIndex(reader, unique);
}

Statement ParseDrop(TokenReader& reader) {
  reader.Expect("DROP");
  if (reader.Accept("TABLE")) return DropTable{reader.TakeName()};
  reader.Expect("INDEX");
  DropIndex drop{reader.TakeName(), {}};
  reader.Expect("ON");
  drop.table = reader.TakeName();
  return drop;
}

}  // namespace vdstomgr::jet
