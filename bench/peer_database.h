#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "vdstomgr/platform/framework/types.h"

struct sqlite3;
struct sqlite3_stmt;

/// What a careful programmer would write by hand: the engine's C interface, one prepared statement
/// per operation, columns by number, no layer between. The same file, schema and settings as the
/// library, and the same text conversions at the boundary.
namespace bench {

struct PeerStatementDeleter {
  void operator()(sqlite3_stmt* statement) const;
};
using PeerStatement = std::unique_ptr<sqlite3_stmt, PeerStatementDeleter>;

class PeerDatabase {
 public:
  enum class Like { Dialects, Engines };

  explicit PeerDatabase(const std::string& path, Like like = Like::Dialects);
  ~PeerDatabase();
  PeerDatabase(const PeerDatabase&) = delete;
  PeerDatabase& operator=(const PeerDatabase&) = delete;

  PeerStatement Prepare(const std::string& sql);
  /// Between them writes are committed together; outside each commits by itself.
  void Begin() { Run(begin_); }
  void Commit() { Run(commit_); }

  /// Runs an action statement; false when it failed.
  static bool Run(const PeerStatement& statement);
  /// The same; false too when it changed no row.
  bool Change(const PeerStatement& statement);

 private:
  sqlite3* db_ = nullptr;
  PeerStatement begin_;
  PeerStatement commit_;
};

/// Binds one row, column after column.
class Binder {
 public:
  explicit Binder(const PeerStatement& statement) : statement_(statement.get()) {}

  Binder& Text(const char* process_text);
  Binder& Number(std::int64_t value);
  Binder& Time(std::int32_t time);
  Binder& TimeAndDay(std::int32_t time);
  Binder& Size(std::uint64_t size);

 private:
  Binder& Bind(const char* text, int size);

  sqlite3_stmt* statement_;
  int place_ = 0;
  std::string text_;
};

/// Reads one row, column after column.
class Reader {
 public:
  explicit Reader(sqlite3_stmt* statement) : statement_(statement) {}

  const char* Text();
  template <std::size_t N>
  void Text(char (&target)[N]) {
    std::snprintf(target, N, "%s", Text());
  }
  template <class Target>
  void Number(Target& target) {
    target = static_cast<Target>(Integer());
  }
  void Time(std::int32_t& target);
  std::uint64_t Size();
  void Skip() { ++place_; }
  /// The next value read is that of the column of that number, from 0.
  void MoveTo(int column) { place_ = column - 1; }

 private:
  std::int64_t Integer();

  sqlite3_stmt* statement_;
  int place_ = -1;
  std::string text_;
};

/// Steps a query: is there a row?
bool Next(const PeerStatement& query);
/// Lets a query be run again.
void Reset(const PeerStatement& query);

/// Reads the first row of a query into `record`; false when there is none.
template <class Record>
bool ReadOne(const PeerStatement& query, Record& record, void (*fill)(Reader row, Record& record)) {
  const bool found = Next(query);
  if (found) fill(Reader(query.get()), record);
  Reset(query);
  return found;
}

}  // namespace bench
