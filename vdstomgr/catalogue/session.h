#pragma once

#include <atomic>
#include <cstdint>

#include "vdstomgr/catalogue/clock.h"
#include "vdstomgr/platform/framework/cstring.h"
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

  /// Makes a new catalogue in place of any file of that name, and leaves it closed. The password's
  /// first 20 places count, as code page 949 counts them: a Hangul syllable takes two, whatever the
  /// process's code page. Null or empty makes a file that any tool reads. A creation that fails
  /// leaves no file. Refused while this object has a catalogue open.
  bool CreateDB(const char* path, const char* password);
  /// Opens a catalogue and gives the three roots their fixed names again. False when one is open,
  /// at once and without the lock.
  bool OpenDB(const char* path, const char* password);
  /// True also when nothing is open.
  bool CloseDB();
  /// Closes and opens again what was opened last. Always true.
  bool RefreshDB();
  /// Deletes a catalogue file; nothing is reported.
  void DeleteDB(const char* path);

  /// Writes the rows that a new catalogue starts with; those that are there stay.
  void InitFieldData();

  /// The lock of all database work, for holding it over several calls. Lives as long as this
  /// object.
  CRITICAL_SECTION* GetDAOCriticalSection() { return &m_csDAO; }

  /// The catalogue's clock, in seconds since 1970: set from outside, it runs on by itself. The
  /// three take no lock.
  void SetTime(std::int32_t time) { m_clock.Set(time); }
  std::int32_t GetTime() const { return m_clock.Now(); }
  /// The time as the 19-character text of date columns.
  CString GetDBTime() const { return m_clock.NowText(); }

  /// Both always answer 0xFFFFFFFF: these ids come from elsewhere. They take no lock.
  DWORD GetNewRoomID() const { return 0xFFFFFFFF; }
  DWORD GetNewAlbumID() const { return 0xFFFFFFFF; }

 protected:
  void cSetDBName(const char* path) { m_strDBName = path; }
  /// The text with every single quote doubled, to stand between single quotes in a statement.
  CString cToDBString(const char* text) const;
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

 private:
  CString m_strDBName;
  CString m_strOpenPath;
  CString m_strOpenPassword;
  std::atomic<bool> m_bOpen = false;
  Clock m_clock;
};

}  // namespace vdstomgr::catalogue
