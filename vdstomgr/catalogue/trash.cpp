#include "vdstomgr/catalogue/trash.h"

#include "vdstomgr/session/column_kinds.h"
#include "vdstomgr/session/database_session.h"

namespace vdstomgr::catalogue {

namespace {

/// The sides come after the thumbnail's location, which decides whether they are read.
constexpr ColumnMap kTrashColumns(std::array{
    FixedText<&TRASHPHOTOINFO::szGUID>("szGUID"),
    FixedText<&TRASHPHOTOINFO::szMD5>("szMD5"),
    RuledText<&TRASHPHOTOINFO::szFileName, &TRASHPHOTOINFO::SetFileName>("szFileName"),
    RuledText<&TRASHPHOTOINFO::szLTBURL, &TRASHPHOTOINFO::SetLTBURL>("szLTBURL"),
    DecimalText<&TRASHPHOTOINFO::FileSize>("dxFileSize"),
    NumberUnless<&TRASHPHOTOINFO::Width, &TRASHPHOTOINFO::byteNoLTB>("wWidth"),
    NumberUnless<&TRASHPHOTOINFO::Height, &TRASHPHOTOINFO::byteNoLTB>("wHeight"),
    Number<&TRASHPHOTOINFO::byteRotate>("byteRotate"),
    Date<&TRASHPHOTOINFO::ShootDate>("szShootDate"),
    Date<&TRASHPHOTOINFO::RegDate>("szRegDate"),
    Date<&TRASHPHOTOINFO::DeleteDate>("szDeleteDate"),
    FixedText<&TRASHPHOTOINFO::szUploadUserID>("szUploadUserID"),
    FixedText<&TRASHPHOTOINFO::szDeleteUserID>("szDeleteUserID"),
    Number<&TRASHPHOTOINFO::UploadEnd>("byteUploadEnd"),
    RuledText<&TRASHPHOTOINFO::szFolderPath, &TRASHPHOTOINFO::SetFolderPath>("szFolderPath"),
});

}  // namespace

bool Trash::GetTrashPhotoInfo(const char* guid, TRASHPHOTOINFO& info) {
  return m_db->AskRecord(info, kTrashColumns, "SELECT * FROM PhotoTrashMaster WHERE szGUID = '%s'",
                         Raw(guid));
}

int Trash::GetTrashPhotoInfo(const CStringArray& guids, TrashPhotoArray& out,
                             CRkCallback progress) {
  return m_db->AskEachRecord(guids, out, kTrashColumns, progress,
                             "SELECT * FROM PhotoTrashMaster WHERE szGUID = '%s'");
}

bool Trash::cGetTrashPhotoInfoByRS(CRkDaoRecordset& rs, TRASHPHOTOINFO& info) {
  if (rs.IsEOF()) return false;
  kTrashColumns.Read(rs, info);
  return true;
}

int Trash::GetTrashPhotoCount() {
  return m_db->AskInteger(0, "SELECT COUNT(*) as nCount FROM PhotoTrashMaster");
}

bool Trash::AddTrashPhotoInfo(const TRASHPHOTOINFO& info, bool bUpdateIfExists) {
  return m_db->WriteRecord(info, kTrashColumns, bUpdateIfExists ? Write::AddOrEdit : Write::AddOnly,
                           "SELECT * FROM PhotoTrashMaster WHERE szGUID = '%s'", Raw(info.szGUID));
}

bool Trash::SetTrashPhotoInfo(const TRASHPHOTOINFO& info, bool bAddIfMissing) {
  return m_db->WriteRecord(info, kTrashColumns, bAddIfMissing ? Write::AddOrEdit : Write::EditOnly,
                           "SELECT * FROM PhotoTrashMaster WHERE szGUID = '%s'", Raw(info.szGUID));
}

bool Trash::DeleteTrashPhoto(const char* guid) {
  return m_db->Execute("DELETE FROM PhotoTrashMaster WHERE szGUID = '%s'", Raw(guid));
}

bool Trash::DeleteTrashPhoto(const CStringArray& guids, CRkCallback progress) {
  return m_db->ForEach(guids, [&](const CString& guid) {
    m_db->Run("DELETE FROM PhotoTrashMaster WHERE szGUID = '%s'", Raw(guid));
    progress.SetProgress(0, nullptr);  // each time the 0, on purpose
  });
}

}  // namespace vdstomgr::catalogue
