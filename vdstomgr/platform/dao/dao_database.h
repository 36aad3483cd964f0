#pragma once

#include <memory>
#include <string>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/cstring.h"

namespace vdstomgr::dao {
class Connection;
}

/// Options of CDaoDatabase::Execute.
inline constexpr int dbFailOnError = 128;
/// Options of CDaoDatabase::Create: the only file format there is.
inline constexpr int dbVersion40 = 64;

/// One open database file, driven by statements in the dialect. Text arguments are in the process's
/// code page; null is an empty text. Failures are thrown as CDaoException. Not locked: its owner
/// serialises the calls.
class VDSTO_API CDaoDatabase {
 public:
  CDaoDatabase();
  virtual ~CDaoDatabase();
  CDaoDatabase(const CDaoDatabase&) = delete;
  CDaoDatabase& operator=(const CDaoDatabase&) = delete;

  /// Makes a new file and leaves it open. `locale` and `options` change nothing: there is one text
  /// order and one format. Throws 3204 when the file exists, 3044 when `name` is no file's name.
  virtual void Create(const char* name, const char* locale = "", int options = 0);

  /// Opens a file for reading and writing, or with `read_only` for reading alone: writing throws
  /// 3027 then, and the file may be where nothing can be written. `connect` may hold
  /// ";PWD=password".
  virtual void Open(const char* name, bool exclusive = false, bool read_only = false,
                    const char* connect = "");

  /// Closes the file; one that is not open is no failure. Recordsets on it must be closed before.
  virtual void Close();

  /// Runs one action statement. With dbFailOnError a failure throws and nothing of the statement
  /// remains; without it rows that break a key or do not fit their columns are left out silently.
  virtual void Execute(const char* sql, int options = dbFailOnError);

  /// Changes the password of the open file; an empty one leaves the file plain. A file with content
  /// is rewritten where it lies: when that is interrupted, by a full disk or by ending the process,
  /// the file may be lost. Change the password of a copy.
  void NewPassword(const char* old_password, const char* new_password);

  /// Rows changed by the last Execute; 0 after a failed one.
  int GetRecordsAffected() const { return m_nRecordsAffected; }
  bool IsOpen() const { return m_pConnection != nullptr; }
  /// Was the open file opened for reading alone?
  bool IsReadOnly() const { return m_bReadOnly; }
  const CString& GetName() const { return m_strName; }

  /// Writes between BeginGroup and EndGroup are committed together; see dao::Connection.
  void BeginGroup();
  void EndGroup();

  /// For the library, which includes engine.h: the engine's connection. Throws 3420 when the
  /// database is not open.
  vdstomgr::dao::Connection& Connection();

 private:
  std::unique_ptr<vdstomgr::dao::Connection> m_pConnection;
  CString m_strName;
  CString m_strPassword;
  bool m_bReadOnly = false;
  std::string m_statement;  // the statement in UTF-8; kept for its memory
  int m_nRecordsAffected = 0;
};
