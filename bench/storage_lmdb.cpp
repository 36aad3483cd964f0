#include <fcntl.h>
#include <lmdb.h>
#include <unistd.h>

#include "bench/storage_peers.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

void Check(int code, const char* what) {
  Require(code == MDB_SUCCESS, what);
}

MDB_val ValueOf(const void* data, std::size_t size) {
  return {size, const_cast<void*>(data)};
}

/// Written through a writable map and never synced (MDB_WRITEMAP | MDB_NOSYNC): its fastest setting
/// whose commits survive the end of the process. One transaction for each put, a thousand records
/// in one for bulk; reads renew one read transaction each, so that they see the latest commit.
class Lmdb : public BlobStore {
 public:
  explicit Lmdb(const fs::path& folder) : path_(folder / "data.mdb") { Open(); }
  ~Lmdb() override { Close(); }

  void Put(const char* key, Blob blob) override {
    Begin();
    Insert(key, blob);
    Commit();
  }

  void BulkPut(const char* key, Blob blob) override {
    if (writing_ == nullptr) Begin();
    Insert(key, blob);
    if (++batch_ % kBulkBatch == 0) Commit();
  }

  void FinishBulk() override {
    if (writing_ != nullptr) Commit();
  }

  std::uint64_t Get(const char* key) override {
    MDB_val name = ValueOf(key, kKeyLength);
    MDB_val value;
    Check(mdb_txn_renew(reading_), "mdb_txn_renew");
    const int code = mdb_get(reading_, table_, &name, &value);
    const std::uint64_t sum = code == MDB_SUCCESS ? SumOf(value.mv_data, value.mv_size) : 0;
    mdb_txn_reset(reading_);
    return sum;
  }

  void Remove(const char* key) override {
    Begin();
    MDB_val name = ValueOf(key, kKeyLength);
    Check(mdb_del(writing_, table_, &name, nullptr), "mdb_del");
    Commit();
  }

  bool Compact() override {
    const fs::path compacted = path_.string() + ".new";
    const int file = ::open(compacted.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    Check(mdb_env_copyfd2(environment_, file, MDB_CP_COMPACT), "mdb_env_copyfd2");
    ::close(file);
    Close();
    SyncFile(compacted);
    fs::rename(compacted, path_);
    Open();
    return true;
  }

 private:
  void Open() {
    Check(mdb_env_create(&environment_), "mdb_env_create");
    Check(mdb_env_set_mapsize(environment_, std::size_t{32} << 30), "mdb_env_set_mapsize");
    Check(mdb_env_open(environment_, path_.c_str(), MDB_NOSUBDIR | MDB_WRITEMAP | MDB_NOSYNC, 0644),
          "mdb_env_open");
    Begin();
    Check(mdb_dbi_open(writing_, nullptr, 0, &table_), "mdb_dbi_open");
    Commit();
    Check(mdb_txn_begin(environment_, nullptr, MDB_RDONLY, &reading_), "mdb_txn_begin");
    mdb_txn_reset(reading_);
  }

  void Close() {
    FinishBulk();
    mdb_txn_abort(reading_);
    mdb_env_close(environment_);
  }

  void Begin() { Check(mdb_txn_begin(environment_, nullptr, 0, &writing_), "mdb_txn_begin"); }

  void Commit() {
    Check(mdb_txn_commit(writing_), "mdb_txn_commit");
    writing_ = nullptr;
  }

  void Insert(const char* key, Blob blob) {
    MDB_val name = ValueOf(key, kKeyLength);
    MDB_val value = ValueOf(blob.data(), blob.size());
    Check(mdb_put(writing_, table_, &name, &value, 0), "mdb_put");
  }

  fs::path path_;
  MDB_env* environment_ = nullptr;
  MDB_dbi table_ = 0;
  MDB_txn* writing_ = nullptr;
  MDB_txn* reading_ = nullptr;
  int batch_ = 0;
};

}  // namespace

std::unique_ptr<BlobStore> OpenLmdb(const fs::path& folder) {
  return std::make_unique<Lmdb>(folder);
}

}  // namespace bench
