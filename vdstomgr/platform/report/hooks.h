#pragma once

#include <functional>

#include "vdstomgr/platform/export.h"

/// What the library tells its user and its developers, and how a host takes it over. Handlers may
/// be replaced at any time from any thread; a report already under way still reaches the old one.
/// Texts are in the process's code page and good during the call. Handlers must not throw.
namespace vdstomgr {

/// For the few message boxes with an OK button. An empty handler restores the default: a line on
/// standard error, on Windows a message box.
VDSTO_API void SetMessageBoxHandler(std::function<void(const char* text)> handler);

/// For database errors an operation shows its user. An empty handler restores the default: a line
/// on standard error, on Windows a message box.
VDSTO_API void SetDatabaseErrorHandler(std::function<void(int code, const char* message)> handler);

/// For diagnostics. An empty handler restores the default: nowhere, at no cost.
VDSTO_API void SetTraceHandler(std::function<void(const char* text)> handler);

}  // namespace vdstomgr
