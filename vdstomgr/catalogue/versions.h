#pragma once

#include "vdstomgr/catalogue/session.h"
#include "vdstomgr/platform/framework/array.h"

namespace vdstomgr::catalogue {

/// The versions of single tables, and bringing two of them up to date.
class VDSTO_API Versions : public Session {
 public:
  /// The version of a table; the name goes into the statement as it is. Empty when unknown.
  CString GetVersionInfo(const char* name);
  /// Changes a version that is there; never adds one. Both texts go in as they are.
  bool SetVersionInfo(const char* name, const char* version);
  /// Has the open catalogue the current layout of photos? When it has, but its trash has an old
  /// one, the trash is made anew and empty.
  bool CheckPhotoMasterDBVersion();
  /// Makes the synchronisation queue of `database` anew when its version is an old one. Always
  /// true.
  bool CreateSyncUploadListTable(CRkDaoDatabase& database);
  /// Appends every folder's id to one of the two lists; answers the sum of their sizes.
  int GetVersionFolderList(CDWordArray& active, CDWordArray& other);
};

}  // namespace vdstomgr::catalogue
