#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <utility>

#include "tools/vdsto/library/image_seal.h"
#include "vdstomgr/vdstomgr.h"

namespace vdsto {

/// The data file of a library folder's image store.
std::string ImageStorePath(const std::string& library_folder);
/// The index file beside a data file.
std::string ImageIndexPath(const std::string& path);
/// True also when there are only the pieces that a killed compaction leaves.
bool IsImageStoreThere(const std::string& library_folder);
/// Was a compaction of the store at `path` ended while it renamed, or is it doing so just now?
bool IsCompactionCutOff(const std::string& path);
/// Has somebody the file open as its only writer?
bool IsInUse(const std::string& path);
/// Why the system refused the last work on a store, as " (images.pdb: no space left on device)";
/// empty when it did not.
std::string SystemReason();
/// What both files take on the disk; 0 without a store.
uint64_t ImageStoreBytes(const std::string& library_folder);

/// The key of a photo's thumbnail: its GUID and the thumbnail's size and form, so that other sizes
/// can stand beside it.
std::string ThumbnailKey(const std::string& guid);
/// How a photo's row names an image of the store: "store:" and its key.
std::string ImageLocation(const std::string& key);
/// The inverse of ImageLocation; empty for a text that names no image of the store.
std::string ImageKeyOf(const std::string& location);

/// Copies an image out of a library's store, also while an import writes to it; `seal` is what
/// encrypts the library's images, if anything. False when there is no such image or no store.
/// Throws ToolError when the store cannot be read, and when the image is not what was stored.
bool ReadImage(const std::string& library_folder, const std::string& key, const ImageSeal* seal,
               std::vector<uint8_t>& image);

/// Calls `open`, which must leave nothing open when it fails, and waits a little while another
/// process has the store at `path`. Throws ToolError, which says why, when that does not help.
void OpenPatiently(const std::string& path, const std::function<bool()>& open);

/// The thumbnails of a library. The store has one user at a time, which is this object from Open
/// or the first Put until its end. One thread calls it; others may ask Has meanwhile.
class ImageStore {
 public:
  /// Images are encrypted by `seal`, which may be null. What only removes images needs none.
  explicit ImageStore(const std::string& library_folder,
                      std::shared_ptr<const ImageSeal> seal = nullptr)
      : path_(ImageStorePath(library_folder)), seal_(std::move(seal)) {}
  ImageStore(const ImageStore&) = delete;
  ImageStore& operator=(const ImageStore&) = delete;

  /// False when the library has no store yet. Throws ToolError when it cannot be opened; who holds
  /// the ImportLock calls PrepareImageStore before.
  bool Open();
  bool Has(const std::string& key);
  /// Shows an image to `use`; false when there is none. Throws ToolError when it is not what was
  /// stored.
  bool Lend(const std::string& key, const std::function<void(std::span<const uint8_t>)>& use);
  /// Stores or replaces an image; makes the store when there is none. Throws ToolError; an older
  /// image is still there then.
  void Put(const std::string& key, std::span<const uint8_t> image);
  void Remove(const std::string& key);
  /// Returns when the device holds what was put. Throws ToolError when it does not.
  void Sync();

 private:
  void Create() const;

  std::string path_;
  std::shared_ptr<const ImageSeal> seal_;
  bool is_open_ = false;
  bool has_news_ = false;
  std::mutex mutex_;              // guards the exchange of what follows
  CRkPhotoImageStorage storage_;  // closes itself
};

}  // namespace vdsto
