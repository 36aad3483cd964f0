#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/note_storage_error.h"
#include "vdstomgr/storage/record_format.h"
#include "vdstomgr/storage/record_storage.h"
#include "vdstomgr/storage/storage_files.h"

namespace os = vdstomgr::os;
using vdstomgr::DataHeader;
using vdstomgr::FileToDelete;
using vdstomgr::NoteStorageError;

namespace {

bool WriteHeader(os::ExclusiveFile& file, const CString& path, const DataHeader& header) {
  const auto bytes = header.Encode();
  return !NoteStorageError(path.Str(), file.SetSize(bytes.size())) &&
         !NoteStorageError(path.Str(), file.WriteAt(0, bytes.data(), bytes.size()));
}

}  // namespace

/// The new data file stays claimed until its index file is there too.
bool CRkStorageManager::CreateStorageFile(const char* path, DWORD storage_id, WORD key_type,
                                          WORD key_length) {
  const CString data_path(path);
  const CString index_path = vdstomgr::IndexPathOf(data_path);
  const DataHeader header{storage_id, key_type, key_length, 0};
  FileToDelete old_data(data_path);
  FileToDelete old_index(index_path);
  if (!old_data.IsFree() || !old_index.IsFree() || !old_data.Delete()) return false;
  std::unique_ptr<os::ExclusiveFile> data;
  const std::string name = vdstomgr::NativePath(data_path);
  if (NoteStorageError(data_path.Str(),
                       os::Files().CreateNew(name, os::Caching::write_through, data))) {
    return false;
  }
  if (index_path.IsEmpty()) return false;
  const auto unit_size = static_cast<int>(header.ClusterBytes());
  if (WriteHeader(*data, data_path, header) && old_index.Delete() &&
      CRkFileArrayManager::CreateFileArray(index_path, storage_id, unit_size)) {
    return true;
  }
  (void)data->Delete();
  return false;
}
