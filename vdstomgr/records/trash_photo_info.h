#pragma once

#include <cstdint>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/records/fixed_text.h"
#include "vdstomgr/records/record_rules.h"

/// One photo in the trash: a row of PhotoTrashMaster, with what showing it and restoring it needs.
/// A plain value; starts all zero and empty. Texts are in the process's code page; unless a setter
/// says otherwise, null leaves the field as it is and what does not fit is cut between characters.
struct VDSTO_API TRASHPHOTOINFO {
  char szGUID[37] = {};
  char szMD5[41] = {};
  char szFileName[vdstomgr::kFileNameBytes] = {};
  char szLTBURL[256] = {};
  char szFolderPath[512] = {};  ///< where the photo was; "?": the path was too long
  std::uint64_t FileSize = 0;
  BYTE byteNoLTB = 0;  ///< 1: the thumbnail location was set and is empty
  WORD Width = 0;
  WORD Height = 0;
  BYTE byteRotate = 0;  ///< quarter turns, 0..3
  std::int32_t ShootDate = 0;
  std::int32_t RegDate = 0;
  std::int32_t DeleteDate = 0;
  char szUploadUserID[50] = {};
  char szDeleteUserID[50] = {};
  BYTE UploadEnd = 0;
  BYTE LockStatus = 0;  ///< in memory only

  void SetGUID(const char* guid) { vdstomgr::SetFixed(szGUID, guid); }
  void SetMD5(const char* digest) { vdstomgr::SetFixed(szMD5, digest); }
  void SetUploadUserID(const char* id) { vdstomgr::SetFixed(szUploadUserID, id); }
  void SetDeleteUserID(const char* id) { vdstomgr::SetFixed(szDeleteUserID, id); }
  /// A name that does not fit keeps its extension.
  void SetFileName(const char* name) { vdstomgr::CopyFileName(szFileName, name); }
  /// Without a thumbnail a photo has the size of the placeholder, 400 x 400, until it gets one.
  void SetLTBURL(const char* location);
  /// Null empties the path; one of more than 510 bytes is kept as "?".
  void SetFolderPath(const char* path);

  void SetFileSize(std::uint64_t bytes) { FileSize = bytes; }
  void SetRotate(BYTE quarter_turns) { byteRotate = quarter_turns; }
  void SetUploadEnd(BYTE mark) { UploadEnd = mark; }
  void SetLockStatus(BYTE state) { LockStatus = state; }
  /// Ignored while byteNoLTB is 1, so that the placeholder keeps its size.
  void SetWidthHeight(int cx, int cy) { vdstomgr::SetSizeUnlessPlaceholder(*this, cx, cy); }

  /// Times are seconds since 1970; -1 (no time) is kept as 0.
  void SetShootDate(std::int32_t time) { ShootDate = vdstomgr::TimeOrZero(time); }
  void SetRegDate(std::int32_t time) { RegDate = vdstomgr::TimeOrZero(time); }
  void SetDeleteDate(std::int32_t time) { DeleteDate = vdstomgr::TimeOrZero(time); }
};

namespace vdstomgr {
using TrashPhotoArray = CArray<TRASHPHOTOINFO, TRASHPHOTOINFO&>;
}
