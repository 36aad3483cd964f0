#pragma once

#include <string>

#include "bench/peer_database.h"
#include "vdstomgr/records/upload_list.h"

namespace bench {

/// An upload queue by hand, in one of the two tables. An empty one is filled when it is opened:
/// with a row for each photo, but at most a hundred thousand, all ready.
class PeerQueue {
 public:
  explicit PeerQueue(const std::string& path, const std::string& table = "UploadList");

  int Rows() const { return rows_; }
  bool Read(const char* guid, UPLOADLIST& row);
  /// Takes the first ready row.
  bool Claim(UPLOADLIST& row);
  bool SetStatus(const char* guid, int status);
  bool SetSentBytes(const char* guid, std::uint64_t bytes);
  bool Insert(const UPLOADLIST& row);
  bool Delete(const char* guid);
  /// Appends `count` rows from a position on.
  int ReadPage(vdstomgr::UploadListArray& page, int count, int start);
  /// Moves one row to the front.
  bool MoveToFront(int position);

 private:
  void Fill();

  PeerDatabase db_;
  PeerStatement read_, claim_, set_status_, set_sent_, insert_, delete_, page_, places_, set_place_;
  int rows_ = 0;
};

}  // namespace bench
