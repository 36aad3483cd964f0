#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

namespace bench {

constexpr int kKeyLength = 44;
/// Peers that have transactions commit this many records of a bulk put at a time.
constexpr int kBulkBatch = 1000;

using Blob = std::span<const unsigned char>;

/// Blobs under keys of 44 upper-case characters, in files of one folder. Nobody waits for the
/// device: what a call has acknowledged survives the end of the process, not a power cut. That is
/// what mapped files give without a flush, so every peer is set to give the same and no more. A
/// failure ends the program.
class BlobStore {
 public:
  virtual ~BlobStore() = default;

  /// Stores a blob under a new key, to be found from now on.
  virtual void Put(const char* key, Blob blob) = 0;
  /// As Put, but it need not be found before FinishBulk.
  virtual void BulkPut(const char* key, Blob blob) = 0;
  virtual void FinishBulk() = 0;
  /// The sum of the blob's bytes taken as 64-bit words, read where the store keeps them if it lets
  /// us; 0 when there is no such key.
  virtual std::uint64_t Get(const char* key) = 0;
  virtual void Remove(const char* key) = 0;
  /// Gives the space of removed blobs back to the file system and stays open; false when that
  /// happens all the time. Here everybody waits: the copy is on the device before the old files,
  /// which may have been there for long, are given up.
  virtual bool Compact() = 0;
};

/// Each opens the store in a folder, which is made when it is missing.
std::unique_ptr<BlobStore> OpenOurs(const std::filesystem::path& folder);
std::unique_ptr<BlobStore> OpenLimit(const std::filesystem::path& folder);
std::unique_ptr<BlobStore> OpenFlatLimit(const std::filesystem::path& folder);
std::unique_ptr<BlobStore> OpenLmdb(const std::filesystem::path& folder);
std::unique_ptr<BlobStore> OpenRocksDb(const std::filesystem::path& folder);
std::unique_ptr<BlobStore> OpenSqlite(const std::filesystem::path& folder);
std::unique_ptr<BlobStore> OpenPlainFiles(const std::filesystem::path& folder);

/// Returns when the device holds the file.
void SyncFile(const std::filesystem::path& path);

std::uint64_t SumOf(const void* data, std::size_t length);

/// Ends the program with a message unless `done`.
void Require(bool done, const char* what);

}  // namespace bench
