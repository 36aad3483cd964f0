#pragma once

#include "vdstomgr/platform/dao/jet/ast.h"
#include "vdstomgr/platform/dao/jet/token_reader.h"

/// The rules that the parser is made of. Each reads from the current token on and leaves the reader
/// behind what it read.
namespace vdstomgr::jet {

Expr ParseExpression(TokenReader& reader);
ExprPtr ParseExpressionPtr(TokenReader& reader);

/// A condition behind WHERE or HAVING, or null when the keyword does not follow.
ExprPtr ParseOptionalCondition(TokenReader& reader, std::string_view keyword);

/// SELECT up to and with its ORDER BY.
Select ParseSelect(TokenReader& reader);

/// The sources behind FROM.
From ParseSources(TokenReader& reader);

/// [AS] alias, or empty.
std::string ParseAlias(TokenReader& reader);

/// CREATE or DROP.
Statement ParseCreate(TokenReader& reader);
Statement ParseDrop(TokenReader& reader);

}  // namespace vdstomgr::jet
