#include "bench/storage_peers.h"
#include "vdstomgr/storage/record_storage.h"

namespace bench {
namespace {

class Ours : public BlobStore {
 public:
  explicit Ours(const std::filesystem::path& folder) : path_((folder / "blobs.pdb").string()) {
    if (!std::filesystem::exists(path_)) {
      Require(CRkStorageManager::CreateStorageFile(path_.c_str(), 1, 'S', kKeyLength),
              "CreateStorageFile");
    }
    Require(storage_.LoadStorageFile(path_.c_str(), 2, 3), "LoadStorageFile");
  }

  void Put(const char* key, Blob blob) override { Add(key, blob, true); }
  void BulkPut(const char* key, Blob blob) override { Add(key, blob, false); }
  void FinishBulk() override { Require(storage_.SortStorageCluster(), "SortStorageCluster"); }

  std::uint64_t Get(const char* key) override {
    const int position = storage_.FindString(key, true);
    if (position == -1) return 0;
    int length = 0;
    const BYTE* data = storage_.GetBuffer(position, length);
    Require(data != nullptr, "GetBuffer");
    const std::uint64_t sum = SumOf(data, std::size_t(length));
    storage_.ReleaseBuffer();
    return sum;
  }

  void Remove(const char* key) override {
    Require(storage_.RemoveAt(storage_.FindString(key, true)), "RemoveAt");
  }

  bool Compact() override {
    Require(storage_.CompactStorageFileOnline(path_.c_str(), 0), "CompactStorageFileOnline");
    return true;
  }

 private:
  void Add(const char* key, Blob blob, bool sort) {
    Require(storage_.Add(key, const_cast<BYTE*>(blob.data()), int(blob.size()), sort), "Add");
  }

  std::string path_;
  CRkStorageManager storage_;
};

}  // namespace

std::unique_ptr<BlobStore> OpenOurs(const std::filesystem::path& folder) {
  return std::make_unique<Ours>(folder);
}

}  // namespace bench
