#include "bench/catalogue_files.h"

#include <sqlite3.h>
#include <unistd.h>

#include <map>

#include "bench/catalogue_case.h"
#include "bench/catalogue_records.h"
#include "vdstomgr/platform/dao/sqlite/functions.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kBatch = 1000;

void AddFolders(CRkPhotoDBManager& catalogue, int photos) {
  CArray<FOLDERINFO, FOLDERINFO&> folders;
  for (DWORD id = 1; id <= FolderOf(std::uint64_t(photos)); ++id) folders.Add(FolderRecord(id));
  Require(catalogue.AddFolder(folders, 0), "AddFolder");
}

void AddPhotos(CRkPhotoDBManager& catalogue, int photos) {
  for (int done = 0; done < photos; done += kBatch) {
    CArray<PHOTOINFO, PHOTOINFO&> batch;
    for (int i = 0; i < kBatch; ++i) batch.Add(PhotoOf(std::uint64_t(done + i)));
    Require(catalogue.AddPhotoInfo(batch), "AddPhotoInfo");
  }
}

void AddTags(CRkPhotoDBManager& catalogue, int photos) {
  std::map<DWORD, CStringArray> tagged;
  for (int i = 0; i < photos; ++i) {
    for (const DWORD tag : TagsOf(std::uint64_t(i))) tagged[tag].Add(GuidOf(i).c_str());
  }
  for (const auto& [tag, guids] : tagged) {
    Require(catalogue.AddTagInfo(("태그 " + std::to_string(tag)).c_str(), tag), "AddTagInfo");
    Require(catalogue.AddTag(guids, tag, false), "AddTag");
  }
}

}  // namespace

OurCatalogue::OurCatalogue(const std::string& path) {
  Require(OpenDB(path.c_str(), ""), "OpenDB");
}

CatalogueMaster::CatalogueMaster(const fs::path& folder, int photos)
    : path_(folder / (std::to_string(photos) + ".vdb")), photos_(photos) {
  Require(CRkPhotoDBManager().CreateDB(path_.string().c_str(), nullptr), "CreateDB");
  OurCatalogue catalogue(path_.string());
  AddFolders(catalogue, photos);
  AddPhotos(catalogue, photos);
  AddTags(catalogue, photos);
}

CatalogueMaster::~CatalogueMaster() {
  fs::remove(path_);
}

CaseFiles::CaseFiles(const CatalogueMaster& master)
    : ours_(master.Path().string() + ".ours"), peer_(master.Path().string() + ".peer") {
  for (const std::string& path : {ours_, peer_}) fs::copy_file(master.Path(), path);
  ::sync();  // what copying has left to write must not be paid for by what is measured
}

CaseFiles::~CaseFiles() {
  for (const std::string& path : {ours_, peer_}) {
    for (const char* companion : {"", "-wal", "-shm"}) fs::remove(path + companion);
  }
}

void RunBeside(const std::string& path, const std::string& sql) {
  sqlite3* db = nullptr;
  sqlite3_open(path.c_str(), &db);
  vdstomgr::sqlite::InstallFunctions(db);
  Require(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, sql.c_str());
  sqlite3_close(db);
}

void RemoveAdded(const std::string& path, int photos) {
  RunBeside(path, "DELETE FROM PhotoMaster WHERE rowid > " + std::to_string(photos) +
                      "; PRAGMA wal_checkpoint(TRUNCATE)");
}

}  // namespace bench
