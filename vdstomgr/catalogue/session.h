#pragma once

#include <atomic>
#include <cstdint>

#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/platform/os/lock.h"
#include "vdstomgr/platform/utility/bin_data.h"
#include "vdstomgr/transfer/sync_upload_list.h"

class CLongBinary;
class COleVariant;
class CRkDaoDatabase;

namespace vdstomgr::catalogue {

/// A catalogue's file, its lock and its clock.
class VDSTO_API Session : public transfer::SyncUploadList {
 public:
  Session();
  ~Session() override;

  /// Writes the rows that a new catalogue starts with; those that are there stay.
  void InitFieldData();

  /// The lock of all database work, for holding it over several calls. Lives as long as this
  /// object.
  CRITICAL_SECTION* GetDAOCriticalSection() { return &m_csDAO; }

  /// Both always answer 0xFFFFFFFF: these ids come from elsewhere. They take no lock.
  DWORD GetNewRoomID() const { return 0xFFFFFFFF; }
  DWORD GetNewAlbumID() const { return 0xFFFFFFFF; }

 protected:
  void cFillNewFile() override;
  void cPrepareOpenedFile() override;

  /// A whole file into a new block of the holder. False, and the holder as it was, when it cannot
  /// be read.
  bool cLoadFileData(const char* path, CLongBinary& holder);
  /// The bytes of a long-binary column. False when the variant holds none.
  bool cGetLongBinary(const COleVariant& value, CLongBinary& holder);
  bool cGetLongBinary(const COleVariant& value, CBinData& data);

  /// The first rows into the given database. Takes no lock and may throw.
  void InitFieldData(CRkDaoDatabase& database);

  CRITICAL_SECTION m_csDAO;
  bool m_bFolderChanged = true;  // since the sub-folder cache was filled; guarded by the DAO lock
};

}  // namespace vdstomgr::catalogue
