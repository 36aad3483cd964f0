#pragma once
#include <chrono>
#include <string>
#include <vector>

#include "tools/vdsto/import/cameras_met.h"
#include "tools/vdsto/import/folder_mirror.h"
#include "tools/vdsto/import/import_summary.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/library.h"
#include "tools/vdsto/library/photo_facts.h"
#include "tools/vdsto/picture/picture_probe.h"

namespace vdsto {

/// A file that an import looks into.
struct ImportJob {
  std::string path;
  std::string import_root;
  std::string known_guid;  ///< of its photo, when the catalogue has it
};

/// Writes probed pictures into the catalogue: new ones in batches, changed ones one by one. A
/// picture's thumbnail is in the store before the row that names it, and its facts come after the
/// row.
class PhotoWriter {
 public:
  using Clock = std::chrono::steady_clock;

  PhotoWriter(Library& library, ImageStore& images, FolderMirror& mirror, ImportSummary& summary);

  /// Throws ToolError when the catalogue or the store can no longer be written.
  void Write(const ImportJob& job, const PictureFacts& facts);
  /// Writes what is collected.
  void Flush();
  /// When what is collected should be written; far away while nothing is.
  Clock::time_point FlushTime() const { return flush_time_; }

 private:
  void Add(const ImportJob& job, const PictureFacts& facts);
  void Update(const ImportJob& job, const PictureFacts& facts);
  void StoreImage(const PHOTOINFO& photo, const PictureFacts& facts);
  void Remember(const ImportJob& job, const PictureFacts& facts);
  void Collect(PhotoFacts facts);
  void FlushRows();
  void FlushFacts();
  bool StoreBatch();
  void WriteOneByOne();
  bool Store(const PHOTOINFO& photo, const std::string& path, bool is_new);

  Library& library_;
  ImageStore& images_;
  FolderMirror& mirror_;
  ImportSummary& summary_;
  CamerasMet cameras_;
  vdstomgr::PhotoArray batch_;
  std::vector<std::string> batch_paths_;
  std::vector<PhotoFacts> facts_;  // of what is in the batch, and of photos that were updated
  Clock::time_point flush_time_ = Clock::time_point::max();
};

}  // namespace vdsto
