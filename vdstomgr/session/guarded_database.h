#pragma once

#include <utility>

#include "vdstomgr/platform/dao/rk_dao.h"
#include "vdstomgr/platform/os/lock.h"
#include "vdstomgr/platform/os/thread_safety.h"

namespace vdstomgr {

/// A database, the lock of its operations and the guard under which each of them runs.
class GuardedDatabase {
 public:
  GuardedDatabase() = default;
  GuardedDatabase(const GuardedDatabase&) = delete;
  GuardedDatabase& operator=(const GuardedDatabase&) = delete;

  /// The recursive lock that every operation takes; set before the first one. Borrowed.
  void SetLock(CRITICAL_SECTION* lock) { lock_ = lock; }

  CRITICAL_SECTION& Lock() { return *lock_; }

  /// Runs one operation: takes the lock and commits everything the operation wrote at its end; an
  /// operation called from within joins the outer one's commit. A failure ends the operation, is
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

  /// Everything `body` writes is one commit, also when it throws. For use within
  /// GuardedOutsideCommit.
  template <class Body>
  void InOneCommit(Body&& body) {
    AssertGuarded();
    RunInOneCommit(BodyRef(body));
  }

  /// The database itself, for what runs under the guard.
  CRkDaoDatabase& Database() {
    AssertGuarded();
    return database_;
  }

 private:
  enum class Commit { None, OncePerOperation };

  /// A borrowed callable, so that the guard is compiled once for all operations.
  class BodyRef {
   public:
    template <class Body>
    explicit BodyRef(Body& body)
        : body_(&body),
          call_([](const void* object) { (*static_cast<Body*>(const_cast<void*>(object)))(); }) {}
    void operator()() const { call_(body_); }

   private:
    const void* body_;
    void (*call_)(const void*);
  };

  template <class Result, class Body>
  Result Answer(Commit commit, Result failure, Body& body) {
    Result result = failure;
    auto run = [&] { result = body(); };
    return RunGuarded(commit, BodyRef(run)) ? std::move(result) : std::move(failure);
  }

  bool RunGuarded(Commit commit, BodyRef body);
  void RunInOneCommit(BodyRef body) VDSTO_REQUIRES(*lock_);
  void AssertGuarded() const VDSTO_ASSERTS(*lock_);

  CRITICAL_SECTION* lock_ = nullptr;
  CRkDaoDatabase database_ VDSTO_GUARDED_BY(*lock_);
  int guards_ VDSTO_GUARDED_BY(*lock_) = 0;  // operations under way, one within the other
};

}  // namespace vdstomgr
