#include <sqlite3.h>

#include "bench/storage_peers.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

/// One table of key and blob, prepared statements, one connection that keeps the file to itself,
/// reads through a map. Write-ahead log with synchronous OFF: a commit survives the end of the
/// process, and nobody syncs, not even a checkpoint. One transaction for each put, a thousand
/// records in one for bulk. Pages of 4 KiB, in which these blobs lie without waste.
class Sqlite : public BlobStore {
 public:
  explicit Sqlite(const fs::path& folder) : path_(folder / "blobs.sqlite") { Open(); }
  ~Sqlite() override { Close(); }

  void Put(const char* key, Blob blob) override { Insert(key, blob); }

  void BulkPut(const char* key, Blob blob) override {
    if (batch_ == 0) Execute("BEGIN");
    Insert(key, blob);
    if (++batch_ == kBulkBatch) FinishBulk();
  }

  void FinishBulk() override {
    if (batch_ == 0) return;
    Execute("COMMIT");
    batch_ = 0;
  }

  std::uint64_t Get(const char* key) override {
    BindKey(get_, key);
    std::uint64_t sum = 0;
    if (sqlite3_step(get_) == SQLITE_ROW) {
      const void* data = sqlite3_column_blob(get_, 0);
      sum = SumOf(data, std::size_t(sqlite3_column_bytes(get_, 0)));
    }
    sqlite3_reset(get_);
    return sum;
  }

  void Remove(const char* key) override {
    BindKey(remove_, key);
    Finish(remove_, "DELETE");
  }

  bool Compact() override {
    const fs::path compacted = path_.string() + ".new";
    Execute(("VACUUM INTO '" + compacted.string() + "'").c_str());
    Close();
    SyncFile(compacted);
    fs::rename(compacted, path_);
    Open();
    return true;
  }

 private:
  void Open() {
    Require(sqlite3_open(path_.c_str(), &db_) == SQLITE_OK, "sqlite3_open");
    Execute("PRAGMA locking_mode = EXCLUSIVE");
    Execute("PRAGMA journal_mode = WAL");
    Execute("PRAGMA synchronous = OFF");
    Execute("PRAGMA cache_size = -65536");
    Execute("PRAGMA mmap_size = 34359738368");
    Execute("CREATE TABLE IF NOT EXISTS Blobs (key TEXT NOT NULL PRIMARY KEY, data BLOB)");
    insert_ = Prepare("INSERT INTO Blobs (key, data) VALUES (?, ?)");
    get_ = Prepare("SELECT data FROM Blobs WHERE key = ?");
    remove_ = Prepare("DELETE FROM Blobs WHERE key = ?");
  }

  void Close() {
    FinishBulk();
    for (sqlite3_stmt* statement : {insert_, get_, remove_}) sqlite3_finalize(statement);
    Require(sqlite3_close(db_) == SQLITE_OK, "sqlite3_close");
  }

  sqlite3_stmt* Prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v3(db_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) ==
                SQLITE_OK,
            sql);
    return statement;
  }

  void Execute(const char* sql) {
    Require(sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
  }

  static void BindKey(sqlite3_stmt* statement, const char* key) {
    sqlite3_bind_text(statement, 1, key, kKeyLength, SQLITE_STATIC);
  }

  static void Finish(sqlite3_stmt* statement, const char* what) {
    Require(sqlite3_step(statement) == SQLITE_DONE, what);
    sqlite3_reset(statement);
  }

  void Insert(const char* key, Blob blob) {
    BindKey(insert_, key);
    sqlite3_bind_blob(insert_, 2, blob.data(), int(blob.size()), SQLITE_STATIC);
    Finish(insert_, "INSERT");
  }

  fs::path path_;
  sqlite3* db_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
  sqlite3_stmt* get_ = nullptr;
  sqlite3_stmt* remove_ = nullptr;
  int batch_ = 0;
};

}  // namespace

std::unique_ptr<BlobStore> OpenSqlite(const fs::path& folder) {
  return std::make_unique<Sqlite>(folder);
}

}  // namespace bench
