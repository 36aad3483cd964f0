#pragma once

#include <initializer_list>

#include "vdstomgr/platform/common/callback.h"
#include "vdstomgr/session/column_map.h"
#include "vdstomgr/session/guarded_database.h"
#include "vdstomgr/session/rows.h"
#include "vdstomgr/session/statement.h"

namespace vdstomgr {

/// How operations on a database run. Most are one line, a verb and its statement:
///
///   return m_db->AskExists("SELECT dwTagID FROM TagInfo WHERE szTagName = '%s'", name);
///
/// What takes more is a body under the guard, made of the steps below:
///
///   return m_db->Guarded(false, [&] {
///     m_db->Run("UPDATE TagInfo SET szTagName = '%s' WHERE dwTagID = %d", name, id);
///     return true;
///   });
///
/// A verb guards itself and never throws; a step throws and asserts that it runs under a guard.
/// Statements run in one of two ways: Run and Execute say nothing of a statement that fails, as
/// their callers rely on; RunOrThrow and ExecuteOrFail let it end the operation. Queries end it
/// always.
class DatabaseSession : public GuardedDatabase {
 public:
  /// ---- Verbs: questions. The answer is the first column of the first row. ----

  /// `failure` also without a row. A null column is 0.
  template <class... Arguments>
  std::int32_t AskInteger(std::int32_t failure, SqlFormatOf<Arguments...> format,
                          const Arguments&... arguments) {
    return Guarded(
        failure, [&] { return FirstInteger(Select<Arguments...>(format, arguments...), failure); });
  }
  /// 0xFFFFFFFF without a row and on failure.
  template <class... Arguments>
  DWORD AskId(SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return static_cast<DWORD>(AskInteger<Arguments...>(-1, format, arguments...));
  }
  /// Empty without a row and on failure.
  template <class... Arguments>
  CString AskText(SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return Guarded(CString(),
                   [&] { return FirstText(Select<Arguments...>(format, arguments...)); });
  }
  /// Is there a row? False on failure.
  template <class... Arguments>
  bool AskExists(SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return Guarded(false, [&] { return Exists<Arguments...>(format, arguments...); });
  }

  /// ---- Verbs: lists. They append, and answer the list's size; 0 on failure. ----

  /// The first column of every row.
  template <class List, class... Arguments>
  int AskList(List& list, SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return Guarded(0, [&] {
      AppendRows(Select<Arguments...>(format, arguments...), list);
      return list.GetSize();
    });
  }
  /// Every row as a fresh record.
  template <class List, class Map, class... Arguments>
  int AskRecords(List& records, const Map& map, SqlFormatOf<Arguments...> format,
                 const Arguments&... arguments) {
    return Guarded(0, [&] {
      for (Row& row : Select<Arguments...>(format, arguments...))
        records.Add(map.ReadFresh(row.Recordset()));
      return records.GetSize();
    });
  }
  /// The first row into `record`; false, and the record as it was, without a row and on failure.
  template <class Map, class Record, class... Arguments>
  bool AskRecord(Record& record, const Map& map, SqlFormatOf<Arguments...> format,
                 const Arguments&... arguments) {
    return Guarded(false, [&] {
      Rows rows = Select<Arguments...>(format, arguments...);
      if (!rows.HasRow()) return false;
      map.Read(rows->Recordset(), record);
      return true;
    });
  }

  /// For every GUID in turn, the first row of its query as a fresh record; `progress` is told
  /// (index, count, null, false) after each that was found. 0 at once for an empty list.
  template <class List, class Map>
  int AskEachRecord(const CStringArray& guids, List& records, const Map& map, CRkCallback progress,
                    SqlFormat<Raw> format) {
    if (guids.IsEmpty()) return 0;
    return Guarded(0, [&] {
      const auto count = static_cast<DWORD>(guids.GetSize());
      for (DWORD i = 0; i < count; ++i) {
        Rows rows = Select<Raw>(format, Raw(guids[static_cast<int>(i)]));
        if (!rows.HasRow()) continue;
        records.Add(map.ReadFresh(rows->Recordset()));
        progress.SetProgress(i, count, nullptr, false);
      }
      return records.GetSize();
    });
  }

  /// ---- Verbs: records ----

  /// Writes `record` into the first row of a query or as a new one, as far as `how` allows. Answers
  /// whether it was written.
  template <class Record, class Map, class... Arguments>
  bool WriteRecord(const Record& record, const Map& map, Write how,
                   SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return Guarded(false, [&] {
      return map.WriteRow(Select<Arguments...>(format, arguments...)->Recordset(), record, how);
    });
  }
  /// Adds every record as a new row of one query, up to the first that fails. True at once for an
  /// empty list.
  template <class List, class Map>
  bool AddRecords(const List& records, const Map& map, SqlFormat<> query) {
    if (records.IsEmpty()) return true;
    return Guarded(false, [&] {
      Rows rows = Select(query);
      for (const auto& record : records) map.Add(rows->Recordset(), record);
      return true;
    });
  }

  /// ---- Verbs: statements ----

  /// Runs a statement whose failure says nothing; true.
  template <class... Arguments>
  bool Execute(SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return Guarded(false, [&] {
      Run<Arguments...>(format, arguments...);
      return true;
    });
  }
  /// The same; did it change a row?
  template <class... Arguments>
  bool ExecuteOnRow(SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return Guarded(false, [&] { return Run<Arguments...>(format, arguments...) != 0; });
  }
  /// Runs a statement whose failure is the operation's: false then.
  template <class... Arguments>
  bool ExecuteOrFail(SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return Guarded(false, [&] {
      RunOrThrow<Arguments...>(format, arguments...);
      return true;
    });
  }

  /// The same; did it change a row?
  template <class... Arguments>
  bool ExecuteOnRowOrFail(SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return Guarded(false, [&] { return RunOrThrow<Arguments...>(format, arguments...) != 0; });
  }

  /// Runs `body()` for a list as a whole, under one lock and in one commit. An empty list is true
  /// at once, without the lock.
  template <class List, class Body>
  bool ForList(const List& items, Body&& body) {
    return items.IsEmpty() || Guarded(false, body);
  }
  /// The same with `body(item)` for every item.
  template <class List, class Body>
  bool ForEach(const List& items, Body&& body) {
    return ForList(items, [&] {
      for (const auto& item : items) body(item);
      return true;
    });
  }
  /// The single form of an operation on lists: `twin` is given a list of the one item.
  template <class Twin>
  bool ForOne(const char* guid, Twin&& twin) {
    return Guarded(false, [&] { return twin(CStringArray{guid}); });
  }
  template <class Twin>
  bool ForOne(DWORD id, Twin&& twin) {
    return Guarded(false, [&] { return twin(CDWordArray{id}); });
  }
  /// Runs a statement for every item, which stands where the arguments say kEachGuid or kEachId; a
  /// statement that fails says nothing.
  template <class... Arguments>
  bool ExecuteForEach(const CStringArray& guids, SqlFormatOf<Arguments...> format,
                      const Arguments&... arguments) {
    return ForEach(guids, [&](const CString& guid) {
      RunFor(Raw(guid), format.text, {SqlArgument(arguments)...});
    });
  }
  template <class... Arguments>
  bool ExecuteForEach(const CDWordArray& ids, SqlFormatOf<Arguments...> format,
                      const Arguments&... arguments) {
    return ForEach(ids, [&](DWORD id) { RunFor(id, format.text, {SqlArgument(arguments)...}); });
  }

  /// ---- Steps: under a guard; they throw ----

  /// Runs a statement whose failure says nothing: rows that break a key are left out. Answers the
  /// number of rows it changed.
  template <class... Arguments>
  int Run(SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return RunOn<Arguments...>(Database(), format, arguments...);
  }
  /// Run on another database, without a guard.
  template <class... Arguments>
  static int RunOn(CRkDaoDatabase& database, SqlFormatOf<Arguments...> format,
                   const Arguments&... arguments) {
    return RunText(database, format.text, {SqlArgument(arguments)...});
  }
  /// Runs a statement whose failure ends the operation; nothing of the statement remains then.
  template <class... Arguments>
  int RunOrThrow(SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return RunTextOrThrow(format.text, {SqlArgument(arguments)...});
  }
  /// The rows of a query.
  template <class... Arguments>
  Rows Select(SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return SelectText(format.text, {SqlArgument(arguments)...});
  }
  /// Has the query a row?
  template <class... Arguments>
  bool Exists(SqlFormatOf<Arguments...> format, const Arguments&... arguments) {
    return Select<Arguments...>(format, arguments...).HasRow();
  }

 private:
  using Arguments = std::initializer_list<SqlArgument>;

  static int RunText(CRkDaoDatabase& database, const char* format, Arguments arguments);
  int RunTextOrThrow(const char* format, Arguments arguments);
  int RunFor(const SqlArgument& item, const char* format, Arguments arguments);
  Rows SelectText(const char* format, Arguments arguments);
};

}  // namespace vdstomgr
