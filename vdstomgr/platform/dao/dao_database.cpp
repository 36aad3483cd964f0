#include "vdstomgr/platform/dao/dao_database.h"

#include <string_view>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/text/code_page.h"

using vdstomgr::AppendUtf8;
using vdstomgr::ToUtf8;
using vdstomgr::ViewOf;
using vdstomgr::dao::Access;
using vdstomgr::dao::Error;
using vdstomgr::dao::RunMode;
using vdstomgr::dao::Throw;

namespace {

// ";PWD=secret" gives "secret": the rest of the connect text, since a password may hold anything.
std::string_view PasswordOf(std::string_view connect) {
  constexpr std::string_view kPassword = ";PWD=";
  const size_t start = connect.find(kPassword);
  return start == std::string_view::npos ? std::string_view()
                                         : connect.substr(start + kPassword.size());
}

}  // namespace

CDaoDatabase::CDaoDatabase() = default;
CDaoDatabase::~CDaoDatabase() = default;

void CDaoDatabase::Create(const char* name, const char*, int) {
  if (IsOpen()) Throw(Error::InvalidOperation);
  m_pConnection = vdstomgr::dao::CreateDatabase(ToUtf8(ViewOf(name)));
  m_bReadOnly = false;
  m_strName = name;
  m_strPassword.Empty();
}

void CDaoDatabase::Open(const char* name, bool, bool read_only, const char* connect) {
  if (IsOpen()) Throw(Error::InvalidOperation);
  const std::string_view password = PasswordOf(ViewOf(connect));
  m_pConnection = vdstomgr::dao::OpenDatabase(ToUtf8(ViewOf(name)), ToUtf8(password),
                                              read_only ? Access::Read : Access::Write);
  m_bReadOnly = read_only;
  m_strName = name;
  m_strPassword = CString(password);
}

void CDaoDatabase::Close() {
  m_pConnection.reset();
}

void CDaoDatabase::Execute(const char* sql, int options) {
  m_nRecordsAffected = 0;
  vdstomgr::dao::Connection& connection = Connection();
  m_statement.clear();
  AppendUtf8(ViewOf(sql), m_statement);
  const bool fails_whole = (options & dbFailOnError) != 0;
  m_nRecordsAffected = connection.Execute(
      m_statement, fails_whole ? RunMode::WholeStatement : RunMode::SkipFailingRows);
}

void CDaoDatabase::NewPassword(const char* old_password, const char* new_password) {
  if (m_strPassword != old_password) Throw(Error::InvalidPassword);
  if (IsOpen() && m_bReadOnly) Throw(Error::ReadOnly);
  Connection().SetPassword(ToUtf8(ViewOf(new_password)));
  m_strPassword = new_password;
}

void CDaoDatabase::BeginGroup() {
  Connection().BeginGroup();
}

void CDaoDatabase::EndGroup() {
  Connection().EndGroup();
}

vdstomgr::dao::Connection& CDaoDatabase::Connection() {
  if (!m_pConnection) Throw(Error::ObjectClosed);
  return *m_pConnection;
}
