#pragma once

#include "vdstomgr/platform/framework/cstring.h"

namespace vdstomgr::catalogue {

/// Appends a name to names joined by `separator`. An empty name leaves its separator, unless the
/// list was empty.
inline void AppendName(CString& names, TextView name, TextView separator = ",") {
  if (!names.IsEmpty()) names.Append(separator);
  names.Append(name);
}

}  // namespace vdstomgr::catalogue
