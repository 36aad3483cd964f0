#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace vdsto {

/// What makes two paths one file, whatever links and spellings lead there: device and inode.
using FileIdentity = std::pair<uint64_t, uint64_t>;

/// Nothing when there is no such file.
std::optional<FileIdentity> IdentityOf(const std::string& path);

/// Renames a file, replacing another. Throws std::system_error, and `from` is gone then.
void ReplaceFile(const std::string& from, const std::string& to);

/// Gives the finished file `from` the name `to` in one step; false, and `from` is gone, when that
/// name exists. Throws std::system_error, and `from` is gone then.
bool PublishFile(const std::string& from, const std::string& to);

}  // namespace vdsto
