#pragma once

#include <string_view>

#include "vdstomgr/platform/dao/dao_error.h"

namespace vdstomgr::jet {

/// Throws `error` with the piece of `text` that begins at `position`: short, cut between
/// characters, with markers of literals (and other control bytes) shown as '?'.
[[noreturn]] void ThrowSyntaxError(dao::Error error, std::string_view text, size_t position);

}  // namespace vdstomgr::jet
