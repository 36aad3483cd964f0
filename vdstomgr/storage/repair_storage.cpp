#include "vdstomgr/storage/repair_storage.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/cluster_table.h"
#include "vdstomgr/storage/compaction_files.h"
#include "vdstomgr/storage/data_file_check.h"
#include "vdstomgr/storage/little_endian.h"

namespace vdstomgr {
namespace {

bool IsThere(const CString& path) {
  return os::Files().Exists(NativePath(path));
}

/// A compaction that was killed while it renamed has left no data file, but the old one or, if
/// somebody has deleted that, the new one.
void RestoreNames(const CompactionFiles& files) {
  if (IsThere(files.data)) return;
  if (MoveTo(files.old_data, files.data)) {
    MoveTo(files.old_index, files.index);
  } else {
    MoveTo(files.new_data, files.data);
  }
}

/// The clusters of the records that an index should name.
class NewIndex {
 public:
  explicit NewIndex(const DataHeader& header) : header_(header) {}

  void Add(const CheckedRecord& record) {
    const std::size_t at = units_.size();
    units_.resize(at + header_.ClusterBytes());
    EncodeCluster(units_.data() + at, header_.key_length, record.key, record.place);
  }

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

/// A name beside the index file that is not taken.
CString KeptNameOf(const CString& index) {
  CString name = index + ".old";
  for (int number = 2; IsThere(name); ++number) name.Format("%s.old.%d", index.GetString(), number);
  return name;
}

/// Puts the new index file in the place of the old one, which gets another name.
bool Exchange(const CString& new_index, const CString& index, RepairReport& report) {
  const bool has_old = IsThere(index);
  const CString kept = KeptNameOf(index);
  if (has_old && !MoveTo(index, kept)) return false;
  if (!MoveTo(new_index, index)) {
    if (has_old) MoveTo(kept, index);
    return false;
  }
  if (has_old) report.kept_index = kept.Str();
  return !os::Files().SyncNames(NativePath(index));
}

bool CutDataLength(os::ExclusiveFile& file, const DataFileCheck& data) {
  if (data.Header().data_length <= data.End()) return true;
  BYTE length[sizeof(std::uint64_t)];
  StoreLittle(length, data.End());
  return !file.WriteAt(kDataLengthAt, length, sizeof length) && !file.Sync();
}

bool Rebuild(os::ExclusiveFile& file, const CString& index_path, RepairReport& report) {
  auto data = DataFileCheck::Begin(file, report.found);
  if (!data) return false;
  NewIndex index(data->Header());
  data->Walk(report.found, [&](const CheckedRecord& record) {
    if (record.is_live && record.has_right_checksum) index.Add(record);
  });
  report.good_records = report.found.live_records;
  const CString new_index = index_path + ".repairing";
  if (index.Write(new_index) && CutDataLength(file, *data) &&
      Exchange(new_index, index_path, report)) {
    return true;
  }
  DeleteUnlessInUse(new_index);
  AddFinding(report.found, StorageFault::IndexFileUnreadable, 0,
             "the new index file cannot be written");
  return false;
}

}  // namespace

RepairReport RepairStorage(const char* path) {
  RepairReport report;
  const CompactionFiles files(path);
  RestoreNames(files);
  std::unique_ptr<os::ExclusiveFile> file;
  if (files.index.IsEmpty() ||
      os::Files().OpenExclusive(NativePath(files.data), os::Caching::normal, file)) {
    AddFinding(report.found, StorageFault::DataFileUnreadable, 0,
               "the data file is missing or in use");
    return report;
  }
  report.repaired = Rebuild(*file, files.index, report);
  return report;
}

}  // namespace vdstomgr
