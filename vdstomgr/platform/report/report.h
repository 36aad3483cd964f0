#pragma once

#include "vdstomgr/platform/framework/cstring.h"

/// How the library reports; who hears it is in hooks.h. Texts are in the process's code page.
namespace vdstomgr {

void ShowMessageBox(const char* text);
void ReportDatabaseError(int code, const char* message);

/// A printf-style diagnostic; nothing is formatted when nobody listens.
VDSTO_PRINTF(1, 2) void Trace(const char* format, ...);

}  // namespace vdstomgr
