#pragma once
#include <string>
#include <vector>

#include "tools/vdsto/backup/backup_folder.h"
#include "tools/vdsto/backup/backup_writer.h"

namespace vdsto {

struct BackupFaults {
  /// A file of a backup with pieces that are not what they were.
  struct Damage {
    std::string backup;
    std::string file;
    size_t missing = 0;
    size_t damaged = 0;
  };

  std::vector<Damage> damages;
  std::vector<std::string> sound;  ///< ids of the backups that are whole
  bool was_set_aside = false;
};

/// Reads the pieces of the generations, each once. A damaged one gets another name where the folder
/// can be written, so that the next backup writes it again.
BackupFaults VerifyBackup(BackupFolder& folder, const std::vector<Generation>& generations,
                          const BackupProgress& progress);

}  // namespace vdsto
