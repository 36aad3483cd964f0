#include "tools/vdsto/library/store_compaction.h"

#include <algorithm>
#include <filesystem>

#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr size_t kGuidLength = 36;

/// What an import leaves that was killed while it added an image: nothing is lost with it.
bool IsHarmless(const vdstomgr::StorageFinding& finding) {
  return vdstomgr::IsMendedByLoad(finding.fault) ||
         finding.fault == vdstomgr::StorageFault::RecordWithoutCluster;
}

/// A compaction keeps nothing of a damaged image; repairing names it first.
void RequireSound(const std::string& path) {
  const auto report = vdstomgr::VerifyStorage(path.c_str());
  const bool is_harmless = report.findings.size() == report.finding_count &&
                           std::all_of(report.findings.begin(), report.findings.end(), &IsHarmless);
  if (report.is_sound || is_harmless) return;
  throw ToolError(ExitCode::kDamaged,
                  Printable(path) + " has faults: run vdsto store repair before compacting");
}

bool IsNamed(Library& library, const std::string& key) {
  const auto photo = library.Photo(key.substr(0, kGuidLength));
  return photo && ImageKeyOf(photo->GetLTBURL()) == key;
}

uint64_t DropUnnamed(Library& library, CRkStorageManager& storage) {
  uint64_t dropped = 0;
  for (int position = storage.GetSize() - 1; position >= 0; --position) {
    CString key;
    storage.GetKeyAtString(position, key);
    if (!IsNamed(library, key.Str()) && storage.RemoveAt(position)) ++dropped;
  }
  return dropped;
}

void DeleteOldPair(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(path + ".bak", ignored);
  std::filesystem::remove(ImageIndexPath(path) + ".bak", ignored);
}

}  // namespace

void OpenStorage(const std::string& path, CRkStorageManager& storage) {
  OpenPatiently(path, [&] {
    const bool opened = storage.LoadStorageFile(path.c_str());
    if (!opened) storage.FreeStorageFile();
    return opened;
  });
}

CompactionSummary CompactImageStore(Library& library) {
  const std::string path = ImageStorePath(library.Folder());
  CompactionSummary summary;
  CRkStorageManager storage;
  OpenStorage(path, storage);
  RequireSound(path);
  summary.bytes_before = ImageStoreBytes(library.Folder());
  summary.dropped = DropUnnamed(library, storage);
  const int kept = storage.GetSize();
  storage.FreeStorageFile();
  if (!CRkStorageManager::CompactStorageFile(path.c_str())) {
    throw ToolError(ExitCode::kCatalogue, Printable(path) +
                                              " could not be compacted and stays as it was: is "
                                              "the disk full?");
  }
  OpenStorage(path, storage);
  if (storage.GetSize() != kept || !vdstomgr::SyncStorage(storage)) {
    throw ToolError(
        ExitCode::kCatalogue,
        Printable(path) + " is not whole; what was there before is " + Printable(path) + ".bak");
  }
  DeleteOldPair(path);
  summary.images = static_cast<uint64_t>(kept);
  summary.bytes_after = ImageStoreBytes(library.Folder());
  return summary;
}

}  // namespace vdsto
