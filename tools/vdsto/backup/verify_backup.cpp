#include "tools/vdsto/backup/verify_backup.h"

#include <unordered_map>

namespace vdsto {
namespace {

class Verification {
 public:
  Verification(BackupFolder& folder, const BackupProgress& progress)
      : folder_(folder), progress_(progress) {}

  void Check(const Generation& generation) {
    total_ += generation.Bytes();
    const size_t before = faults_.damages.size();
    for (const BackedUpFile& file : generation.files) {
      BackupFaults::Damage damage{generation.id, file.name};
      for (size_t i = 0; i < file.pieces.size(); ++i)
        Count(FaultOf(file.pieces[i], file.SizeOfPiece(i)), damage);
      if (damage.missing + damage.damaged > 0) faults_.damages.push_back(std::move(damage));
    }
    if (faults_.damages.size() == before) faults_.sound.push_back(generation.id);
  }

  BackupFaults Faults() { return std::move(faults_); }

 private:
  PieceFault FaultOf(const std::string& digest, uint64_t size) {
    progress_(done_ += size, total_);
    if (const auto known = known_.find(digest); known != known_.end()) return known->second;
    PieceFault fault = folder_.Pieces().Read(digest, size, bytes_);
    if (fault == PieceFault::kDamaged && folder_.Pieces().SetAside(digest))
      faults_.was_set_aside = true;
    return known_[digest] = fault;
  }

  static void Count(PieceFault fault, BackupFaults::Damage& damage) {
    damage.missing += fault == PieceFault::kMissing;
    damage.damaged += fault == PieceFault::kDamaged;
  }

  BackupFolder& folder_;
  const BackupProgress& progress_;
  BackupFaults faults_;
  std::unordered_map<std::string, PieceFault> known_;
  std::vector<unsigned char> bytes_;
  uint64_t done_ = 0;
  uint64_t total_ = 0;
};

}  // namespace

BackupFaults VerifyBackup(BackupFolder& folder, const std::vector<Generation>& generations,
                          const BackupProgress& progress) {
  Verification verification(folder, progress);
  for (const Generation& generation : generations) verification.Check(generation);
  return verification.Faults();
}

}  // namespace vdsto
