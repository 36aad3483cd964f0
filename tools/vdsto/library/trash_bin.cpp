#include "tools/vdsto/library/trash_bin.h"

#include <array>
#include <map>

#include "tools/vdsto/text/source_location.h"

namespace vdsto {
namespace {

constexpr std::array kTrashFolders{vdstomgr::kPersonalTrash, vdstomgr::kPublicTrash,
                                   vdstomgr::kGuestTrash};
/// What the trash table has for a path that is too long for it.
constexpr const char* kUnknownPath = "?";

/// Photos of folders that are below no root go where the user looks first.
uint32_t TrashOf(Library& library, uint32_t folder) {
  const uint32_t space =
      library.Call([&](auto& catalogue) { return catalogue.GetFolderType(folder); });
  return space < kTrashFolders.size() ? kTrashFolders.at(space) : vdstomgr::kPersonalTrash;
}

TRASHPHOTOINFO TrashRow(const PHOTOINFO& photo, const std::string& path, int32_t now) {
  TRASHPHOTOINFO row;
  row.SetGUID(photo.szGUID);
  row.SetMD5(photo.szMD5);
  row.SetFileName(photo.GetFileName());
  row.SetLTBURL(photo.GetLTBURL());
  row.SetFolderPath(path.c_str());
  row.SetFileSize(photo.FileSize);
  row.SetWidthHeight(photo.Width, photo.Height);
  row.SetRotate(photo.byteRotate);
  row.SetShootDate(photo.ShootDate);
  row.SetRegDate(photo.RegDate);
  row.SetDeleteDate(now);
  row.SetUploadUserID(photo.GetUploadUserID());
  row.SetUploadEnd(photo.UploadEnd);
  return row;
}

TrashedPhoto WithItsPlace(Library& library, const PHOTOINFO& photo) {
  TRASHPHOTOINFO row;
  TrashedPhoto trashed{photo, {}, 0};
  if (!library.Call(
          [&](auto& catalogue) { return catalogue.GetTrashPhotoInfo(photo.szGUID, row); }))
    return trashed;
  trashed.deleted = row.DeleteDate;
  if (std::string(row.szFolderPath) != kUnknownPath) trashed.folder = row.szFolderPath;
  return trashed;
}

void AddTrashRow(Library& library, const PHOTOINFO& photo) {
  library.Call([&](auto& catalogue) {
    const CString path = catalogue.GetServerPathName(photo.dwFolderID);
    return catalogue.AddTrashPhotoInfo(TrashRow(photo, path.Str(), catalogue.GetTime()), true);
  });
}

}  // namespace

std::vector<TrashedPhoto> PhotosInTrash(Library& library) {
  std::vector<TrashedPhoto> trashed;
  for (const uint32_t trash : kTrashFolders) {
    for (const PHOTOINFO& photo : library.PhotosIn(trash))
      trashed.push_back(WithItsPlace(library, photo));
  }
  return trashed;
}

/// A photo moves only when its row in the trash table is written.
void PutIntoTrash(Library& library, const CStringArray& guids) {
  std::map<uint32_t, uint32_t> trash_of;  // by folder
  std::map<uint32_t, CStringArray> moves;
  for (const CString& guid : guids) {
    const auto photo = library.Photo(guid.Str());
    if (!photo || IsTrashFolder(photo->dwFolderID)) continue;
    AddTrashRow(library, *photo);
    const auto [known, is_new] = trash_of.try_emplace(photo->dwFolderID);
    if (is_new) known->second = TrashOf(library, photo->dwFolderID);
    moves[known->second].Add(guid);
  }
  for (const auto& [trash, photos] : moves)
    library.Call([&](auto& catalogue) { return catalogue.SetFolder(photos, trash); });
  library.CallSearch([&](auto& copy) { copy.PhotosChanged(guids); });
}

void TakeOutOfTrash(Library& library, const std::string& guid, uint32_t folder) {
  library.Call([&](auto& catalogue) {
    return catalogue.SetFolder(guid.c_str(), folder) && catalogue.DeleteTrashPhoto(guid.c_str());
  });
  library.CallSearch([&](auto& copy) { copy.PhotosChanged({guid}); });
}

void DeleteForGood(Library& library, const CStringArray& guids) {
  library.Call([&](auto& catalogue) {
    return catalogue.DeletePhotosAndRelations(guids, nullptr) &&
           catalogue.DeleteTrashPhoto(guids, nullptr);
  });
  library.CallSearch([&](auto& copy) { copy.PhotosChanged(guids); });
}

void FollowMove(Library& library, const std::string& old_path, const std::string& new_path) {
  for (const TrashedPhoto& trashed : PhotosInTrash(library)) {
    const bool moves = trashed.folder == old_path || IsBelow(trashed.folder, old_path);
    if (!moves) continue;
    const std::string path = new_path + trashed.folder.substr(old_path.size());
    library.Call([&](auto& catalogue) {
      TRASHPHOTOINFO row;
      if (!catalogue.GetTrashPhotoInfo(trashed.photo.szGUID, row)) return false;
      row.SetFolderPath(path.c_str());
      return catalogue.SetTrashPhotoInfo(row, false);
    });
  }
}

}  // namespace vdsto
