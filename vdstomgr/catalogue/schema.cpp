#include "vdstomgr/catalogue/photo_db_manager.h"
#include "vdstomgr/catalogue/schema_statements.h"
#include "vdstomgr/records/folder_ids.h"

using namespace vdstomgr;

namespace {

struct FirstVersion {
  const char* name;
  const char* version;
};

constexpr FirstVersion kFirstVersions[] = {
    {"PhotoMaster", kPhotoMasterVersion},
    {"CameraModel", "2000-01-01 00:00:00"},
    {"CameraLens", "2000-01-01 00:00:00"},
    {"LastFolderDBSyncTime", "2000-01-01 00:00:00"},
    {"LastFolderDBRefreshTime", "2000-01-01 00:00:00"},
    {"SyncUploadList", kSyncUploadListVersion},
    {"PhotoTrashMaster", kPhotoTrashMasterVersion},
};

struct Space {
  DWORD root;
  DWORD trash;
};

constexpr Space kSpaces[] = {
    {kPersonalRoot, kPersonalTrash}, {kPublicRoot, kPublicTrash}, {kGuestRoot, kGuestTrash}};

}  // namespace

void CRkPhotoDBManager::CreateSchema() {
  for (const char* statement : kCreateStatements) Run("%s", statement);
  InitFieldData(m_db);
}

void CRkPhotoDBManager::InitFieldData() {
  Guarded([&] { InitFieldData(m_db); });
}

void CRkPhotoDBManager::InitFieldData(CRkDaoDatabase& database) {
  for (const Space& space : kSpaces) {
    RunIn(database,
          "INSERT INTO FolderInfo (dwFolderID, dwParentID, szFolderName, nSpaceType) "
          "values (%d, -1, '%s', %d)",
          space.root, RootFolderName(space.root), SpaceTypeOfRoot(space.root));
    RunIn(database,
          "INSERT INTO FolderInfo (dwFolderID, dwParentID, szFolderName) values (%d, -1, '%s')",
          space.trash, TrashFolderName());
  }
  for (const FirstVersion& first : kFirstVersions)
    RunIn(database, "INSERT INTO VersionInfo(szName, szVersion) values('%s', '%s')", first.name,
          first.version);
  m_nFolderChanged = 1;
}
