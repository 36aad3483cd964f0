#pragma once

#include "vdstomgr/catalogue/photos.h"

namespace vdstomgr::catalogue {

/// Single attributes of photos, written without the rest of the record. A list form runs under one
/// lock and in one commit, and is true at once for an empty list. Unless they say otherwise,
/// setters do not tell whether there is such a photo.
class VDSTO_API PhotoAttributes : public Photos {
 public:
  /// ---- Marked for the synchronisation of photos ----

  /// In quarter turns; false when there is no such photo.
  bool SetRotate(const char* guid, BYTE rotation);
  /// Adds quarter turns, modulo 4. The form for one photo is false when there is none.
  bool SetRelativeRotate(const char* guid, BYTE turns);
  bool SetRelativeRotate(const CStringArray& guids, BYTE turns);
  bool SetTitle(const char* guid, const char* title);
  bool SetTitle(const CStringArray& guids, const char* title);
  bool SetFileName(const char* guid, const char* name);
  bool SetFileName(const CStringArray& guids, const char* name);
  bool SetDesc(const char* guid, const char* desc);
  bool SetDesc(const CStringArray& guids, const char* desc);
  /// In seconds since 1970. On purpose the shooting day stays what it was until the photo is
  /// written whole.
  bool SetShootDate(const char* guid, std::int32_t time);
  bool SetShootDate(const CStringArray& guids, std::int32_t time);
  bool SetShooter(const char* guid, const char* shooter);
  bool SetShooter(const CStringArray& guids, const char* shooter);
  /// Sets or clears one of the flags 0 to 7; a photo whose flag is so already is not marked. False
  /// when there is no such photo, which the list form passes over, and for any other flag.
  bool SetFlag(const char* guid, int bit, bool on);
  bool SetFlag(const CStringArray& guids, int bit, bool on);

  /// ---- Not marked, on purpose ----

  /// Moves photos to a folder, which need not exist.
  bool SetFolder(const char* guid, DWORD folder);
  bool SetFolder(const CStringArray& guids, DWORD folder);
  bool SetPublic(const char* guid, BYTE is_public);
  bool SetPublic(const CStringArray& guids, BYTE is_public);
  bool SetCameraModel(const char* guid, const char* model);
  bool SetCameraModel(const CStringArray& guids, const char* model);
  bool SetCameraLens(const char* guid, const char* lens);
  bool SetCameraLens(const CStringArray& guids, const char* lens);
  bool SetUploadEnd(const char* guid, BYTE end);
  bool SetLinkUrl(const char* guid, BYTE link);
  bool SetLinkUrl(const CStringArray& guids, BYTE link);
  /// Deletes the photo's row only.
  bool DeletePhoto(const char* guid);
  bool DeletePhoto(const CStringArray& guids);
  /// Marks for the synchronisation of tags instead. The form for one photo is false when there is
  /// none.
  bool SetTagSyncFlag(const char* guid);
  bool SetTagSyncFlag(const CStringArray& guids);

  /// ---- Questions ----

  /// 1 or 0; -1 when there is no such photo. A flag other than 0 to 7 is 0.
  int GetFlag(const char* guid, int bit);
  /// The local midnights, in seconds since 1970, of the shooting days in their order. On purpose
  /// only the last digit of the day counts: 25 July is 5 July, 10 July is 30 June.
  int GetShootDateList(CDWordArray& out);
};

}  // namespace vdstomgr::catalogue
