#pragma once

#include <filesystem>
#include <string>

namespace bench {

/// A closed catalogue of that many photos, from which every case gets copies of its own: what one
/// has written must not be paid for by another.
class CatalogueMaster {
 public:
  CatalogueMaster(const std::filesystem::path& folder, int photos);
  ~CatalogueMaster();
  CatalogueMaster(const CatalogueMaster&) = delete;
  CatalogueMaster& operator=(const CatalogueMaster&) = delete;

  int Photos() const { return photos_; }
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
  int photos_;
};

/// The two files of one case, gone with the object. Everything on them must be closed by then.
class CaseFiles {
 public:
  explicit CaseFiles(const CatalogueMaster& master);
  ~CaseFiles();
  CaseFiles(const CaseFiles&) = delete;
  CaseFiles& operator=(const CaseFiles&) = delete;

  const std::string& Ours() const { return ours_; }
  const std::string& Peer() const { return peer_; }

 private:
  std::string ours_;
  std::string peer_;
};

/// Runs statements on a file beside what is measured.
void RunBeside(const std::string& path, const std::string& sql);

/// Takes the photos from that number on out of a file, so that every run meets the same catalogue.
void RemoveAdded(const std::string& path, int photos);

}  // namespace bench
