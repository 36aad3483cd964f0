#include "vdstomgr/catalogue/photo_columns.h"
#include "vdstomgr/catalogue/photo_db_manager.h"
#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/records/folder_ids.h"

using namespace vdstomgr;

bool CRkPhotoDBManager::AddPhotoInfo(const PHOTOINFO& info, bool bUpdateIfExists) {
  return Guarded(false, [&] {
    {
      Rows rows = Select("SELECT * FROM PhotoMaster WHERE szGUID = '%s'", info.szGUID);
      if (!rows.HasRow()) {
        AddPhoto(rows->Recordset(), info);
        return true;
      }
    }
    return bUpdateIfExists && SetPhotoInfo(info, false);
  });
}

bool CRkPhotoDBManager::AddPhotoInfo(const PhotoArray& list) {
  Trace("CRkPhotoDBManager::AddPhotoInfo");
  if (list.IsEmpty()) return true;
  return Guarded(false, [&] {
    Rows rows = Select("SELECT * FROM PhotoMaster");
    for (const PHOTOINFO& info : list) AddPhoto(rows->Recordset(), info);
    return true;
  });
}

bool CRkPhotoDBManager::SetPhotoInfo(const PHOTOINFO& info, bool bAddIfMissing) {
  return Guarded(false, [&] {
    {
      Rows rows = Select("SELECT * FROM PhotoMaster WHERE szGUID = '%s'", info.szGUID);
      if (rows.HasRow()) {
        EditPhoto(rows->Recordset(), info);
        return true;
      }
    }
    return bAddIfMissing && AddPhotoInfo(info, false);
  });
}

bool CRkPhotoDBManager::GetPhotoInfo(const char* guid, PHOTOINFO& info) {
  return Guarded(false, [&] { return FindPhoto(guid, info); });
}

bool CRkPhotoDBManager::FindPhoto(const char* guid, PHOTOINFO& info) {
  Rows rows = Select("SELECT * FROM PhotoMaster WHERE szGUID = '%s'", guid);
  return cGetPhotoInfoByRS(rows->Recordset(), info);
}

int CRkPhotoDBManager::GetPhotoInfo(const CStringArray& guids, PhotoArray& out,
                                    CRkCallback progress) {
  if (guids.IsEmpty()) return 0;
  return Guarded(0, [&] {
    const int count = guids.GetSize();
    for (int i = 0; i < count; ++i) {
      PHOTOINFO info;
      if (!FindPhoto(guids[i], info)) continue;
      out.Add(std::move(info));
      progress.SetProgress(static_cast<DWORD>(i), static_cast<DWORD>(count), nullptr, false);
    }
    return out.GetSize();
  });
}

bool CRkPhotoDBManager::cGetPhotoInfoByRS(CRkDaoRecordset& rs, PHOTOINFO& info) {
  if (rs.IsEOF()) return false;
  ReadPhoto(rs, info);
  return true;
}

CString CRkPhotoDBManager::GetPhotoName(const char* guid) {
  return Guarded(CString(), [&] {
    return FirstText(Select("SELECT * FROM PhotoMaster WHERE szGUID = '%s'", guid), "szFileName");
  });
}

DWORD CRkPhotoDBManager::GetFolderID(const char* guid) {
  return Guarded(kNoFolder, [&] {
    return FirstId(Select("SELECT dwFolderID FROM PhotoMaster WHERE szGUID = '%s'", guid),
                   "dwFolderID");
  });
}

bool CRkPhotoDBManager::IsPhoto(DWORD folder, const char* file_name) {
  return Guarded(false, [&] { return HasPhoto(folder, file_name); });
}

bool CRkPhotoDBManager::HasPhoto(DWORD folder, const char* file_name) {
  return FirstInteger(Select("SELECT COUNT(*) as nCount FROM PhotoMaster "
                             "WHERE dwFolderID = %d AND szFileName = '%s'",
                             folder, Quoted(file_name)),
                      "nCount") > 0;
}
