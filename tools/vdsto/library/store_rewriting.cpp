#include "tools/vdsto/library/store_rewriting.h"

#include <filesystem>
#include <system_error>

#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/store_compaction.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kStorageId = 1;

[[noreturn]] void ThrowNotWritten(const std::string& path) {
  throw ToolError(ExitCode::kCatalogue,
                  Printable(path) + " could not be written anew" + SystemReason());
}

/// The names that a compaction uses: what ends a compaction that was killed ends this, too.
struct NewPair {
  const std::string path, data, index;

  explicit NewPair(const std::string& store_path)
      : path(store_path),
        data(store_path + ".compacting.pdb"),
        index(store_path + ".compacting.pdx") {
    Delete();
  }
  ~NewPair() { Delete(); }
  NewPair(const NewPair&) = delete;
  NewPair& operator=(const NewPair&) = delete;

  /// In the order of a compaction, of which every stop can be told from the names.
  void TakePlace() const {
    const std::string old_index = ImageIndexPath(path);
    try {
      fs::rename(path, path + ".bak");
      fs::rename(old_index, old_index + ".bak");
      fs::rename(data, path);
      fs::rename(index, old_index);
    } catch (const fs::filesystem_error& error) {
      vdstomgr::FinishCompaction(path.c_str());
      throw ToolError(ExitCode::kCatalogue, Printable(path) + ": " + error.code().message());
    }
    DeleteOldPair(path);
  }

 private:
  /// The index goes first: alone it would be taken for that of a compaction that is nearly done.
  void Delete() const {
    std::error_code ignored;
    fs::remove(index, ignored);
    fs::remove(data, ignored);
  }
};

/// Shows each image, from the last to the first.
void ForEachImage(CRkStorageManager& storage,
                  const std::function<void(int, const std::string&, ImageBytes)>& use) {
  for (int position = storage.GetSize() - 1; position >= 0; --position) {
    CString key;
    int length = 0;
    storage.GetKeyAtString(position, key);
    const BYTE* const bytes = storage.GetBuffer(position, length);
    const std::vector<uint8_t> image(bytes, bytes + (bytes == nullptr ? 0 : length));
    storage.ReleaseBuffer();
    use(position, key.Str(), image);
  }
}

void RequireSound(const std::string& library_folder, const ImportLock& lock) {
  if (RepairImageStore(library_folder, lock).IsMended()) return;
  throw ToolError(ExitCode::kDamaged,
                  "the image store has faults that could not be repaired: vdsto store repair");
}

bool IsForged(const ImageSeal* seal, const std::string& key, ImageBytes stored) {
  return seal == nullptr ? IsSealed(stored) : !seal->Open(key, stored);
}

}  // namespace

RewriteSummary RewriteImages(const std::string& library_folder, const ImportLock& lock,
                             const ImageChange& change) {
  const std::string path = ImageStorePath(library_folder);
  RewriteSummary summary;
  if (!IsImageStoreThere(library_folder)) return summary;
  RequireSound(library_folder, lock);
  DeleteOldPair(path);
  CRkStorageManager from, to;
  OpenStorage(path, from);
  RequireRoom(path, ImageStoreBytes(library_folder), from.GetSize());
  const NewPair pair(path);
  if (!CRkPhotoImageStorage().CreateFileA(pair.data.c_str(), kStorageId)) ThrowNotWritten(path);
  OpenStorage(pair.data, to);
  ForEachImage(from, [&](int, const std::string& key, ImageBytes stored) {
    const auto image = change(key, stored);
    ++(image ? summary.images : summary.dropped);
    if (image && !to.Add(key.c_str(), image->data(), static_cast<int>(image->size()), false))
      ThrowNotWritten(path);
  });
  if (!vdstomgr::SyncStorage(to)) ThrowNotWritten(path);
  to.FreeStorageFile();
  from.FreeStorageFile();
  pair.TakePlace();
  return summary;
}

std::vector<std::string> ForgedImages(const std::string& library_folder, const ImageSeal* seal,
                                      const std::vector<std::string>& keys) {
  const std::string path = ImageStorePath(library_folder);
  std::vector<std::string> forged;
  CBinData stored;
  for (const std::string& key : keys) {
    if (vdstomgr::ReadStorage(path.c_str(), key.c_str(), stored) != vdstomgr::StorageLookup::Found)
      continue;
    if (IsForged(seal, key, {stored.GetData(), static_cast<size_t>(stored.GetLength())}))
      forged.push_back(key);
  }
  return forged;
}

std::vector<std::string> DropForgedImages(const std::string& library_folder, const ImageSeal* seal,
                                          const ImportLock&) {
  std::vector<std::string> dropped;
  if (!IsImageStoreThere(library_folder)) return dropped;
  CRkStorageManager storage;
  OpenStorage(ImageStorePath(library_folder), storage);
  ForEachImage(storage, [&](int position, const std::string& key, ImageBytes stored) {
    if (IsForged(seal, key, stored) && storage.RemoveAt(position)) dropped.push_back(key);
  });
  return dropped;
}

}  // namespace vdsto
