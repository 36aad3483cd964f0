#pragma once

#include <string_view>

namespace vdstomgr::jet {

/// Is the word one of the dialect's reserved words, in any case? They are names only in brackets.
bool IsReserved(std::string_view word);

/// Is it a reserved word after which a minus is a sign? After any other word it subtracts.
bool TakesSign(std::string_view word);

}  // namespace vdstomgr::jet
