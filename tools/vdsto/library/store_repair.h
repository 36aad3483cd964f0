#pragma once
#include <string>
#include <vector>

#include "tools/vdsto/library/import_lock.h"
#include "vdstomgr/vdstomgr.h"

namespace vdsto {

struct StoreRepair {
  vdstomgr::RepairReport report;
  std::string set_aside;  ///< the new name of a data file that nothing could be made of

  /// Is there a sound store now, or none, so that the next import makes one?
  bool IsMended() const { return report.repaired || !set_aside.empty(); }
};

/// Makes the store sound, or room for a new one.
StoreRepair RepairImageStore(const std::string& library_folder, const ImportLock& lock);

/// Before the store is written to: ends a compaction that was killed, and repairs a store that
/// cannot be opened. Answers what a user should know of it. Does nothing without a store, and
/// leaves it to who opens it to say why that cannot be done.
std::vector<std::string> PrepareImageStore(const std::string& library_folder,
                                           const ImportLock& lock);

/// What a repair has done, in sentences.
std::vector<std::string> SentencesOf(const StoreRepair& repair);

}  // namespace vdsto
