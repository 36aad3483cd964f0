#pragma once

/// Marks what the shared library exports; everything else stays hidden.
#if defined(_WIN32)
#if defined(VDSTO_BUILDING_LIBRARY)
#define VDSTO_API __declspec(dllexport)
#else
#define VDSTO_API __declspec(dllimport)
#endif
#else
#define VDSTO_API __attribute__((visibility("default")))
#endif
