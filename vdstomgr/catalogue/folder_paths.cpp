#include <unordered_set>
#include <vector>

#include "vdstomgr/catalogue/photo_db_manager.h"
#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/records/folder_ids.h"

using namespace vdstomgr;

namespace {

constexpr int kMaxCandidates = 10'000;

/// The names, listed from the folder upwards, as a path from the top downwards.
CString JoinUpwards(const std::vector<CString>& names) {
  CString path;
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    if (name != names.rbegin()) path += '/';
    path += *name;
  }
  return path;
}

}  // namespace

DWORD CRkPhotoDBManager::GetFolderIDFromPath(const char* path) {
  return Guarded(kNoFolder, [&] {
    CStringArray parts;
    CUtilityLib::SplitStringByToken(path, '/', parts);
    DWORD id = kNoFolder;
    for (const CString& part : parts) {
      if (part.IsEmpty()) continue;
      id = FindSubFolder(id, part);
      if (id == kNoFolder) break;
    }
    return id;
  });
}

CString CRkPhotoDBManager::GetServerPathName(DWORD id) {
  return Guarded(CString(), [&] { return PathName(id, RootName::Included); });
}

CString CRkPhotoDBManager::GetServerPathName2(DWORD id) {
  if (IsRootFolder(id)) return "/";
  return Guarded(CString(), [&] { return PathName(id, RootName::LeftOut); });
}

CString CRkPhotoDBManager::PathName(DWORD id, RootName root_name) {
  FOLDERINFO folder;
  if (!FindFolder(id, folder)) return {};
  std::vector<CString> names{folder.szFolderName};
  std::unordered_set<DWORD> visited{id};
  while (FindParent(folder.dwFolderID, folder)) {
    if (!visited.insert(folder.dwFolderID).second) return {};
    if (root_name == RootName::LeftOut && IsRootFolder(folder.dwFolderID)) {
      names.emplace_back();
      break;
    }
    names.emplace_back(folder.szFolderName);
  }
  return JoinUpwards(names);
}

CString CRkPhotoDBManager::GetNewSubFolderName(const char* name, DWORD parent) {
  return Guarded(CString(), [&]() -> CString {
    if (FindSubFolder(parent, name) == kNoFolder) return name;
    CString candidate;
    for (int n = 0; n < kMaxCandidates; ++n) {  // the first alternative is numbered 0, on purpose
      candidate.Format("%s (%d)", ViewOf(name).data(), n);
      if (FindSubFolder(parent, candidate) == kNoFolder) return candidate;
    }
    return {};
  });
}

CString CRkPhotoDBManager::GetEditSaveFileName(const char* file_name, DWORD folder) {
  return Guarded(CString(), [&]() -> CString {
    CString candidate = file_name;
    for (int n = 0; n < kMaxCandidates; ++n) {
      candidate = CUtilityLib::GetCloneFileName(candidate);
      if (!HasPhoto(folder, candidate)) return candidate;
    }
    return {};
  });
}
