#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/vdsto/library/photo_facts.h"
#include "vdstomgr/vdstomgr.h"

namespace vdsto {

/// The facts of the library's photos, in a database of vdsto's own beside the catalogue and under
/// its password. Nothing in it is the only copy of what a person made: an import makes what is
/// missing again. One thread at a time calls it.
///
/// Reading answers nothing when the file is not there, damaged or of another version, and never
/// makes one. Writing needs Prepare first and throws ToolError.
class FactsDatabase {
 public:
  FactsDatabase(std::string path, std::string password)
      : path_(std::move(path)), password_(std::move(password)) {}

  std::optional<PhotoFacts> Of(const std::string& guid);
  /// Those of a list of photos, by GUID.
  std::unordered_map<std::string, PhotoFacts> Of(const std::vector<std::string>& guids);
  /// Shows what is known of each photo's file, in no order: path, stamp, md5, place and gone_since.
  void ForEachFile(const std::function<void(const PhotoFacts&)>& use);
  /// The photos whose original is gone.
  std::vector<PhotoFacts> Gone();
  /// The photos whose picture is damaged or broken.
  std::vector<PhotoFacts> NotGood();
  std::vector<ImportPlace> Places();
  std::vector<UnreadableFile> Unreadable();

  /// Opens the file for writing; makes it when it is not there. One that cannot be read is kept
  /// beside it as facts.vdb.old.
  void Prepare();
  /// Adds or replaces the facts of photos, in one commit.
  void Put(std::span<const PhotoFacts> photos);
  void Remove(const std::vector<std::string>& guids);
  /// Notes since when originals are gone; 0: they are there.
  void SetGone(const std::vector<std::string>& guids, int32_t since);
  void SetPlaces(const std::vector<ImportPlace>& places);
  void SetUnreadable(const std::vector<UnreadableFile>& files);

 private:
  bool IsReadable();
  void Open();
  void Create();
  void SetAside();
  std::vector<PhotoFacts> Where(const std::string& condition);
  template <class List, class Set>
  void Replace(const std::string& table, const List& list, Set set);
  void Select(const std::string& condition, const std::function<void(const PhotoFacts&)>& use);
  template <class Operation>
  void Read(Operation operation);
  template <class Use>
  void ForEachRow(const char* query, Use use);
  template <class Operation>
  void InOneCommit(Operation operation);
  template <class Operation>
  void Write(Operation operation);

  std::string path_;
  std::string password_;
  CDaoDatabase database_;
};

}  // namespace vdsto
