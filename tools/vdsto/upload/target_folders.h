#pragma once
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "tools/vdsto/upload/upload_target.h"

namespace vdsto {

/// What is known to lie in one folder of the target. Any thread.
class TargetFolder {
 public:
  /// Asks the target the first time; others wait meanwhile. Throws as UploadTarget does.
  void Open(const std::string& path, UploadTarget& target);

  bool Has(const std::string& name) const;
  void Add(const std::string& name);
  void Forget(const std::string& name);
  std::set<std::string> NamesWithPrefix(const std::string& prefix) const;

 private:
  mutable std::mutex mutex_;
  bool is_open_ = false;         // guarded by mutex_
  std::set<std::string> names_;  // guarded by mutex_
};

/// The folders of the target that a run has met: each is made and listed once, so that a file takes
/// no questions of its own. Any thread.
class TargetFolders {
 public:
  /// Throws as UploadTarget does.
  std::shared_ptr<TargetFolder> Open(const std::string& path, UploadTarget& target);
  /// The next one asks again.
  void Forget(const std::string& path);

 private:
  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<TargetFolder>> folders_;  // guarded by mutex_
};

}  // namespace vdsto
