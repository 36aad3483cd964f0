#include "vdstomgr/storage/storage_error.h"

#include <utility>

#include "vdstomgr/storage/note_storage_error.h"

namespace vdstomgr {
namespace {

thread_local StorageError last_error;

}  // namespace

StorageError TakeStorageError() {
  return std::exchange(last_error, {});
}

std::error_code NoteStorageError(const std::string& path, std::error_code reason) {
  if (reason) last_error = {path, reason};
  return reason;
}

}  // namespace vdstomgr
