#include "vdstomgr/tables/catalogue_schema.h"

#include "vdstomgr/records/folder_ids.h"
#include "vdstomgr/session/database_session.h"
#include "vdstomgr/tables/schema_statements.h"

namespace vdstomgr {

namespace {

struct FirstVersion {
  const char* name;
  const char* version;
};

constexpr FirstVersion kFirstVersions[] = {
    {"PhotoMaster", kPhotoMasterVersion},
    {"CameraModel", kCameraListVersion},
    {"CameraLens", kCameraListVersion},
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

void CreateCatalogueTables(CRkDaoDatabase& database) {
  for (const char* statement : kCreateStatements)
    DatabaseSession::RunOn(database, "%s", Raw(statement));
}

void InsertFirstRows(CRkDaoDatabase& database) {
  for (const Space& space : kSpaces) {
    DatabaseSession::RunOn(database,
                           "INSERT INTO FolderInfo (dwFolderID, dwParentID, szFolderName, "
                           "nSpaceType) values (%d, -1, '%s', %d)",
                           space.root, RootFolderName(space.root), SpaceTypeOfRoot(space.root));
    DatabaseSession::RunOn(
        database,
        "INSERT INTO FolderInfo (dwFolderID, dwParentID, szFolderName) values (%d, -1, '%s')",
        space.trash, TrashFolderName());
  }
  for (const FirstVersion& first : kFirstVersions)
    DatabaseSession::RunOn(database,
                           "INSERT INTO VersionInfo(szName, szVersion) values('%s', '%s')",
                           first.name, first.version);
}

}  // namespace vdstomgr
