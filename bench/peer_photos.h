#pragma once

#include <string>

#include "bench/peer_database.h"
#include "vdstomgr/records/photo_info.h"

namespace bench {

inline constexpr int kPhotoColumnCount = 53;
/// The columns of a photo, separated by commas, and the record made of them.
std::string PhotoColumns(const char* prefix = "");
void FillPhoto(Reader row, PHOTOINFO& photo);

/// The photo table by hand.
class PeerPhotos {
 public:
  explicit PeerPhotos(const std::string& path);

  void Begin() { db_.Begin(); }
  void Commit() { db_.Commit(); }
  bool Insert(const PHOTOINFO& photo);
  bool Has(const char* guid);
  /// Writes every column.
  bool Update(const PHOTOINFO& photo);
  bool Read(const char* guid, PHOTOINFO& photo);
  bool SetTitle(const char* guid, const char* title);

 private:
  PeerDatabase db_;
  PeerStatement insert_;
  PeerStatement has_;
  PeerStatement update_;
  PeerStatement read_;
  PeerStatement set_title_;
};

}  // namespace bench
