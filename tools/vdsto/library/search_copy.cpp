#include "tools/vdsto/library/search_copy.h"

#include <filesystem>
#include <system_error>

#include "tools/vdsto/text/source_location.h"

namespace vdsto {

namespace {

bool IsRoot(uint32_t folder) {
  return vdstomgr::IsRootFolder(folder);
}

}  // namespace

SearchCopy::SearchCopy(CRkPhotoDBManager& catalogue, std::string path, std::string password)
    : catalogue_(catalogue), path_(std::move(path)), password_(std::move(password)) {
  database_.SetDAOCriticalSection(catalogue.GetDAOCriticalSection());
}

/// Before its folder goes.
SearchCopy::~SearchCopy() {
  if (is_open_) database_.CloseDB();
}

/// An empty file is what a killed program leaves of a new one.
bool SearchCopy::Open() {
  std::error_code error;
  if (!is_open_ && std::filesystem::file_size(path_, error) > 0 && !error)
    is_open_ = is_read_only_ ? vdstomgr::OpenForReading(database_, path_.c_str(), password_.c_str())
                             : database_.OpenDB(path_.c_str(), password_.c_str());
  return is_open_;
}

bool SearchCopy::IsCurrent() {
  return database_.CheckVersion() == 1 &&
         database_.GetTotalNoOfFiles() == catalogue_.GetPhotoCount() &&
         database_.GetTotalNoOfFolders() == catalogue_.GetFolderCount();
}

bool SearchCopy::IsReady() {
  return Open() && IsCurrent();
}

void SearchCopy::StepAside() {
  if (IsReady()) return;
  if (is_open_) database_.CloseDB();
  is_open_ = false;
  path_ = Joined(temporary_.emplace().Path(), "search.vdb");
}

bool SearchCopy::Make() {
  if (is_open_) database_.CloseDB();
  is_open_ = database_.CreateDB(path_.c_str(), password_.c_str()) &&
             database_.OpenDB(path_.c_str(), password_.c_str());
  return is_open_ && AddFolders(true) && AddAllPhotos();
}

bool SearchCopy::AddFolders(bool with_roots) {
  vdstomgr::FolderArray all, added;
  catalogue_.GetAllFolderList(all);
  for (const FOLDERINFO& folder : all)
    if (with_roots || !IsRoot(folder.dwFolderID)) added.Add(folder);
  return database_.AddFolder(added);
}

/// Folder by folder, so that a large catalogue never is in memory as a whole. Photos whose folder
/// is missing are counted under it, too.
bool SearchCopy::AddAllPhotos() {
  vdstomgr::CountArray folders;
  catalogue_.GetPhotoCountInFolders(folders);
  for (const COUNTINFOLDER& folder : folders) {
    vdstomgr::PhotoArray photos;
    catalogue_.GetPhotoInFolder(folder.dwFolderID, photos);
    if (!database_.AddPhotoInfo(photos)) return false;
  }
  return true;
}

void SearchCopy::TakeOver(const char* guid) {
  PHOTOINFO photo;
  if (!catalogue_.GetPhotoInfo(guid, photo)) {
    database_.DeletePhoto(guid);
  } else if (!database_.SetPhotoInfo(photo)) {
    database_.AddPhotoInfo(photo);
  }
}

void SearchCopy::PhotosAdded(const vdstomgr::PhotoArray& photos) {
  if (!Open() || database_.AddPhotoInfo(photos)) return;
  for (const PHOTOINFO& photo : photos) TakeOver(photo.szGUID);
}

void SearchCopy::PhotosChanged(const CStringArray& guids) {
  if (!Open()) return;
  for (const CString& guid : guids) TakeOver(guid);
}

void SearchCopy::FolderAdded(const FOLDERINFO& folder) {
  if (Open()) database_.AddFolder(folder);
}

/// There is no rewriting of a folder there: all but the roots go and come again, photos stay.
void SearchCopy::FoldersChanged() {
  if (Open() && database_.ResetFolder()) AddFolders(false);
}

}  // namespace vdsto
