#pragma once

#include <span>
#include <string_view>

#include "vdstomgr/platform/dao/jet/ast.h"

namespace vdstomgr::jet {

/// Parses one statement from its shape (see Shape). The values of `literals` matter only as sizes
/// in CREATE TABLE. A closing ';' is accepted; anything after it throws TextAfterStatement, an
/// unknown first word InvalidStatement, and what the grammar does not know the syntax error of the
/// clause it stands in, with the piece of the statement where reading stopped.
Statement Parse(std::string_view key, std::span<const Literal> literals);

}  // namespace vdstomgr::jet
