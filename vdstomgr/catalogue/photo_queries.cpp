#include "vdstomgr/catalogue/photo_db_manager.h"

using namespace vdstomgr;

namespace {

int AppendCounts(Rows rows, CountArray& counts) {
  for (Row& row : rows) counts.Add({row.Id("dwFolderID"), row.Integer("Count")});
  return counts.GetSize();
}

}  // namespace

int CRkPhotoDBManager::GetPhotoCount() {
  return Guarded(0, [&] {
    return FirstInteger(Select("SELECT COUNT(*) as nCount FROM PhotoMaster"), "nCount");
  });
}

int CRkPhotoDBManager::GetFolderCount() {
  return Guarded(0, [&] {
    return FirstInteger(Select("SELECT COUNT(*) as nCount FROM FolderInfo"), "nCount");
  });
}

CString CRkPhotoDBManager::GetPhotoGUID(DWORD folder, const char* file_name) {
  return Guarded(CString(), [&] {
    return FirstText(
        Select("SELECT szGUID FROM PhotoMaster WHERE dwFolderID = %d AND szFileName = '%s'", folder,
               Quoted(file_name)),
        "szGUID");
  });
}

int CRkPhotoDBManager::GetPhotoGUID(DWORD folder, const char* file_name, CStringArray& out) {
  return Guarded(0, [&] {
    return AppendTexts(
        Select("SELECT szGUID FROM PhotoMaster WHERE dwFolderID = %d AND szFileName = '%s'", folder,
               Quoted(file_name)),
        "szGUID", out);
  });
}

int CRkPhotoDBManager::GetPhotoInFolder(DWORD folder, CStringArray& out) {
  return Guarded(0, [&] {
    return AppendTexts(Select("SELECT szGUID FROM PhotoMaster WHERE dwFolderID = %d", folder),
                       "szGUID", out);
  });
}

int CRkPhotoDBManager::GetPhotoInFolder(DWORD folder, PhotoArray& out) {
  return Guarded(0, [&] {
    for (Row& row :
         Select("SELECT * FROM PhotoMaster WHERE dwFolderID = %d ORDER BY szFileName", folder)) {
      PHOTOINFO info;
      if (cGetPhotoInfoByRS(row.Recordset(), info)) out.Add(std::move(info));
    }
    return out.GetSize();
  });
}

int CRkPhotoDBManager::GetPhotoCountInFolders(CountArray& out) {
  return Guarded(0, [&] {
    return AppendCounts(Select("SELECT dwFolderID, COUNT(dwFolderID) as Count FROM PhotoMaster "
                               "GROUP BY dwFolderID"),
                        out);
  });
}

int CRkPhotoDBManager::GetPhotoCountInFolders(const CDWordArray& folders, CountArray& out) {
  const std::string list = IdList(folders);
  return Guarded(0, [&] {
    return AppendCounts(Select("SELECT dwFolderID, COUNT(dwFolderID) as Count FROM PhotoMaster "
                               "WHERE dwFolderID IN (%s) GROUP BY dwFolderID",
                               list),
                        out);
  });
}
