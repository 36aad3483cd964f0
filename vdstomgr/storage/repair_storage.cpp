#include "vdstomgr/storage/repair_storage.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <numeric>

#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/cluster_table.h"
#include "vdstomgr/storage/compaction_files.h"
#include "vdstomgr/storage/data_file_mending.h"
#include "vdstomgr/storage/finish_compaction.h"
#include "vdstomgr/storage/header_recovery.h"
#include "vdstomgr/storage/little_endian.h"
#include "vdstomgr/storage/storage_error.h"

namespace vdstomgr {
namespace {

/// The clusters of the records that an index should name.
class NewIndex {
 public:
  explicit NewIndex(const DataHeader& header) : header_(header) {}

  void Add(KeyBytes key, const RecordPlace& place) {
    const std::size_t at = units_.size();
    units_.resize(at + header_.ClusterBytes());
    EncodeCluster(units_.data() + at, header_.key_length, key, place);
  }
  std::uint64_t Count() const { return units_.size() / header_.ClusterBytes(); }
  const std::vector<BYTE>& Units() const { return units_; }

  /// Writes the index file, in key order, to the device.
  bool Write(const CString& path);

 private:
  std::vector<DWORD> SlotsInOrder();

  DataHeader header_;
  std::vector<BYTE> units_;
};

std::vector<DWORD> NewIndex::SlotsInOrder() {
  KeyOrder order(header_.key_type);
  if (order.IsNumber() && !units_.empty()) order.SetOrigin(LoadLittle<DWORD>(units_.data()));
  const ClusterTable table(units_.data(), header_.key_length, order);
  std::vector<DWORD> slots(units_.size() / header_.ClusterBytes());
  std::iota(slots.begin(), slots.end(), DWORD{0});
  std::stable_sort(slots.begin(), slots.end(), [&](DWORD left, DWORD right) {
    return order.Compare(table.KeyAt(left), table.KeyAt(right)) < 0;
  });
  return slots;
}

bool NewIndex::Write(const CString& path) {
  const auto unit_size = static_cast<int>(header_.ClusterBytes());
  DeleteUnlessInUse(path);
  CRkFileArrayManager file;
  if (!CRkFileArrayManager::CreateFileArray(path, header_.storage_id, unit_size) ||
      !file.OpenFile(path, unit_size)) {
    return false;
  }
  const std::vector<DWORD> slots = SlotsInOrder();
  auto* target = static_cast<BYTE*>(file.GetArray(static_cast<int>(slots.size())));
  const bool has_room = target != nullptr;
  for (std::size_t i = 0; has_room && i < slots.size(); ++i) {
    std::memcpy(target, units_.data() + slots[i] * header_.ClusterBytes(), header_.ClusterBytes());
    target += header_.ClusterBytes();
  }
  file.ReleaseArray(true);
  return has_room && SyncArray(file);
}

/// Puts the new index file in the place of the old one, which gets another name.
bool Exchange(const CString& new_index, const CString& index, RepairReport& report) {
  const bool has_old = IsThere(index);
  const CString kept = FreeNameOf(index, ".old");
  if (has_old && !MoveTo(index, kept)) return false;
  if (!MoveTo(new_index, index)) {
    if (has_old) MoveTo(kept, index);
    return false;
  }
  if (has_old) report.kept_index = kept.Str();
  return !os::Files().SyncNames(NativePath(index));
}

/// One repair of files that nobody else has open.
class Repair {
 public:
  Repair(os::ExclusiveFile& file, const CompactionFiles& files, RepairReport& report)
      : file_(file), files_(files), report_(report) {}

  bool Run();

 private:
  void Refuse(StorageFault fault, const std::string& text) {
    AddFinding(report_.found, fault, 0, text);
  }
  bool Write(DataFileMending& mending, NewIndex& index);
  void NameLost(const DataHeader& header, const OldIndex& old, const NewIndex& index);

  os::ExclusiveFile& file_;
  const CompactionFiles& files_;
  RepairReport& report_;
  std::vector<std::string> damaged_keys_;
};

bool Repair::Run() {
  std::uint64_t size = 0;
  if (file_.Size(size)) return false;
  const OldIndex old = OldIndex::Read(files_.index, size);
  const auto header = RecoverHeader(file_, old);
  report_.is_beyond_repair = !header;
  if (!header) return false;
  NewIndex index(*header);
  DataFileMending mending(file_, *header,
                          [&](KeyBytes key, const RecordPlace& place) { index.Add(key, place); });
  DataFileCheck data(file_, *header);
  StorageReport found;
  data.Walk(found, [&](const CheckedRecord& record) {
    if (record.is_live && !record.has_right_checksum)
      damaged_keys_.push_back(KeyText(*header, record.key));
    mending.Take(record);
  });
  if (found.finding_count > 0) report_.found = found;
  if (data.ReadError()) return false;
  mending.Finish();
  report_.good_records = index.Count();
  NameLost(*header, old, index);
  return Write(mending, index);
}

/// The index that is whole before anything is covered keeps a full disk from doing half of it.
bool Repair::Write(DataFileMending& mending, NewIndex& index) {
  const CString new_index = files_.index + ".repairing";
  if (const auto error = mending.Append()) {
    Refuse(StorageFault::DataFileUnreadable, "the data file: " + error.message());
    return false;
  }
  const bool is_written = index.Write(new_index);
  const auto error = is_written ? mending.Cover() : std::error_code();
  if (is_written && !error && Exchange(new_index, files_.index, report_)) return true;
  DeleteUnlessInUse(new_index);
  const auto reason = error ? error : TakeStorageError().reason;
  Refuse(StorageFault::IndexFileUnreadable,
         "the new index file cannot be written: " + reason.message());
  return false;
}

void Repair::NameLost(const DataHeader& header, const OldIndex& old, const NewIndex& index) {
  const auto keys_of = [&](const std::vector<BYTE>& units, std::vector<std::string> keys) {
    for (std::size_t at = 0; at + header.ClusterBytes() <= units.size();
         at += header.ClusterBytes()) {
      keys.push_back(KeyText(header, {units.data() + at, header.key_length}));
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
  };
  const bool has_keys = old.header.unit_size == header.ClusterBytes();
  const auto before = keys_of(has_keys ? old.units : std::vector<BYTE>(), damaged_keys_);
  const auto after = keys_of(index.Units(), {});
  std::set_difference(before.begin(), before.end(), after.begin(), after.end(),
                      std::back_inserter(report_.lost_keys));
  report_.lost_count = report_.lost_keys.size();
  if (report_.lost_count > StorageReport::kMostFindings)
    report_.lost_keys.resize(StorageReport::kMostFindings);
}

}  // namespace

RepairReport RepairStorage(const char* path) {
  RepairReport report;
  const CompactionFiles files(path);
  const bool has_names = FinishCompaction(path);
  std::unique_ptr<os::ExclusiveFile> file;
  if (!has_names || os::Files().OpenExclusive(NativePath(files.data), os::Caching::normal, file)) {
    AddFinding(report.found, StorageFault::DataFileUnreadable, 0,
               "the data file is missing or in use");
    return report;
  }
  report.found = VerifyStorage(path);
  report.was_sound = report.found.is_sound;
  report.good_records = report.found.live_records;
  report.repaired = report.was_sound || Repair(*file, files, report).Run();
  return report;
}

std::string SetStorageAside(const char* path) {
  const CString data(path);
  const CString index = IndexPathOf(data);
  const CString aside = FreeNameOf(data, ".damaged");
  if (index.IsEmpty() || !MoveTo(data, aside)) return {};
  if (!IsThere(index) || MoveTo(index, FreeNameOf(index, ".damaged"))) return aside.Str();
  MoveTo(aside, data);
  return {};
}

}  // namespace vdstomgr
