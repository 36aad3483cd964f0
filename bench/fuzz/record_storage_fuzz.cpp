#include "bench/fuzz/fuzz_files.h"
#include "vdstomgr/storage/image_storage.h"
#include "vdstomgr/storage/read_storage.h"
#include "vdstomgr/storage/record_storage.h"
#include "vdstomgr/storage/repair_storage.h"
#include "vdstomgr/storage/sync_storage.h"
#include "vdstomgr/storage/verify_storage.h"

// A data file and an index file of any bytes: any operations on them, by the record storage and by
// the image storage, then verifying, compacting and repairing.
namespace {

using fuzz::Playground;
using fuzz::Require;
using fuzz::Step;

constexpr int kMostRecords = 5000;
constexpr BYTE kData[256] = {1, 2, 3};

std::string DataPath() {
  return Playground::Get().Path("store.pdb");
}

void ReadAll(CRkStorageManager& storage) {
  for (int i = 0; i < storage.GetSize(); ++i) {
    int length = 0;
    const BYTE* const data = storage.GetBuffer(i, length);
    if (data != nullptr) fuzz::Touch(data, static_cast<std::size_t>(length));
    storage.ReleaseBuffer();
  }
}

class StorageSession {
 public:
  bool Load() { return storage_.LoadStorageFile(DataPath().c_str()); }

  void Do(const Step& step) {
    switch (step.code % 10) {
      case 0:
        return Find(step);
      case 1:
        return ReadKeys(step.Position());
      case 2:
        return ReadData(step.Position());
      case 3:
        return Add(step);
      case 4:
        return Remove(step);
      case 5:
        storage_.SortStorageCluster();
        return step.Flag() ? void(vdstomgr::SyncStorage(storage_)) : storage_.Flush();
      case 6:
        return Compact(step);
      case 7:
        return ReadAll(storage_);
      case 8:
        storage_.FreeStorageFile();
        return void(Load());
      default:
        return LookAtClusters(step);
    }
  }

 private:
  void Find(const Step& step) {
    CString key = step.Text().c_str();
    if (step.b % 2 == 0) storage_.GetKeyAtString(step.Position(), key);
    const int found[] = {storage_.FindDWORD(step.Number(), step.Flag()),
                         storage_.FindString(key, step.Flag()),
                         storage_.FindStringAt(key, step.Flag())};
    const int size = std::max(storage_.GetSize(), 1);
    for (const int position : found) Require(position >= -1 && position < size, "a position");
  }

  void ReadKeys(int position) {
    CString key;
    storage_.GetKeyAtString(position, key);
    storage_.FindDWORD(storage_.GetKeyAtDWORD(position), true);
  }

  void ReadData(int position) {
    int length = 0;
    const BYTE* const data = storage_.GetBuffer(position, length);
    if (data != nullptr) fuzz::Touch(data, static_cast<std::size_t>(length));
    storage_.ReleaseBuffer();
  }

  void Add(const Step& step) {
    if (storage_.GetSize() > kMostRecords) return;
    storage_.Add(step.Number(), kData, step.b, step.Flag());
    storage_.Add(step.Text().c_str(), kData, step.b, step.Flag());
  }

  void Remove(const Step& step) {
    const int size = storage_.GetSize();
    const bool removed = step.c == 0xFF ? storage_.RemoveAll() : storage_.RemoveAt(step.Position());
    Require(storage_.GetSize() <= size - (removed && size > 0), "a removal");
  }

  void Compact(const Step& step) {
    const int size = storage_.GetSize();
    if (!storage_.CompactStorageFileOnline(DataPath().c_str(), step.b % 4)) return;
    Require(storage_.GetSize() == size, "all records after compaction");
  }

  void LookAtClusters(const Step& step) {
    CRkFileArrayManager& clusters = *storage_.GetClusterArray();
    Require(clusters.GetSize() == storage_.GetSize(), "a cluster for each record");
    if (step.Flag()) clusters.RemoveAt(step.Position());
  }

  CRkStorageManager storage_;
};

void DoWithImages(const std::vector<Step>& steps) {
  CRkPhotoImageStorage images;
  if (!images.OpenFile(DataPath().c_str())) return;
  for (const Step& step : steps) {
    const std::string key = step.Text();
    CBinData data;
    const DWORD loan = images.Lock_Image(key.c_str(), data, step.Flag());
    fuzz::Touch(data.GetData(), data.GetLength());
    CRkPhotoImageStorage::Free_Image(loan);
    if (step.code % 4 == 0 && images.GetSize() < kMostRecords) {
      images.SetImage(key.c_str(), kData, step.b, step.Flag(), true);
    } else if (step.code % 4 == 1) {
      images.DelImage(key.c_str(), step.Flag());
    } else if (step.code % 4 == 2) {
      images.ReduceData(step.b % 4);
    } else {
      images.GetImage(key.c_str(), data, step.Flag());
    }
  }
}

/// Seldom, because it waits a little before it gives up.
void LookFromOutside(const Step& step) {
  if (step.code != 0x7F) return;
  CBinData data;
  vdstomgr::ReadStorage(DataPath().c_str(), step.Text().c_str(), data);
  fuzz::Touch(data.GetData(), data.GetLength());
}

/// What a repair leaves as it is: damage in the data file. Damaged records have no cluster.
void CheckLeftovers() {
  using vdstomgr::StorageFault;
  std::uint64_t damaged = 0;
  for (const auto& finding : vdstomgr::VerifyStorage(DataPath().c_str()).findings) {
    const bool is_damage = finding.fault == StorageFault::RecordDamaged ||
                           finding.fault == StorageFault::RecordChecksum ||
                           finding.fault == StorageFault::RecordTailShort;
    if (is_damage) damaged = finding.offset;
    Require(is_damage ||
                (finding.fault == StorageFault::RecordWithoutCluster && finding.offset == damaged),
            finding.text.c_str());
  }
}

/// After a repair the pair loads, and each record of the index can be read.
void CheckRepair() {
  const vdstomgr::RepairReport report = vdstomgr::RepairStorage(DataPath().c_str());
  if (!report.repaired) return;
  CRkStorageManager storage;
  Require(storage.LoadStorageFile(DataPath().c_str()), "loading after a repair");
  Require(std::size_t(storage.GetSize()) == report.good_records, "the good records");
  for (int i = 0; i < storage.GetSize(); ++i) {
    int length = 0;
    Require(storage.GetBuffer(i, length) != nullptr, "a readable record after a repair");
    storage.ReleaseBuffer();
  }
  storage.FreeStorageFile();
  CheckLeftovers();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const BYTE* data, std::size_t size) {
  const Playground& playground = Playground::Get();
  fuzz::Input input(data, size);
  playground.Clear();
  playground.Write("store.pdb", input.TakeFile());
  playground.Write("store.pdx", input.Rest());
  vdstomgr::VerifyStorage(DataPath().c_str());
  if (!input.Steps().empty()) LookFromOutside(input.Steps().back());
  const bool starts_with_images = !input.Steps().empty() && input.Steps()[0].code >= 0x80;
  if (starts_with_images) {
    DoWithImages(input.Steps());
  } else {
    StorageSession session;
    session.Load();
    for (const Step& step : input.Steps()) session.Do(step);
  }
  vdstomgr::VerifyStorage(DataPath().c_str());
  CRkStorageManager::CompactStorageFile(DataPath().c_str());
  CheckRepair();
  return 0;
}
