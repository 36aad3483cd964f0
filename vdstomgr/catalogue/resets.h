#pragma once

#include "vdstomgr/catalogue/deletion.h"

namespace vdstomgr::catalogue {

/// Emptying whole tables.
class VDSTO_API Resets : public Deletion {};

}  // namespace vdstomgr::catalogue
