#pragma once

/// Kinds of files, told by the extension in any mix of case. Null is no name.
namespace vdstomgr {

bool IsImageFileName(const char* file_name);
bool IsPngFileName(const char* file_name);

}  // namespace vdstomgr
