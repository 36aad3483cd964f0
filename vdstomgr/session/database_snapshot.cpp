#include "vdstomgr/session/database_snapshot.h"

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/session/database_file.h"

namespace vdstomgr {

namespace {

/// For writing where that can be, which leaves the file as those who use it need it.
std::unique_ptr<dao::Connection> OpenAnyhow(const std::string& path, const std::string& password) {
  try {
    return dao::OpenDatabase(path, password);
  } catch (const CDaoException& error) {
    if (error.Code() != static_cast<int>(dao::Error::FileNotAccessible)) throw;
    return dao::OpenDatabase(path, password, dao::Access::Read);
  }
}

}  // namespace

struct DatabaseSnapshot::State {
  std::string password;  // as the file knows it, in UTF-8
  std::unique_ptr<dao::Connection> connection;
};

DatabaseSnapshot::DatabaseSnapshot(const char* path, const char* password)
    : state_(std::make_unique<State>()) {
  WithEitherCut(ViewOf(password), [&](std::string_view cut) {
    state_->password = ToUtf8(cut);
    state_->connection = OpenAnyhow(ToUtf8(ViewOf(path)), state_->password);
  });
  state_->connection->HoldState();
}

DatabaseSnapshot::~DatabaseSnapshot() = default;

bool DatabaseSnapshot::CopyTo(const char* path, const Progress& progress) {
  return state_->connection->CopyTo(ToUtf8(ViewOf(path)), state_->password, progress);
}

}  // namespace vdstomgr
