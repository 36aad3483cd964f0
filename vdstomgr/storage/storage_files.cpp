#include "vdstomgr/storage/storage_files.h"

#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/storage/note_storage_error.h"

namespace vdstomgr {

CString IndexPathOf(const CString& data_path) {
  const int point = data_path.ReverseFind('.');
  return point < 0 ? CString() : data_path.Left(point) + ".pdx";
}

std::string NativePath(const CString& path) {
  return ToUtf8(path.Str());
}

bool IsThere(const CString& path) {
  return os::Files().Exists(NativePath(path));
}

CString FreeNameOf(const CString& path, const char* suffix) {
  const CString first = path + suffix;
  CString name = first;
  for (int number = 2; IsThere(name); ++number) name.Format("%s.%d", first.GetString(), number);
  return name;
}

FileToDelete::FileToDelete(const CString& path) : is_free_(path.IsEmpty()) {
  if (is_free_) return;
  const auto error = os::Files().OpenExclusive(NativePath(path), os::Caching::normal, file_);
  is_free_ = !error || error == std::errc::no_such_file_or_directory;
}

bool FileToDelete::Delete() {
  if (!is_free_ || (file_ != nullptr && file_->Delete())) return false;
  file_.reset();
  return true;
}

bool DeleteStorageFiles(const CString& data_path) {
  FileToDelete data(data_path);
  FileToDelete index(IndexPathOf(data_path));
  return data.IsFree() && index.IsFree() && data.Delete() && index.Delete();
}

void DeleteUnlessInUse(const CString& path) {
  FileToDelete(path).Delete();
}

bool MoveTo(const CString& from, const CString& to) {
  return !NoteStorageError(from.Str(), os::Files().Rename(NativePath(from), NativePath(to)));
}

}  // namespace vdstomgr
