#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "tools/vdsto/library/facts_database.h"
#include "tools/vdsto/library/search_copy.h"
#include "vdstomgr/vdstomgr.h"

namespace vdsto {

class ImportLock;
class PhotoTexts;

/// Which library a command works on, and how it gets in.
struct LibraryOptions {
  std::string folder;
  std::string password;  ///< empty: the catalogue has none
};

/// What a command means to do with its library.
enum class Use { kReading, kChanging };

/// What to say of a library in `folder` that is to be changed and cannot be.
std::string ReadOnlyText(const std::string& folder);

/// $VDSTO_LIBRARY, else a folder under the user's data directory. Throws ToolError when there is no
/// home either.
std::string DefaultLibraryFolder();

/// An open catalogue. Reports of the database reach the caller as ToolError, one per failed call.
class Library {
 public:
  /// Opens the catalogue of a library folder, one that cannot be written for reading alone. Throws
  /// ToolError: a missing one, a wrong password, a damaged file, one to be changed that is
  /// read-only.
  explicit Library(const LibraryOptions& options, Use use = Use::kReading);
  /// The same, but makes folder and catalogue when they are not there. A catalogue appears whole or
  /// not at all.
  Library(const LibraryOptions& options, const ImportLock& lock);
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  /// Runs `operation(catalogue)`; throws ToolError when the catalogue reported an error meanwhile.
  /// Any thread.
  template <typename Operation>
  auto Call(Operation operation) {
    ForgetError();
    auto result = operation(catalogue_);
    ThrowError();
    return result;
  }

  /// The same for the search database: `operation(copy)`.
  template <typename Operation>
  auto CallSearch(Operation operation) {
    return Call([&](auto&) {
      operation(search_);
      return true;
    });
  }

  /// Sees to it that the search database is current, of a library to be read in a copy elsewhere.
  void PrepareSearch();

  /// The photos of a folder by name, its sub-folders by name, and all folders.
  vdstomgr::PhotoArray PhotosIn(uint32_t folder);
  vdstomgr::FolderArray FoldersIn(uint32_t folder);
  vdstomgr::FolderArray AllFolders();
  /// Every photo, also those in the trash.
  void ForEachPhoto(const std::function<void(const PHOTOINFO&)>& use);
  /// Nothing when there is no such photo.
  std::optional<PHOTOINFO> Photo(const std::string& guid);

  /// What the catalogue has no columns for. One thread at a time.
  FactsDatabase& FactsOfPhotos() { return facts_; }
  /// The titles and descriptions, over a connection of their own that is opened when it is first
  /// asked for. Throws ToolError.
  PhotoTexts& TextsOfPhotos();

  const std::string& CataloguePath() const { return path_; }
  /// The password that it was opened with; empty: it has none.
  const std::string& Password() const { return password_; }
  const std::string& Folder() const { return folder_; }

 private:
  void Open(const std::string& password, Use use);
  static void ForgetError();
  static void ThrowError();

  std::string folder_;
  std::string path_;
  CRkPhotoDBManager catalogue_;
  SearchCopy search_;
  FactsDatabase facts_;
  std::string password_;
  std::unique_ptr<PhotoTexts> texts_;
  bool is_read_only_ = false;
};

/// Sets the library up for this process: text as UTF-8, errors to whoever called. Before the first
/// Library.
void InitialiseCatalogueLibrary();

}  // namespace vdsto
