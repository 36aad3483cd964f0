#pragma once

#include <cassert>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vdstomgr/platform/dao/column_table.h"
#include "vdstomgr/platform/dao/value.h"

/// What the DAO classes ask of a database engine. All text is UTF-8; every failure is a
/// CDaoException. A connection and its queries belong to one caller at a time (the catalogue's
/// lock).
namespace vdstomgr::dao {

/// A row being composed: one value per column of the query and which of them were set.
struct RowDraft {
  std::vector<Value> values;
  std::vector<bool> is_set;

  void Start(int columns);
  Value& Set(int column) {
    assert(column >= 0 && static_cast<size_t>(column) < values.size());
    is_set[static_cast<size_t>(column)] = true;
    return values[static_cast<size_t>(column)];
  }
};

/// The rows of one open query, walked forward.
///
/// Rows are read when they are asked for. A write through the same connection while rows are still
/// to come keeps the walk what it was: the remaining rows are noted by their keys first, so that no
/// written row reappears or moves, and each is read afresh when the walk reaches it.
class Query {
 public:
  virtual ~Query() = default;

  virtual const ColumnTable& Columns() const = 0;

  /// Is the walk past its last row? The first call reads the first row.
  virtual bool AtEnd() = 0;
  /// Goes to the next row. Throws NoCurrentRecord at the end.
  virtual void MoveNext() = 0;
  /// Runs the query again; the walk is before its first row as after opening.
  virtual void Restart() = 0;
  /// Before the first row is read: the walk has only `count` rows, from the `first` on (0 is the
  /// query's first). The engine passes over those before without reading them, and none of the
  /// others are noted. Neither number is negative.
  virtual void Window(int first, int count) = 0;

  /// A column of the current row. Throws NoCurrentRecord at the end, RecordDeleted when the row was
  /// deleted after the query had noted it.
  virtual Field Get(int column) = 0;

  /// Can rows be added, changed and deleted through this query?
  virtual bool IsUpdatable() const = 0;
  /// Adds a row of the set columns, the others null. It goes to the end of the walk.
  virtual void Insert(const RowDraft& row) = 0;
  /// Changes the set columns of the current row, which stays current.
  virtual void Update(const RowDraft& row) = 0;
  /// Deletes the current row; reading it then throws RecordDeleted.
  virtual void Delete() = 0;
};

/// What a row that breaks a key or does not fit means for an action statement.
enum class RunMode {
  WholeStatement,  ///< the statement throws and nothing of it remains
  SkipFailingRows  ///< such rows are left out
};

/// Is told of how many pages a copy has; false ends the copying.
using CopyProgress = std::function<bool(int done, int total)>;

/// One open database file.
class Connection {
 public:
  virtual ~Connection() = default;

  /// Runs an action statement and returns the number of rows it changed.
  virtual int Execute(std::string_view sql, RunMode mode) = 0;

  /// Opens the rows of a SELECT. The query must be gone before the connection is closed.
  virtual std::unique_ptr<Query> Open(std::string_view sql) = 0;

  /// Between BeginGroup and the EndGroup that matches it, writes are committed together (very long
  /// groups in several commits). Groups nest. EndGroup of the outermost commits; it throws when
  /// what the group wrote could not be kept. There is no rollback.
  virtual void BeginGroup() = 0;
  virtual void EndGroup() = 0;

  /// Sees to it that the texts of a column have an index by which LIKE with texts to be found
  /// anywhere ("*text*") finds its rows. The file keeps it in step from then on. One that is there
  /// is made anew when it is not of this form or does not match the rows.
  virtual void IndexTexts(std::string_view table, std::string_view column) = 0;

  /// Encrypts the file anew; an empty password leaves it plain.
  virtual void SetPassword(std::string_view password) = 0;

  /// From now on this connection sees the file as it is at this moment, whatever others write.
  /// Nothing is to be written through it any more.
  virtual void HoldState() = 0;

  /// Writes what this connection sees into a new file, under the same password, and lets the engine
  /// check the copy. False when `progress` ended it. Then, and when it throws (FileDamaged,
  /// DiskFull...), no file is left. The device may not hold the copy yet.
  virtual bool CopyTo(const std::string& path, std::string_view password,
                      const CopyProgress& progress) = 0;
};

enum class Access {
  Write,  ///< reading and writing
  Read    ///< every write throws ReadOnly; works where the file or its folder cannot be written
};

/// Opens an existing database file. Throws FileNotFound, InvalidPassword, NotADatabase,
/// FileDamaged, FileNotAccessible, DiskFull, and InvalidPath for what is no file name.
///
/// Access::Read where nothing can be written makes, changes and locks nothing that others would
/// have to write: what the file's write-ahead log holds is read with it. A file that somebody who
/// may write it begins to use only then may give FileDamaged.
std::unique_ptr<Connection> OpenDatabase(const std::string& path, std::string_view password,
                                         Access access = Access::Write);

/// Makes a new, empty database file without a password. Throws DatabaseExists, InvalidPath,
/// FileNotAccessible, DiskFull...; no file is left then.
std::unique_ptr<Connection> CreateDatabase(const std::string& path);

/// Deletes a database file with its companions. Returns false when the file is still there: because
/// the system refuses, because it is open as a database, in this process or another, or because
/// that cannot be told. False too for what is no file name.
bool DeleteDatabase(const std::string& path);

}  // namespace vdstomgr::dao
