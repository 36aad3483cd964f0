#pragma once

#include <memory>
#include <string>

#include "vdstomgr/records/folder_info.h"
#include "vdstomgr/records/photo_info.h"

struct sqlite3;
struct sqlite3_stmt;

namespace bench {

/// What a careful programmer would write by hand: the engine's C interface, one prepared statement
/// per operation, columns by number, no layer between. The same file, schema and settings as the
/// library, and the same text conversions at the boundary.
class PeerCatalogue {
 public:
  explicit PeerCatalogue(const std::string& path);
  ~PeerCatalogue();
  PeerCatalogue(const PeerCatalogue&) = delete;
  PeerCatalogue& operator=(const PeerCatalogue&) = delete;

  void Begin();
  void Commit();
  /// One INSERT; commits by itself outside Begin and Commit.
  bool InsertPhoto(const PHOTOINFO& photo);
  bool HasPhoto(const char* guid);
  bool UpdatePhoto(const PHOTOINFO& photo);
  bool ReadPhoto(const char* guid, PHOTOINFO& photo);
  bool ReadFolder(DWORD id, FOLDERINFO& folder);
  bool SetTitle(const char* guid, const char* title);

 private:
  sqlite3_stmt* Prepare(const std::string& sql);

  sqlite3* db_ = nullptr;
  sqlite3_stmt* begin_;
  sqlite3_stmt* commit_;
  sqlite3_stmt* insert_;
  sqlite3_stmt* has_;
  sqlite3_stmt* update_;
  sqlite3_stmt* read_photo_;
  sqlite3_stmt* read_folder_;
  sqlite3_stmt* set_title_;
};

}  // namespace bench
