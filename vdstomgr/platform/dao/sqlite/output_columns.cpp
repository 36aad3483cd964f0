#include "vdstomgr/platform/dao/sqlite/output_columns.h"
#include "vdstomgr/platform/text/ascii.h"

#include <algorithm>
#include <span>
#include <utility>

namespace vdstomgr::sqlite {
namespace {

using dao::ColumnType;

constexpr int kFirstExpressionNumber = 1000;

// The engine shows no more; stars over stars would name endlessly many.
constexpr size_t kMostColumns = 2000;

VisibleSource MakeSource(const jet::Source& source, const dao::SchemaView& schema) {
  VisibleSource visible{source.alias, nullptr, {}};
  if (source.select) {
    visible.columns = OutputColumns(*source.select, schema);
    for (OutputColumn& column : visible.columns) {
      column.stored = nullptr;
      column.never_null = false;
    }
  } else {
    visible.table = &RequireTable(schema, source.table, dao::Error::UnknownTable);
    if (visible.name.empty()) visible.name = visible.table->name;
    for (const auto& column : visible.table->columns) {
      OutputColumn& output = visible.columns.emplace_back();
      output.name = column.name;
      output.type = column.type;
      output.stored = &column;
      output.never_null = column.key;
    }
  }
  for (OutputColumn& column : visible.columns) {
    column.column = column.name;
    column.source = visible.name;
    column.value = nullptr;
  }
  return visible;
}

/// An outer join shows rows that lack these sources.
void LetLack(std::span<VisibleSource> sources) {
  for (VisibleSource& source : sources)
    for (OutputColumn& column : source.columns) column.never_null = false;
}

void AddSources(const jet::From& from, const dao::SchemaView& schema,
                std::vector<VisibleSource>& visible) {
  const size_t first = visible.size();
  for (const auto& joined : from.sources) {
    const size_t next = visible.size();
    if (joined.source.group) {
      AddSources(*joined.source.group, schema, visible);
    } else {
      visible.push_back(MakeSource(joined.source, schema));
    }
    const std::span<VisibleSource> all(visible);
    if (joined.join == jet::Join::Left) LetLack(all.subspan(next));
    if (joined.join == jet::Join::Right) LetLack(all.subspan(first, next - first));
  }
}

void AddStar(const std::string& all_of, const std::vector<VisibleSource>& sources,
             std::vector<OutputColumn>& outputs) {
  bool found = all_of.empty();
  for (const VisibleSource& source : sources) {
    if (!all_of.empty() && !SameName(all_of, source.name)) continue;
    found = true;
    outputs.insert(outputs.end(), source.columns.begin(), source.columns.end());
  }
  if (!found) dao::Throw(dao::Error::UnknownTable, all_of);
}

bool CountsRows(const jet::Expr& expr, const std::vector<VisibleSource>& sources) {
  const auto* aggregate = std::get_if<jet::Aggregate>(&expr.node);
  if (!aggregate || aggregate->function != jet::Aggregate::Function::Count) return false;
  const OutputColumn* counted =
      aggregate->argument ? FindColumn(*aggregate->argument, sources) : nullptr;
  return counted && counted->never_null;
}

OutputColumn MakeOutput(const jet::SelectItem& item, const std::vector<VisibleSource>& sources,
                        int& expression_number) {
  OutputColumn output{item.alias, {}, {}, TypeOf(item.value, sources), &item.value};
  output.counts_rows = CountsRows(item.value, sources);
  if (!item.alias.empty()) return output;
  if (const auto* reference = std::get_if<jet::ColumnRef>(&item.value.node)) {
    const OutputColumn* column = FindColumn(item.value, sources);
    output.name = output.column = reference->name;
    output.source = column ? column->source : reference->table;
  } else {
    output.name = "Expr" + std::to_string(expression_number++);
  }
  return output;
}

// Columns of one name from different sources are told apart as "source.name".
void QualifyDuplicates(std::vector<OutputColumn>& outputs) {
  std::vector<bool> ambiguous(outputs.size());
  for (size_t i = 0; i < outputs.size(); ++i) {
    ambiguous[i] = std::any_of(outputs.begin(), outputs.end(), [&](const OutputColumn& other) {
      return !outputs[i].source.empty() && !other.source.empty() &&
             SameName(outputs[i].name, other.name) && !SameName(outputs[i].source, other.source);
    });
  }
  for (size_t i = 0; i < outputs.size(); ++i) {
    if (ambiguous[i]) outputs[i].name = outputs[i].source + "." + outputs[i].name;
  }
}

std::optional<ColumnType> TypeOfLiteral(jet::Literal::Kind kind) {
  switch (kind) {
    case jet::Literal::Kind::Text:
      return ColumnType::LongText;
    case jet::Literal::Kind::Integer:
      return ColumnType::Integer;
    case jet::Literal::Kind::Real:
      return ColumnType::Double;
  }
  return std::nullopt;
}

}  // namespace

const OutputColumn* FindColumn(const jet::Expr& expr, const std::vector<VisibleSource>& sources) {
  const auto* reference = std::get_if<jet::ColumnRef>(&expr.node);
  if (!reference) return nullptr;
  for (const VisibleSource& source : sources) {
    if (!reference->table.empty() && !SameName(reference->table, source.name)) continue;
    for (const OutputColumn& column : source.columns) {
      if (SameName(column.name, reference->name)) return &column;
    }
  }
  return nullptr;
}

std::vector<VisibleSource> VisibleSources(const jet::From& from, const dao::SchemaView& schema) {
  std::vector<VisibleSource> visible;
  AddSources(from, schema, visible);
  return visible;
}

std::vector<OutputColumn> OutputColumns(const jet::Select& select, const dao::SchemaView& schema) {
  const std::vector<VisibleSource> sources = VisibleSources(select.from, schema);
  std::vector<OutputColumn> outputs;
  int expression_number = kFirstExpressionNumber;
  for (const auto& item : select.items) {
    if (item.all) {
      AddStar(item.all_of, sources, outputs);
    } else {
      outputs.push_back(MakeOutput(item, sources, expression_number));
    }
    if (outputs.size() > kMostColumns) {
      dao::Throw(dao::Error::SyntaxInExpression, outputs.back().name);
    }
  }
  if (sources.size() > 1) QualifyDuplicates(outputs);
  if (!select.unions.empty()) {  // the other queries may have other types
    for (OutputColumn& output : outputs) output.type.reset();
  }
  return outputs;
}

std::optional<ColumnType> TypeOf(const jet::Expr& expr, const std::vector<VisibleSource>& sources) {
  using Function = jet::Aggregate::Function;
  if (const auto* literal = std::get_if<jet::LiteralRef>(&expr.node)) {
    return TypeOfLiteral(literal->kind);
  }
  if (const OutputColumn* column = FindColumn(expr, sources)) return column->type;
  if (const auto* aggregate = std::get_if<jet::Aggregate>(&expr.node)) {
    if (aggregate->function == Function::Count) return ColumnType::Integer;
    const bool keeps_type =
        aggregate->function == Function::Max || aggregate->function == Function::Min;
    return keeps_type ? TypeOf(*aggregate->argument, sources) : std::nullopt;
  }
  return std::nullopt;
}

bool IsIntegerType(std::optional<ColumnType> type) {
  return type == ColumnType::Byte || type == ColumnType::Integer || type == ColumnType::Counter;
}

const dao::TableSchema& RequireTable(const dao::SchemaView& schema, const std::string& name,
                                     dao::Error missing) {
  const dao::TableSchema* table = schema.FindTable(name);
  if (!table) dao::Throw(missing, name);
  return *table;
}

}  // namespace vdstomgr::sqlite
