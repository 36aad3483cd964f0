#include "vdstomgr/transfer/upload_list.h"
#include "vdstomgr/transfer/upload_queue.h"

namespace vdstomgr::transfer {

bool UploadList::GetNextUploadList(UPLOADLIST& out) {
  const StaleAtExit change = Changing();
  return m_db->Guarded(false, [&] {
    return ClaimFirst(
        *m_db, out, "SELECT * FROM UploadList WHERE nStatus = %d ORDER BY nDispOrder ASC", kReady);
  });
}

bool UploadList::GetNextUploadListWithThumbNotTrans(UPLOADLIST& out) {
  const StaleAtExit change = Changing();
  return m_db->Guarded(false, [&] {
    return ClaimFirst(*m_db, out,
                      "SELECT * FROM UploadList WHERE nStatus = %d AND nThumbStatus <> %d "
                      "ORDER BY nDispOrder ASC",
                      kReady, kThumbnailMade);
  });
}

bool UploadList::GetNextUploadListForSmallUpload(UPLOADLIST& out, DWORD level, int flag) {
  constexpr DWORD kLevelOfImages = 4;  // from here on images are taken too
  const bool leave_images = level < kLevelOfImages && flag != 0;
  const StaleAtExit change = Changing();
  return m_db->Guarded(false, [&] {
    return leave_images
               ? ClaimFirst(*m_db, out,
                            "SELECT * FROM UploadList WHERE nStatus = %d AND byteSmall = 1 AND "
                            "byteImage = 0 ORDER BY nDispOrder ASC",
                            kReady)
               : ClaimFirst(*m_db, out,
                            "SELECT * FROM UploadList WHERE nStatus = %d AND byteSmall = 1 "
                            "ORDER BY nDispOrder ASC",
                            kReady);
  });
}

bool UploadList::GetNextUploadListForCreateLTB(UPLOADLIST& out) {
  const StaleAtExit change = Changing();
  return m_db->Guarded(false, [&] {
    if (!ReadFirst(m_db->Select("SELECT * FROM UploadList WHERE nStatus = %d AND byteSmall = 1 "
                                "AND nThumbStatus = %d ORDER BY nDispOrder ASC",
                                kReady, kThumbnailMissing),
                   out))
      return false;
    return m_db->RunOrThrow("UPDATE UploadList SET nThumbStatus = %d WHERE szGUID = '%s'",
                            kThumbnailMade, Raw(out.szGUID)) != 0;
  });
}

}  // namespace vdstomgr::transfer
