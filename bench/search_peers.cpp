#include "bench/search_peers.h"

#include <sqlite3.h>

#include <chrono>
#include <filesystem>

#include "bench/catalogue_records.h"
#include "vdstomgr/platform/dao/sqlite/functions.h"

namespace bench {
namespace {

constexpr char kColumns[] =
    "SELECT p.szGUID, p.szMD5, p.szFileName, p.dxFileSize, p.dwFolderID, p.szOPURL, p.szRegDate, "
    "p.byteUploadEnd FROM ";

void Run(const std::string& path, const std::string& sql) {
  sqlite3* db = nullptr;
  sqlite3_open(path.c_str(), &db);
  vdstomgr::sqlite::InstallFunctions(db);
  const int code = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) std::fprintf(stderr, "%s\n", sqlite3_errmsg(db));
  sqlite3_close(db);
  Require(code == SQLITE_OK, sql.c_str());
}

PHOTOINFO ReadPhoto(sqlite3_stmt* row) {
  PHOTOINFO photo;
  Reader reader(row);
  reader.Text(photo.szGUID);
  reader.Text(photo.szMD5);
  photo.SetFileName(reader.Text());
  photo.FileSize = static_cast<std::uint64_t>(sqlite3_column_double(row, 3));
  reader.Skip();
  reader.Number(photo.dwFolderID);
  photo.SetOPURL(reader.Text());
  reader.Time(photo.RegDate);
  reader.Number(photo.UploadEnd);
  return photo;
}

}  // namespace

PlainLike::PlainLike(const std::string& path)
    : PlainLike(path, "SearchPhotoMaster p WHERE p.szFileName LIKE ?1") {}

// The dialect's LIKE must not take the engine's place here.
PlainLike::PlainLike(const std::string& path, const std::string& from_and_where)
    : database_(path, PeerDatabase::Like::Engines),
      search_(database_.Prepare(kColumns + from_and_where + " ORDER BY p.szFileName LIMIT ?2")),
      recent_(database_.Prepare(std::string(kColumns) +
                                "SearchPhotoMaster p ORDER BY p.szRegDate DESC LIMIT ?2")),
      big_(database_.Prepare(std::string(kColumns) +
                             "SearchPhotoMaster p ORDER BY p.dxFileSize DESC LIMIT ?2")) {}

void PlainLike::Search(const std::string& text, int most, vdstomgr::PhotoArray& photos) {
  const std::string pattern = "%" + text + "%";
  sqlite3_bind_text(search_.get(), 1, pattern.c_str(), -1, SQLITE_TRANSIENT);
  Read(search_, most, photos);
}

void PlainLike::Read(const PeerStatement& query, int most, vdstomgr::PhotoArray& photos) {
  sqlite3_bind_int(query.get(), 2, most);
  while (Next(query)) photos.Add(ReadPhoto(query.get()));
  Reset(query);
}

Trigram::Trigram(const std::string& path)
    : PlainLike(path,
                "Trigrams t CROSS JOIN SearchPhotoMaster p ON p.rowid = t.rowid WHERE t.szFileName "
                "LIKE ?1") {}

Trigram::Cost Trigram::Make(const std::string& path) {
  const auto before = double(std::filesystem::file_size(path));
  const auto start = std::chrono::steady_clock::now();
  Run(path,
      "CREATE VIRTUAL TABLE Trigrams USING fts5(szFileName, content='SearchPhotoMaster', "
      "columnsize=0, tokenize='trigram'); INSERT INTO Trigrams(Trigrams) VALUES ('rebuild'); "
      "PRAGMA wal_checkpoint(TRUNCATE)");
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  return {took.count(), double(std::filesystem::file_size(path)) - before};
}

void RemoveTextIndex(const std::string& path) {
  const std::string name = "\"vdsto.SearchPhotoMaster.szFileName.";
  Run(path, "DROP TRIGGER " + name + "insert\"; DROP TRIGGER " + name + "delete\"; DROP TRIGGER " +
                name + "update\"");
}

}  // namespace bench
