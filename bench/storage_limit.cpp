#include <unistd.h>

#include "bench/storage_growing_map.h"
#include "bench/storage_key_order.h"
#include "bench/storage_peers.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

struct RecordHead {
  std::uint32_t length;  ///< of the blob that follows
  std::uint32_t live;
  Key key;
};

/// What no store on mapped files can undercut, and no more than its user needs: each record is
/// copied to the end of one mapped file, and the number of bytes in use, which stands in the first
/// eight, is set last, so that a killed process loses nothing. The order of the keys is kept in
/// memory only, and read from the data file when it is opened. There is no checksum, no lock and no
/// index file; what those cost is part of a ratio against this.
///
/// Compact copies the live records, in the order in which they lie, into a new file: the copying of
/// the live bytes by the same means.
template <class Order>
class Limit : public BlobStore {
 public:
  explicit Limit(const fs::path& folder)
      : path_(folder / "blobs"), file_(std::make_unique<GrowingMap>(path_)) {
    if (End() == 0) SetEnd(sizeof(std::uint64_t));
    std::uint64_t offset = sizeof(std::uint64_t);
    while (offset < End()) {
      const RecordHead head = HeadAt(offset);
      if (head.live) bulk_.push_back({head.key, head.length, offset});
      offset += sizeof head + head.length;
    }
    FinishBulk();
  }

  void Put(const char* key, Blob blob) override { order_.Insert(Append(key, blob)); }
  void BulkPut(const char* key, Blob blob) override { bulk_.push_back(Append(key, blob)); }

  void FinishBulk() override {
    std::vector<Entry*> present;
    order_.Collect(present);
    for (const Entry* entry : present) bulk_.push_back(*entry);
    std::sort(bulk_.begin(), bulk_.end());
    order_.Assign(std::move(bulk_));
    bulk_.clear();
  }

  std::uint64_t Get(const char* key) override {
    const Entry* entry = order_.Find(KeyOf(key));
    if (entry == nullptr) return 0;
    return SumOf(file_->Data() + entry->offset + sizeof(RecordHead), entry->length);
  }

  void Remove(const char* key) override {
    Entry* entry = order_.Find(KeyOf(key));
    Require(entry != nullptr, "Find");
    RecordHead head = HeadAt(entry->offset);
    head.live = 0;
    std::memcpy(file_->Data() + entry->offset, &head, sizeof head);
    order_.Erase(entry);
  }

  bool Compact() override {
    std::vector<Entry*> live;
    order_.Collect(live);
    std::sort(live.begin(), live.end(),
              [](const Entry* left, const Entry* right) { return left->offset < right->offset; });
    const fs::path compacted = path_.string() + ".new";
    auto copy = std::make_unique<GrowingMap>(compacted);
    std::uint64_t end = sizeof end;
    for (Entry* entry : live) {
      const std::size_t size = sizeof(RecordHead) + entry->length;
      copy->Reserve(end + size);
      std::memcpy(copy->Data() + end, file_->Data() + entry->offset, size);
      entry->offset = end;
      end += size;
    }
    file_ = std::move(copy);
    SetEnd(end);
    SyncFile(compacted);
    fs::rename(compacted, path_);
    return true;
  }

 private:
  std::uint64_t End() const {
    std::uint64_t end;
    std::memcpy(&end, file_->Data(), sizeof end);
    return end;
  }
  void SetEnd(std::uint64_t end) { std::memcpy(file_->Data(), &end, sizeof end); }

  RecordHead HeadAt(std::uint64_t offset) const {
    RecordHead head;
    std::memcpy(&head, file_->Data() + offset, sizeof head);
    return head;
  }

  Entry Append(const char* key, Blob blob) {
    const RecordHead head = {std::uint32_t(blob.size()), 1, KeyOf(key)};
    const std::uint64_t offset = End();
    const std::uint64_t end = offset + sizeof head + blob.size();
    file_->Reserve(end);
    std::memcpy(file_->Data() + offset, &head, sizeof head);
    std::memcpy(file_->Data() + offset + sizeof head, blob.data(), blob.size());
    SetEnd(end);
    return {head.key, head.length, offset};
  }

  fs::path path_;
  std::unique_ptr<GrowingMap> file_;
  Order order_;
  std::vector<Entry> bulk_;
};

}  // namespace

std::unique_ptr<BlobStore> OpenLimit(const fs::path& folder) {
  return std::make_unique<Limit<PagedOrder>>(folder);
}

std::unique_ptr<BlobStore> OpenFlatLimit(const fs::path& folder) {
  return std::make_unique<Limit<FlatOrder>>(folder);
}

}  // namespace bench
