#pragma once

#include "vdstomgr/platform/export.h"

/// Marks a stretch of work for the message parser: its three texts go to the trace, nothing else.
class VDSTO_API CWQTPParser {
 public:
  CWQTPParser(const char* product, const char* module, const char* command);
};
