#pragma once

#include "vdstomgr/records/album_info.h"
#include "vdstomgr/transfer/upload_list_file.h"

namespace vdstomgr::transfer {

/// The tags and albums that photos get on the server when their upload is done.
class VDSTO_API UploadTags : public UploadListFile {
 public:
  /// Adds all, up to the first that is there; false then.
  bool AddUploadTag(const char* guid, const CDWordArray& tagIDs);
  /// Appends a photo's; answers how many.
  int GetUploadTag(const char* guid, CDWordArray& tagIDs);
  /// Deletes a photo's.
  bool DelUploadTag(const char* guid);
  /// False when one of them fails; the others are deleted.
  bool DelUploadTag(const CStringArray& guids);
  /// Takes a tag from all photos.
  bool RemoveUploadTag(DWORD tagID);

  /// The same of albums.
  bool AddUploadAlbum(const char* guid, const AlbumIndexArray& albums);
  int GetUploadAlbum(const char* guid, AlbumIndexArray& albums);
  bool DelUploadAlbum(const char* guid);
  bool DelUploadAlbum(const CStringArray& guids);
  bool RemoveUploadAlbum(DWORD roomID, DWORD albumID);
};

}  // namespace vdstomgr::transfer
