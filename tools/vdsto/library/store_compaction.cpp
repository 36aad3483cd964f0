#include "tools/vdsto/library/store_compaction.h"

#include <filesystem>

#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/store_census.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

/// What the new store may need besides its images: the last step of both files, and the system's
/// own of a file.
constexpr uint64_t kMargin = 2 * (uint64_t{4} << 20);

constexpr uint64_t kClusterBytes = 62;

uint64_t LengthAt(CRkStorageManager& storage, int position) {
  int length = 0;
  storage.GetBuffer(position, length);
  storage.ReleaseBuffer();
  return static_cast<uint64_t>(length);
}

/// Answers the bytes of the images that were dropped.
uint64_t DropUnnamed(Library& library, CRkStorageManager& storage, CompactionSummary& summary) {
  uint64_t bytes = 0;
  for (int position = storage.GetSize() - 1; position >= 0; --position) {
    CString key;
    storage.GetKeyAtString(position, key);
    if (PhotoOfImage(library, key.Str())) continue;
    const uint64_t length = LengthAt(storage, position);
    if (!storage.RemoveAt(position)) continue;
    bytes += length;
    ++summary.dropped;
  }
  return bytes;
}

}  // namespace

/// A compaction writes the images that stay a second time before it deletes the old files.
void RequireRoom(const std::string& path, uint64_t image_bytes, int images) {
  const uint64_t needed = image_bytes + static_cast<uint64_t>(images) * kClusterBytes + kMargin;
  std::error_code error;
  const auto space = std::filesystem::space(ParentOf(path), error);
  if (error || space.available >= needed) return;
  throw ToolError(ExitCode::kRefused,
                  Printable(path) + " needs " + HumanSize(needed) + " beside it to be compacted, " +
                      HumanSize(space.available) + " are free: make room first");
}

void DeleteOldPair(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(path + ".bak", ignored);
  std::filesystem::remove(ImageIndexPath(path) + ".bak", ignored);
}

void OpenStorage(const std::string& path, CRkStorageManager& storage) {
  OpenPatiently(path, [&] {
    const bool opened = storage.LoadStorageFile(path.c_str());
    if (!opened) storage.FreeStorageFile();
    return opened;
  });
}

/// Faults go before: a compaction by itself would keep the keys of damaged images.
CompactionSummary CompactImageStore(Library& library, const ImportLock& lock) {
  const std::string path = ImageStorePath(library.Folder());
  CompactionSummary summary;
  summary.repair = RepairImageStore(library.Folder(), lock);
  if (!IsImageStoreThere(library.Folder())) return summary;
  CRkStorageManager storage;
  OpenStorage(path, storage);
  if (!summary.repair.IsMended()) {
    throw ToolError(ExitCode::kDamaged, Printable(path) +
                                            " has faults that could not be repaired: "
                                            "vdsto store repair says why");
  }
  summary.bytes_before = ImageStoreBytes(library.Folder());
  const uint64_t dropped_bytes = DropUnnamed(library, storage, summary);
  const int kept = storage.GetSize();
  RequireRoom(path, summary.repair.report.found.live_bytes - dropped_bytes, kept);
  storage.FreeStorageFile();
  if (!CRkStorageManager::CompactStorageFile(path.c_str())) {
    throw ToolError(
        ExitCode::kCatalogue,
        Printable(path) + " could not be compacted and stays as it was" + SystemReason());
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
