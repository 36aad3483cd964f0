#pragma once

#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>

#include "vdstomgr/catalogue/rows.h"
#include "vdstomgr/catalogue/statement.h"
#include "vdstomgr/platform/dao/rk_dao.h"
#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/os/lock.h"

namespace vdstomgr {

/// What every operation on a database shares: the lock, the guard, the commit, and running
/// statements. An operation is then its statements and its answer:
///
///   return Guarded(false, [&] {
///     Run("UPDATE TagInfo SET szTagName = '%s' WHERE dwTagID = %d", Quoted(name), id);
///     return true;
///   });
class VDSTO_API DatabaseSession {
 public:
  DatabaseSession(const DatabaseSession&) = delete;
  DatabaseSession& operator=(const DatabaseSession&) = delete;

 protected:
  DatabaseSession() = default;
  ~DatabaseSession() = default;

  /// The recursive lock that every operation takes; set before the first one.
  void SetLock(CRITICAL_SECTION* lock) { m_pLock = lock; }

  /// Runs one operation: takes the lock and commits everything the operation wrote at its end;
  /// an operation called from within joins the outer one's commit. A failure ends the operation, is
  /// reported once to the user unless it is a duplicate key, and answers `failure`; what was done
  /// before it is committed. A commit that fails is such a failure too.
  template <class Result, class Body>
  Result Guarded(Result failure, Body&& body) {
    return Answer(Commit::OncePerOperation, std::move(failure), body);
  }

  /// An operation without an answer.
  template <class Body>
  void Guarded(Body&& body) {
    RunGuarded(Commit::OncePerOperation, BodyRef(body));
  }

  /// Guarded for operations that open or close the database itself.
  template <class Result, class Body>
  Result GuardedOutsideCommit(Result failure, Body&& body) {
    return Answer(Commit::None, std::move(failure), body);
  }

  /// Runs a statement whose failure says nothing: rows that break a key are left out. Answers the
  /// number of rows it changed.
  template <class... Arguments>
  int Run(SqlFormat<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
    return RunIn(m_db, format, arguments...);
  }

  /// Run on another database.
  template <class... Arguments>
  int RunIn(CRkDaoDatabase& database, SqlFormat<std::type_identity_t<Arguments>...> format,
            const Arguments&... arguments) {
    return Execute(database, Compose(format.text, {SqlArgument(arguments)...}));
  }

  /// Runs a statement whose failure ends the operation; nothing of the statement remains then.
  template <class... Arguments>
  int RunOrThrow(SqlFormat<std::type_identity_t<Arguments>...> format,
                 const Arguments&... arguments) {
    return ExecuteOrThrow(Compose(format.text, {SqlArgument(arguments)...}));
  }

  /// The rows of a query.
  template <class... Arguments>
  Rows Select(SqlFormat<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
    return Rows(m_db, Compose(format.text, {SqlArgument(arguments)...}));
  }

  /// Has the query a row?
  template <class... Arguments>
  bool Exists(SqlFormat<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
    return Select<Arguments...>(format, arguments...).HasRow();
  }

  /// Everything `body` writes to `database` is one commit, also when it throws.
  template <class Body>
  static void InOneCommit(CRkDaoDatabase& database, Body&& body) {
    RunInOneCommit(database, BodyRef(body));
  }

  CRkDaoDatabase m_db;

 private:
  enum class Commit { None, OncePerOperation };

  /// A borrowed callable, so that the guard is compiled once for all operations.
  class BodyRef {
   public:
    template <class Body>
    explicit BodyRef(Body& body)
        : body_(&body), call_([](void* object) { (*static_cast<Body*>(object))(); }) {}
    void operator()() const { call_(body_); }

   private:
    void* body_;
    void (*call_)(void*);
  };

  template <class Result, class Body>
  Result Answer(Commit commit, Result failure, Body& body) {
    Result result = failure;
    auto run = [&] { result = body(); };
    return RunGuarded(commit, BodyRef(run)) ? std::move(result) : std::move(failure);
  }

  bool RunGuarded(Commit commit, BodyRef body);
  static void RunInOneCommit(CRkDaoDatabase& database, BodyRef body);
  const char* Compose(const char* format, std::initializer_list<SqlArgument> arguments);
  static int Execute(CRkDaoDatabase& database, const char* sql);
  int ExecuteOrThrow(const char* sql);

  CRITICAL_SECTION* m_pLock = nullptr;
  std::string m_statement;  // kept for its memory; guarded by the lock
};

}  // namespace vdstomgr
