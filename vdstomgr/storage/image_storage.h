#pragma once

#include <memory>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/platform/utility/bin_data.h"

namespace vdstomgr {
struct SyncAccess;
}

/// One image per photo: blobs under text keys of up to 44 bytes, in a record storage. A `key` is
/// compared without the case of ASCII letters; `refresh` sorts what has been added without sorting
/// first; the trailing int of many operations is not used.
///
/// Copies of an open storage share it and its lock: closing through one closes it for all. A copy
/// of a closed storage is a storage of its own. Paths are in the process's code page.
class VDSTO_API CRkPhotoImageStorage {
 public:
  CRkPhotoImageStorage();
  /// Closes the files when no copy holds them.
  virtual ~CRkPhotoImageStorage();
  CRkPhotoImageStorage(const CRkPhotoImageStorage& other);
  CRkPhotoImageStorage& operator=(const CRkPhotoImageStorage& other);

  /// As CRkStorageManager::CreateStorageFile.
  bool CreateFileA(const char* path, DWORD storage_id);
  /// As CRkStorageManager::LoadStorageFile.
  bool OpenFile(const char* path, int mapping_mode = 2, int open_mode = 3);
  void Flush();
  void CloseFile();
  /// Deletes both files of the storage last opened, once it is closed. False, and both stay, while
  /// it is open or while anybody else has either of them open for writing.
  bool DeleteFileA();

  /// Is there an image of that key?
  bool IsImage(const char* key, bool refresh = true, int reserved = 0);

  /// Store a file's content, a block, or `length` bytes as the image of a key. With `replace`, the
  /// record that had the key is removed once the new one is stored; without, it stays beside it.
  /// False when nothing could be stored: an older image is still there then.
  bool SetImage(const char* key, const char* file_path, bool replace = true, bool refresh = true,
                int reserved = 0);
  bool SetImage(const char* key, CBinData& data, bool replace = true, bool refresh = true,
                int reserved = 0);
  bool SetImage(const char* key, const BYTE* data, int length, bool replace = true,
                bool refresh = true, int reserved = 0);

  /// Removes every image whose key begins with `key`; an empty one removes all. False when nothing
  /// is open.
  bool DelImage(const char* key, bool refresh = true);

  /// Lends the image in the mapped file: `data` points at it until Free_Image, or is empty. Takes
  /// the lock and keeps it until one call of Free_Image with the answer, by the same thread,
  /// whatever was found.
  DWORD Lock_Image(const char* key, CBinData& data, bool refresh = true, int reserved = 0);
  /// Ends a loan. Does nothing with a handle that is not in force or that another thread holds.
  static void Free_Image(DWORD handle);

  /// Copies the image; false, and an empty block, when there is none or it has no bytes.
  bool GetImage(const char* key, CBinData& data, bool refresh = true, int reserved = 0);
  /// Writes the image to a file, which is made or emptied only when there is an image.
  bool GetImageToFile(const char* key, const char* file_path, bool refresh = true,
                      int reserved = 0);

  /// Removes all images and reuses their space.
  void ResetImage();
  /// The number of images.
  int GetSize();
  void ClusterSort();
  /// Gives back the space of removed images when there are at least `minimum_count` others, as
  /// CRkStorageManager::CompactStorageFileOnline. The answer is always true.
  bool ReduceData(int minimum_count);

 private:
  friend struct vdstomgr::SyncAccess;
  struct State;
  struct Loan;

  std::shared_ptr<State> m_state;
};
