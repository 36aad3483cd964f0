#pragma once

#include "vdstomgr/catalogue/side_tables.h"

namespace vdstomgr::catalogue {

/// What changed since a view last looked.
class VDSTO_API Notifications : public SideTables {};

}  // namespace vdstomgr::catalogue
