#include "tools/vdsto/library/finished_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace vdsto {

std::optional<FileIdentity> IdentityOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return FileIdentity{status.st_dev, status.st_ino};
}

void ReplaceFile(const std::string& from, const std::string& to) {
  if (rename(from.c_str(), to.c_str()) == 0) return;
  const int error = errno;
  unlink(from.c_str());
  throw std::system_error(error, std::generic_category());
}

/// A hard link never replaces, but not every file system has them.
bool PublishFile(const std::string& from, const std::string& to) {
  const bool linked = link(from.c_str(), to.c_str()) == 0;
  const bool exists = !linked && (errno == EEXIST || IdentityOf(to));
  if (!linked && !exists) ReplaceFile(from, to);
  unlink(from.c_str());
  return !exists;
}

}  // namespace vdsto
