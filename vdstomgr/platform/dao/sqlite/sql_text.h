#pragma once

#include <string>
#include <string_view>

#include "vdstomgr/platform/text/compose.h"

namespace vdstomgr::sqlite {

/// A name as the engine reads it whatever its bytes: "name".
std::string QuoteName(std::string_view name);

/// 'text'
std::string QuoteText(std::string_view text);

/// Would the engine take the name for its own row number?
bool IsRowidName(std::string_view name);

}  // namespace vdstomgr::sqlite
