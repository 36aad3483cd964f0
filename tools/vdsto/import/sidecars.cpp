#include "tools/vdsto/import/sidecars.h"

#include <algorithm>

#include "tools/vdsto/picture/picture_format.h"
#include "tools/vdsto/text/source_location.h"

namespace vdsto {
namespace {

std::string ExtensionOfPath(const std::string& path) {
  return ExtensionOf(LastComponent(path));
}

std::string StemOf(const std::string& path) {
  const size_t length = ExtensionOfPath(path).size();
  return length == 0 ? path : path.substr(0, path.size() - length - 1);
}

}  // namespace

bool IsSidecar(const std::string& path) {
  return ExtensionOfPath(path) == "xmp";
}

Sidecars::Sidecars(const std::vector<SourceEntry>& files) {
  for (const SourceEntry& file : files) {
    if (IsSidecar(file.path)) by_stem_.emplace(StemOf(file.path), &file);
  }
  if (by_stem_.empty()) return;
  for (const SourceEntry& file : files) {
    if (IsRawExtension(ExtensionOfPath(file.path))) raw_stems_.insert(StemOf(file.path));
  }
}

const SourceEntry* Sidecars::Of(const std::string& path) const {
  if (by_stem_.empty()) return nullptr;
  if (const auto own = by_stem_.find(path); own != by_stem_.end()) return own->second;
  const std::string stem = StemOf(path);
  const bool is_anothers = raw_stems_.contains(stem) && !IsRawExtension(ExtensionOfPath(path));
  const auto shared = is_anothers ? by_stem_.end() : by_stem_.find(stem);
  return shared == by_stem_.end() ? nullptr : shared->second;
}

}  // namespace vdsto
