#include "vdstomgr/session/guarded_database.h"

#include <cassert>
#include <new>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/platform/text/code_page.h"

namespace vdstomgr {

namespace {

/// Reports the exception being handled, unless it is a duplicate key.
void ReportFailure() {
  try {
    throw;
  } catch (const CDaoException& error) {
    if (error.Code() != static_cast<int>(dao::Error::DuplicateKey))
      ReportDatabaseError(error.Code(), FromUtf8(error.what()).c_str());
  } catch (const std::bad_alloc&) {
    ReportDatabaseError(0, "Out of memory.");
  } catch (const std::exception& error) {
    ReportDatabaseError(0, FromUtf8(error.what()).c_str());
  } catch (...) {
    ReportDatabaseError(0, "Unknown error.");
  }
}

/// ReportFailure where nothing may be thrown: when there is no memory for the report either, the
/// failure answer alone tells.
void ReportFailureQuietly() noexcept {
  try {
    ReportFailure();
  } catch (const std::bad_alloc&) {
  }
}

}  // namespace

bool GuardedDatabase::RunGuarded(Commit commit, BodyRef body) {
  const ScopedLock lock(*lock_);
  ++guards_;
  bool done = false;
  try {
    commit == Commit::None ? body() : RunInOneCommit(body);
    done = true;
  } catch (...) {
    ReportFailureQuietly();
  }
  --guards_;
  return done;
}

void GuardedDatabase::RunInOneCommit(BodyRef body) {
  database_.BeginGroup();
  try {
    body();
  } catch (...) {
    try {
      database_.EndGroup();
    } catch (const std::exception&) {  // the body's failure is the one to be told
    }
    throw;
  }
  database_.EndGroup();
}

void GuardedDatabase::AssertGuarded() const VDSTO_NO_THREAD_SAFETY {
  assert(guards_ > 0 && "a step of an operation runs outside the guard");
}

}  // namespace vdstomgr
