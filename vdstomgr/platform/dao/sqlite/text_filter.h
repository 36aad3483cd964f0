#pragma once

#include <optional>
#include <vector>

#include "vdstomgr/platform/dao/jet/ast.h"
#include "vdstomgr/platform/dao/schema.h"
#include "vdstomgr/platform/dao/sqlite/printer.h"

namespace vdstomgr::sqlite {

/// The conditions of a query that LIKE tests on one column with a text index make up; together with
/// `others` they are the whole WHERE, all under one AND.
struct TextFilter {
  const dao::ColumnSchema* column = nullptr;
  TextTest test;
  std::vector<const jet::Expr*> others;
};

/// Nothing when `where` has no such condition.
std::optional<TextFilter> FindTextFilter(const jet::Expr& where, const dao::TableSchema& table);

}  // namespace vdstomgr::sqlite
