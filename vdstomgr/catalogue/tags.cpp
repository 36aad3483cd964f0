#include "vdstomgr/catalogue/tags.h"

#include "vdstomgr/session/database_session.h"

namespace vdstomgr::catalogue {

bool Tags::IsTag(const char* name) {
  return m_db->AskExists("SELECT dwTagID FROM TagInfo WHERE szTagName = '%s'", name);
}

bool Tags::IsTag(DWORD id) {
  return m_db->AskExists("SELECT dwTagID FROM TagInfo WHERE dwTagID = %d", id);
}

}  // namespace vdstomgr::catalogue
