#include <rocksdb/db.h>
#include <rocksdb/filter_policy.h>
#include <rocksdb/table.h>

#include "bench/storage_peers.h"

namespace bench {
namespace {

void Check(const rocksdb::Status& status, const char* what) {
  Require(status.ok(), what);
}

/// Every blob in a blob file, uncompressed as everywhere here, the keys' tables with a filter and
/// a cache that holds them. The log is written and never synced (WriteOptions::sync false): a
/// commit survives the end of the process. Bulk is batches of a thousand. Compaction syncs its
/// files by itself.
class RocksDb : public BlobStore {
 public:
  explicit RocksDb(const std::filesystem::path& folder) {
    rocksdb::Options options;
    options.create_if_missing = true;
    options.IncreaseParallelism(2);
    options.compression = rocksdb::kNoCompression;
    options.enable_blob_files = true;
    options.enable_blob_garbage_collection = true;
    rocksdb::BlockBasedTableOptions tables;
    tables.filter_policy.reset(rocksdb::NewBloomFilterPolicy(10));
    tables.block_cache = rocksdb::NewLRUCache(std::size_t{128} << 20);
    options.table_factory.reset(rocksdb::NewBlockBasedTableFactory(tables));
    rocksdb::DB* db = nullptr;
    Check(rocksdb::DB::Open(options, folder.string(), &db), "rocksdb::DB::Open");
    db_.reset(db);
  }

  void Put(const char* key, Blob blob) override {
    Check(db_->Put({}, SliceOf(key), SliceOf(blob)), "Put");
  }

  void BulkPut(const char* key, Blob blob) override {
    Check(batch_.Put(SliceOf(key), SliceOf(blob)), "WriteBatch::Put");
    if (batch_.Count() == kBulkBatch) FinishBulk();
  }

  void FinishBulk() override {
    Check(db_->Write({}, &batch_), "Write");
    batch_.Clear();
  }

  std::uint64_t Get(const char* key) override {
    rocksdb::PinnableSlice value;
    const rocksdb::Status status = db_->Get({}, db_->DefaultColumnFamily(), SliceOf(key), &value);
    return status.ok() ? SumOf(value.data(), value.size()) : 0;
  }

  void Remove(const char* key) override { Check(db_->Delete({}, SliceOf(key)), "Delete"); }

  bool Compact() override {
    rocksdb::CompactRangeOptions options;
    options.bottommost_level_compaction = rocksdb::BottommostLevelCompaction::kForce;
    options.blob_garbage_collection_policy = rocksdb::BlobGarbageCollectionPolicy::kForce;
    options.blob_garbage_collection_age_cutoff = 1;
    Check(db_->CompactRange(options, nullptr, nullptr), "CompactRange");
    return true;
  }

 private:
  static rocksdb::Slice SliceOf(const char* key) { return {key, kKeyLength}; }
  static rocksdb::Slice SliceOf(Blob blob) {
    return {reinterpret_cast<const char*>(blob.data()), blob.size()};
  }

  std::unique_ptr<rocksdb::DB> db_;
  rocksdb::WriteBatch batch_;
};

}  // namespace

std::unique_ptr<BlobStore> OpenRocksDb(const std::filesystem::path& folder) {
  return std::make_unique<RocksDb>(folder);
}

}  // namespace bench
