#pragma once
#include <optional>
#include <string>

#include "tools/vdsto/library/temporary_folder.h"
#include "vdstomgr/vdstomgr.h"

namespace vdsto {

/// The search database that lies beside a catalogue. It is made of the catalogue, and again
/// whenever it turns out that it is not there, of another version, or not of as many photos and
/// folders. Reports of the database go where those of the catalogue go.
class SearchCopy {
 public:
  /// Both texts are those of the catalogue, which must live longer and be open.
  SearchCopy(CRkPhotoDBManager& catalogue, std::string path, std::string password);
  ~SearchCopy();

  /// From now on nothing is written beside the catalogue.
  void OnlyRead() { is_read_only_ = true; }
  /// Leaves a copy alone that is not current or cannot be read: the next one is made in a folder
  /// for temporary files, where it stays until the end. What is reported meanwhile does not matter.
  void StepAside();

  /// Is there a copy, and current? One that a killed program has only begun, that is damaged or
  /// under another password is not, and what is reported of it does not matter.
  bool IsReady();
  /// Makes it anew.
  bool Make();
  CRkSearchDBManager& Database() { return database_; }

  /// What a command has changed in the catalogue, unless there is no copy yet.
  void PhotosAdded(const vdstomgr::PhotoArray& photos);
  void PhotosChanged(const CStringArray& guids);
  void FolderAdded(const FOLDERINFO& folder);
  void FoldersChanged();

 private:
  bool Open();
  bool IsCurrent();
  bool AddAllPhotos();
  bool AddFolders(bool with_roots);
  void TakeOver(const char* guid);

  CRkPhotoDBManager& catalogue_;
  std::string path_;
  std::string password_;
  CRkSearchDBManager database_;
  bool is_open_ = false;
  bool is_read_only_ = false;
  std::optional<TemporaryFolder> temporary_;
};

}  // namespace vdsto
