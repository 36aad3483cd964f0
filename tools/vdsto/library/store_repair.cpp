#include "tools/vdsto/library/store_repair.h"

#include <unistd.h>

#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

bool CanBeOpened(const std::string& path) {
  return CRkStorageManager().LoadStorageFile(path.c_str());
}

bool MayBeWritten(const std::string& path) {
  return access(path.c_str(), R_OK | W_OK) == 0 && !IsInUse(path);
}

}  // namespace

StoreRepair RepairImageStore(const std::string& library_folder, const ImportLock&) {
  const std::string path = ImageStorePath(library_folder);
  StoreRepair repair{vdstomgr::RepairStorage(path.c_str()), {}};
  if (repair.report.is_beyond_repair) repair.set_aside = vdstomgr::SetStorageAside(path.c_str());
  return repair;
}

std::vector<std::string> PrepareImageStore(const std::string& library_folder,
                                           const ImportLock& lock) {
  const std::string path = ImageStorePath(library_folder);
  std::vector<std::string> news;
  if (!IsImageStoreThere(library_folder)) return news;
  const bool was_cut_off = IsCompactionCutOff(path);
  if (vdstomgr::FinishCompaction(path.c_str()) && was_cut_off)
    news.push_back("A compaction of the image store that had been ended is in order again.");
  if (!MayBeWritten(path) || CanBeOpened(path)) return news;
  const StoreRepair repair = RepairImageStore(library_folder, lock);
  if (!repair.IsMended() || repair.report.was_sound) return news;
  const auto sentences = SentencesOf(repair);
  news.insert(news.end(), sentences.begin(), sentences.end());
  return news;
}

std::vector<std::string> SentencesOf(const StoreRepair& repair) {
  const vdstomgr::RepairReport& report = repair.report;
  if (!repair.set_aside.empty()) {
    return {"Nothing can be made of the image store: it is kept as " + Printable(repair.set_aside) +
                ".",
            "The next import makes all thumbnails again."};
  }
  if (report.was_sound) return {"The image store is sound: nothing was changed."};
  std::vector<std::string> sentences{"The image store was damaged and is sound again, with " +
                                     Counted(report.good_records, "image") + "."};
  if (!report.kept_index.empty())
    sentences.push_back("The old index is kept as " + Printable(report.kept_index) + ".");
  if (report.lost_count > 0) {
    sentences.push_back("The next import makes " + Counted(report.lost_count, "lost thumbnail") +
                        " again.");
  }
  return sentences;
}

}  // namespace vdsto
