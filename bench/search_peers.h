#pragma once

#include <string>

#include "bench/peer_database.h"
#include "vdstomgr/records/photo_info.h"

namespace bench {

/// The engine's own LIKE on the same table, which has an index in the order of names.
class PlainLike {
 public:
  explicit PlainLike(const std::string& path);
  /// Appends the photos whose name holds the text, by name, at most `most`.
  void Search(const std::string& text, int most, vdstomgr::PhotoArray& photos);
  /// The newest, and the largest.
  void Recent(int most, vdstomgr::PhotoArray& photos) { Read(recent_, most, photos); }
  void Big(int most, vdstomgr::PhotoArray& photos) { Read(big_, most, photos); }

 protected:
  PlainLike(const std::string& path, const std::string& from_and_where);

 private:
  void Read(const PeerStatement& query, int most, vdstomgr::PhotoArray& photos);

  PeerDatabase database_;
  PeerStatement search_, recent_, big_;
};

/// The engine's text index with its trigram tokenizer, over the same table.
class Trigram : public PlainLike {
 public:
  /// Makes the index in the file; seconds and bytes that it takes.
  struct Cost {
    double seconds;
    double bytes;
  };
  static Cost Make(const std::string& path);

  explicit Trigram(const std::string& path);
};

/// Takes our index of names out of a file.
void RemoveTextIndex(const std::string& path);

}  // namespace bench
