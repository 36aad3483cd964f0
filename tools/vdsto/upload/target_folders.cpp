#include "tools/vdsto/upload/target_folders.h"

namespace vdsto {

void TargetFolder::Open(const std::string& path, UploadTarget& target) {
  const std::lock_guard lock(mutex_);
  if (is_open_) return;
  for (std::string& name : target.OpenFolder(path)) names_.insert(std::move(name));
  is_open_ = true;
}

bool TargetFolder::Has(const std::string& name) const {
  const std::lock_guard lock(mutex_);
  return names_.count(name) != 0;
}

void TargetFolder::Add(const std::string& name) {
  const std::lock_guard lock(mutex_);
  names_.insert(name);
}

void TargetFolder::Forget(const std::string& name) {
  const std::lock_guard lock(mutex_);
  names_.erase(name);
}

std::set<std::string> TargetFolder::NamesWithPrefix(const std::string& prefix) const {
  const std::lock_guard lock(mutex_);
  auto last = names_.lower_bound(prefix);
  const auto first = last;
  while (last != names_.end() && last->starts_with(prefix)) ++last;
  return {first, last};
}

std::shared_ptr<TargetFolder> TargetFolders::Open(const std::string& path, UploadTarget& target) {
  std::shared_ptr<TargetFolder> folder;
  {
    const std::lock_guard lock(mutex_);
    std::shared_ptr<TargetFolder>& known = folders_[path];
    if (!known) known = std::make_shared<TargetFolder>();
    folder = known;
  }
  folder->Open(path, target);
  return folder;
}

void TargetFolders::Forget(const std::string& path) {
  const std::lock_guard lock(mutex_);
  folders_.erase(path);
}

}  // namespace vdsto
