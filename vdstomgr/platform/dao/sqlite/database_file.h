#pragma once

#include <string>
#include <string_view>

/// The file that a database is in, as the file system sees it. Paths are UTF-8. Nothing here opens
/// a file that exists: closing it again would drop the engine's locks on it.
namespace vdstomgr::sqlite {

/// Can a file have that name? The engine would make something else of the names that it refuses.
bool IsFileName(std::string_view path);

/// Throws FileNotFound, InvalidPath, NotADatabase or FileNotAccessible unless `path` names an
/// ordinary file.
void RequireFile(const std::string& path);

/// Makes an empty file that was not there before. Throws DatabaseExists when something of that name
/// is, and InvalidPath, FileNotAccessible, DiskFull or DiskOrNetwork.
void MakeFile(const std::string& path);

/// Is there nothing of that name? Throws FileNotAccessible when that cannot be told.
bool IsGone(const std::string& path);

/// Deletes the file and then what the engine may have left beside it. False when the file stays.
bool RemoveFiles(const std::string& path);

}  // namespace vdstomgr::sqlite
