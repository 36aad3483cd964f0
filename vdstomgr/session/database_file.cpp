#include "vdstomgr/session/database_file.h"

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/text/code_page.h"

namespace vdstomgr {

namespace {

constexpr std::size_t kPasswordPlaces = 20;
constexpr char kLocale[] = ";LANGID=0x0409;CP=1252;COUNTRY=0";

void CloseQuietly(CRkDaoDatabase& database) {
  try {
    database.Close();
  } catch (const std::exception&) {  // an earlier failure is the one to be told
  }
}

}  // namespace

std::string_view CutPassword(std::string_view password) {
  std::size_t places = 0, end = 0;
  while (end < password.size()) {
    const std::size_t bytes = CharacterBytes(password.substr(end));
    places += bytes == 1 ? 1 : 2;
    if (places > kPasswordPlaces) break;
    end += bytes;
  }
  return password.substr(0, end);
}

void WithEitherCut(std::string_view password, const std::function<void(std::string_view)>& open) {
  const std::string_view cut = CutPassword(password);
  const std::string_view once = CutToBytes(password, kPasswordPlaces);
  try {
    open(cut);
  } catch (const CDaoException& error) {
    if (error.Code() != static_cast<int>(dao::Error::InvalidPassword) || cut == once) throw;
    open(once);
  }
}

void CreateDatabaseFile(DatabaseSession& session, const CString& path, const char* password,
                        const std::function<void()>& fill) {
  CRkDaoDatabase& database = session.Database();
  const std::string file = ToUtf8(path);
  dao::DeleteDatabase(file);
  database.Create(path, kLocale, dbVersion40);
  try {
    if (const CString cut(CutPassword(ViewOf(password))); !cut.IsEmpty())
      database.NewPassword("", cut);
    session.InOneCommit(fill);
    database.Close();
  } catch (...) {
    CloseQuietly(database);
    dao::DeleteDatabase(file);
    throw;
  }
}

void OpenDatabaseFile(DatabaseSession& session, const CString& path, const char* password,
                      bool read_only, const std::function<void()>& prepare) {
  CRkDaoDatabase& database = session.Database();
  WithEitherCut(ViewOf(password), [&](std::string_view cut) {
    database.Open(path, false, read_only, ";PWD=" + CString(cut));
  });
  try {
    session.InOneCommit(prepare);
  } catch (...) {
    CloseQuietly(database);
    throw;
  }
}

}  // namespace vdstomgr
