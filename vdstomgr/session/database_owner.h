#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/session/clock.h"
#include "vdstomgr/session/database_operations.h"

namespace vdstomgr {

class DatabaseOwner;
struct OwnerAccess;

/// Opens a catalogue or search database for reading alone, also one in a folder or on a medium that
/// cannot be written, and writes nothing: a catalogue's roots keep the names that they have.
/// Reading operations are those of OpenDB; writing ones fail and report 3027. False, reported, as
/// OpenDB; also for a search database without the indexes that the searches stand on.
VDSTO_API bool OpenForReading(DatabaseOwner& owner, const char* path, const char* password);

/// The file of an object that owns a database, and the object's clock.
class VDSTO_API DatabaseOwner : public DatabaseOperations {
 public:
  /// Makes a new database in place of any file of that name, and leaves it closed. The password's
  /// first 20 places count, as code page 949 counts them: a Hangul syllable takes two, whatever the
  /// process's code page. Null or empty makes a file that any tool reads. A creation that fails
  /// leaves no file. Refused while this object has a database open.
  bool CreateDB(const char* path, const char* password);
  /// Opens a database; a catalogue's three roots get their fixed names again. False when one is
  /// open, at once and without the lock.
  bool OpenDB(const char* path, const char* password);
  /// True also when nothing is open.
  bool CloseDB();
  /// Closes and opens again what was opened last, in the same way. Always true.
  bool RefreshDB();
  /// Deletes a database file; nothing is reported.
  void DeleteDB(const char* path);

  /// Runs `body`, in which this object's operations are one commit; other threads' wait meanwhile.
  /// What fails in it fails and is reported as ever, and the rest is committed. False when nothing
  /// is open or the commit fails.
  bool InOneCommit(const std::function<void()>& body);

  /// The object's clock, in seconds since 1970: set from outside, it runs on by itself. The three
  /// take no lock.
  void SetTime(std::int32_t time) { m_clock.Set(time); }
  std::int32_t GetTime() const { return m_clock.Now(); }
  /// The time as the 19-character text of date columns.
  CString GetDBTime() const { return m_clock.NowText(); }

 protected:
  /// Tables and rows of a new file. Under the guard; may throw.
  virtual void cFillNewFile() = 0;
  /// What a file needs before it is used. Under the guard; may throw.
  virtual void cPrepareOpenedFile() = 0;
  /// What is remembered of the file is of no use any more. Under the guard.
  virtual void cForgetFile() {}

  void cSetDBName(const char* path) { m_strDBName = path; }
  /// The text with every single quote doubled, to stand between single quotes in a statement.
  CString cToDBString(const char* text) const;

 private:
  friend struct OwnerAccess;  // of OpenForReading
  bool cOpen(const char* path, const char* password, bool read_only);

  CString m_strDBName;
  CString m_strOpenPath;
  CString m_strOpenPassword;
  bool m_bOpenReadOnly = false;
  std::atomic<bool> m_bOpen = false;
  Clock m_clock;
};

}  // namespace vdstomgr
