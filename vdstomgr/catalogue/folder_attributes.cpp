#include "vdstomgr/catalogue/photo_db_manager.h"

using namespace vdstomgr;

int CRkPhotoDBManager::GetAllSharedFolderCount() {
  return Guarded(0, [&] {
    return FirstInteger(Select("SELECT Count(*) as Count FROM FolderInfo WHERE bSharedOption = 1"),
                        "Count");
  });
}

int CRkPhotoDBManager::GetAllSecureFolderCount() {
  return Guarded(0, [&] {
    return FirstInteger(Select("SELECT Count(*) as Count FROM FolderInfo WHERE bSecureFolder = 1"),
                        "Count");
  });
}

int CRkPhotoDBManager::GetAllLimitedUpDownFolderCount() {
  return Guarded(0, [&] {
    return FirstInteger(
        Select("SELECT Count(*) as Count FROM FolderInfo WHERE nFolderUpDownType <> 3"), "Count");
  });
}

int CRkPhotoDBManager::GetAllUpOnlyFolderCount() {
  return Guarded(0, [&] {
    return FirstInteger(
        Select("SELECT Count(*) as Count FROM FolderInfo WHERE nFolderUpDownType = 2"), "Count");
  });
}
