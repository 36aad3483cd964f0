#include "vdstomgr/catalogue/tags.h"

#include <map>

#include "vdstomgr/catalogue/name_list.h"
#include "vdstomgr/session/column_kinds.h"
#include "vdstomgr/session/database_session.h"

namespace vdstomgr::catalogue {

namespace {

template <class Record>
constexpr std::array kTag{
    Number<&TAGINFO::dwTagID, Record>("dwTagID"),
    FixedText<&TAGINFO::szTagName, Record>("szTagName"),
};
constexpr ColumnMap kTagColumns(kTag<TAGINFO>);
constexpr ColumnMap kTagCountColumns(Join(kTag<TAGINFOCOUNT>,
                                          std::array{Number<&TAGINFOCOUNT::nCount>("nCount")}));

bool HasTag(DatabaseSession& db, const char* name) {
  return db.Exists("SELECT dwTagID FROM TagInfo WHERE szTagName = '%s'", name);
}

bool HasTag(DatabaseSession& db, DWORD id) {
  return db.Exists("SELECT dwTagID FROM TagInfo WHERE dwTagID = %d", id);
}

void AppendNames(CString& names, Rows rows) {
  for (Row& row : rows) AppendName(names, row.Text());
}

}  // namespace

DWORD Tags::GetNewTagID() {
  return m_db->Guarded(static_cast<DWORD>(-1), [&] {
    return FirstId(m_db->Select("SELECT MAX(dwTagID) FROM TagInfo")) + 1;
  });
}

bool Tags::AddTagInfo(const char* name, DWORD id) {
  return m_db->Guarded(false, [&] {
    if (HasTag(*m_db, name) || HasTag(*m_db, id)) return false;
    return m_db->Run("INSERT INTO TagInfo (dwTagID, szTagName) values (%d, '%s')", id, name) != 0;
  });
}

bool Tags::ChangeTagName(DWORD id, const char* name) {
  return m_db->Guarded(false, [&] {
    if (HasTag(*m_db, name)) return false;
    return m_db->Run("UPDATE TagInfo SET szTagName = '%s' WHERE dwTagID = %d", name, id) != 0;
  });
}

void Tags::RemoveTagInfo(DWORD id) {
  m_db->Execute("DELETE FROM TagInfo WHERE dwTagID = %d", id);
}

bool Tags::IsTag(const char* name) {
  return m_db->Guarded(false, [&] { return HasTag(*m_db, name); });
}

bool Tags::IsTag(DWORD id) {
  return m_db->Guarded(false, [&] { return HasTag(*m_db, id); });
}

DWORD Tags::GetTagID(const char* name) {
  return m_db->AskId("SELECT dwTagID FROM TagInfo WHERE szTagName = '%s'", name);
}

CString Tags::GetTagName(DWORD id) {
  return m_db->AskText("SELECT szTagName FROM TagInfo WHERE dwTagID = %d", id);
}

CString Tags::GetTagNamesByTagIDs(const CDWordArray& ids) {
  return m_db->Guarded(CString(), [&] {
    CString names;
    for (const DWORD id : ids)
      AppendNames(names, m_db->Select("SELECT szTagName FROM TagInfo WHERE dwTagID = %d "
                                      "ORDER BY szTagName",
                                      id));
    return names;
  });
}

int Tags::GetTagList(TagArray& out) {
  return m_db->AskRecords(out, kTagColumns,
                          "SELECT dwTagID, szTagName FROM TagInfo ORDER BY szTagName");
}

int Tags::GetTagListAndCount(TagCountArray& out) {
  return m_db->AskRecords(out, kTagCountColumns,
                          "SELECT a.dwTagID, a.szTagName, COUNT(b.szGUID) as nCount "
                          "FROM TagInfo as a INNER JOIN PhotoTag as b ON a.dwTagID = b.dwTagID "
                          "GROUP BY a.dwTagID, a.szTagName ORDER BY a.szTagName");
}

bool Tags::AddTag(const char* guid, DWORD tag, bool bSync) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return AddTag(one, tag, bSync); });
}

bool Tags::AddTag(const CStringArray& guids, DWORD tag, bool bSync) {
  return m_db->ForList(guids, [&] {
    for (const CString& guid : guids) {
      if (!IsTagged(guid, tag))
        m_db->Run("INSERT INTO PhotoTag (szGUID, dwTagID) values ('%s', %d)", Raw(guid), tag);
    }
    return !bSync || SetTagSyncFlag(guids);
  });
}

bool Tags::RemoveTag(const char* guid, DWORD tag) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return RemoveTag(one, tag); });
}

bool Tags::RemoveTag(const CStringArray& guids, DWORD tag) {
  return m_db->ForList(guids, [&] {
    return m_db->ExecuteForEach(guids, "DELETE FROM PhotoTag WHERE szGUID = '%s' AND dwTagID = %d",
                                kEachGuid, tag) &&
           SetTagSyncFlag(guids);
  });
}

bool Tags::IsTagged(const char* guid, DWORD tag) {
  return m_db->AskExists("SELECT dwTagID FROM PhotoTag WHERE szGUID = '%s' AND dwTagID = %d",
                         Raw(guid), tag);
}

void Tags::RemoveAllTagByGUID(const char* guid, bool bSync) {
  m_db->Guarded([&] { RemoveAllTagByGUID(CStringArray{guid}, bSync); });
}

void Tags::RemoveAllTagByGUID(const CStringArray& guids, bool bSync) {
  m_db->ForList(guids, [&] {
    return m_db->ExecuteForEach(guids, "DELETE FROM PhotoTag WHERE szGUID = '%s'", kEachGuid) &&
           (!bSync || SetTagSyncFlag(guids));
  });
}

void Tags::RemoveAllTagByTagID(DWORD tag) {
  m_db->Execute("DELETE FROM PhotoTag WHERE dwTagID = %d", tag);
}

int Tags::GetPhotoListWithTag(DWORD tag, CStringArray& out) {
  return m_db->AskList(out, "SELECT szGUID FROM PhotoTag WHERE dwTagID = %d", tag);
}

int Tags::GetTagLists(const char* guid, TagArray& out) {
  return m_db->AskRecords(
      out, kTagColumns,
      "SELECT distinct b.dwTagID, b.szTagName FROM PhotoTag as a INNER JOIN TagInfo as b "
      "ON a.dwTagID = b.dwTagID WHERE a.szGUID = '%s'",
      Raw(guid));
}

int Tags::GetTagLists(const CStringArray& guids, CDWordArray& common, CDWordArray& partial) {
  if (guids.IsEmpty()) return 0;
  return m_db->Guarded(0, [&] {
    std::map<DWORD, int> photos_by_tag;
    for (const CString& guid : guids)
      for (Row& row : m_db->Select("SELECT dwTagID FROM PhotoTag WHERE szGUID = '%s'", Raw(guid)))
        ++photos_by_tag[row.Id()];
    for (const auto& [tag, photos] : photos_by_tag)
      (photos == guids.GetSize() ? common : partial).Add(tag);
    return common.GetSize() + partial.GetSize();
  });
}

CString Tags::GetTagNames(const char* guid, DWORD excluded_tag) {
  return m_db->Guarded(CString(), [&] {
    CString names;
    AppendNames(names, m_db->Select("SELECT distinct b.szTagName FROM PhotoTag as a "
                                    "INNER JOIN TagInfo as b ON a.dwTagID = b.dwTagID "
                                    "WHERE a.szGUID = '%s' AND a.dwTagID <> %d "
                                    "ORDER BY b.szTagName",
                                    Raw(guid), excluded_tag));
    return names;
  });
}

CString Tags::GetTagNames(const CStringArray& guids, DWORD excluded_tag) {
  if (guids.IsEmpty()) return {};
  return m_db->Guarded(CString(), [&] {
    CString names;
    for (Row& row : m_db->Select("SELECT b.szTagName, COUNT(b.szTagName) as nCount "
                                 "FROM PhotoTag as a INNER JOIN TagInfo as b "
                                 "ON a.dwTagID = b.dwTagID WHERE a.szGUID IN (%s) "
                                 "AND a.dwTagID <> %d Group By b.szTagName ORDER BY b.szTagName",
                                 GuidList(guids), excluded_tag))
      if (row.Integer("nCount") == guids.GetSize()) AppendName(names, row.Text());
    return names;
  });
}

}  // namespace vdstomgr::catalogue
