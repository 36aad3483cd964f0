#include "vdstomgr/catalogue/notifications.h"

#include "vdstomgr/records/fixed_text.h"
#include "vdstomgr/session/database_session.h"

namespace vdstomgr::catalogue {

namespace {

constexpr DWORD kEverything = 0xFFFFFFFF;

/// Adds the bits to the mark at hand or, when there is none, makes one.
void WriteMark(Rows& rows, const char* key, const COleVariant& item, BYTE type) {
  CRkDaoRecordset& row = rows->Recordset();
  if (rows.HasRow()) {
    type = static_cast<BYTE>(type | rows->Byte("byteType"));
    row.Edit();
  } else {
    row.AddNew();
    row.SetFieldValue(key, item);
  }
  row.SetFieldValue("byteType", type);
  row.Update();
}

/// Appends what `read` makes of every row, up to one that `covers_all`, which stays alone.
template <class Array, class Read, class CoversAll>
bool AppendMarks(Rows rows, Array& marks, Read read, CoversAll covers_all) {
  for (Row& row : rows) {
    const auto mark = read(row);
    const bool last = covers_all(mark);
    if (last) marks.RemoveAll();
    marks.Add(mark);
    if (last) break;
  }
  return true;
}

}  // namespace

void Notifications::cAddNotify(DWORD id, BYTE type, const char* table, const char* key) {
  m_db->Guarded([&] {
    if (id == kEverything) {
      cResetNotify("NotifyFolder_Tree");  // on purpose, not the table itself
      m_db->Run("INSERT INTO %s (%s, byteType) values (-1, 255)", Raw(table), Raw(key));
      return;
    }
    Rows rows = m_db->Select("SELECT * FROM %s WHERE %s = -1 OR (%s = %d)", Raw(table), Raw(key),
                             Raw(key), id);
    if (rows.HasRow() && rows->Id(key) == kEverything) return;
    WriteMark(rows, key, static_cast<std::int32_t>(id), type);
  });
}

void Notifications::cAddNotify(const CDWordArray& ids, BYTE type, const char* table,
                               const char* key) {
  m_db->ForEach(ids, [&](DWORD id) { cAddNotify(id, type, table, key); });
}

bool Notifications::cGetNotify(NotifyArray& marks, const char* table, const char* key) {
  return m_db->Guarded(false, [&] {
    return AppendMarks(
        m_db->Select("SELECT * FROM %s", Raw(table)), marks,
        [&](Row& row) {
          return NOTIFY_INFO{row.Id(key), row.Byte("byteType")};
        },
        [](const NOTIFY_INFO& mark) { return mark.id == kEverything; });
  });
}

void Notifications::cResetNotify(const char* table) {
  m_db->Execute("DELETE FROM %s", Raw(table));
}

// The four operations of one table.
#define VDSTO_NOTIFICATIONS_OF(name, key)                                  \
  void Notifications::AddNotify##name(DWORD id, BYTE type) {               \
    cAddNotify(id, type, "Notify" #name, key);                             \
  }                                                                        \
  void Notifications::AddNotify##name(const CDWordArray& ids, BYTE type) { \
    cAddNotify(ids, type, "Notify" #name, key);                            \
  }                                                                        \
  bool Notifications::GetNotify##name(NotifyArray& marks) {                \
    return cGetNotify(marks, "Notify" #name, key);                         \
  }                                                                        \
  void Notifications::ResetNotify##name() {                                \
    cResetNotify("Notify" #name);                                          \
  }

VDSTO_NOTIFICATIONS_OF(Folder_Tree, "dwFolderID")
VDSTO_NOTIFICATIONS_OF(Folder_List, "dwFolderID")
VDSTO_NOTIFICATIONS_OF(Date_Tree, "dtDateID")
VDSTO_NOTIFICATIONS_OF(Date_List, "dtDateID")
VDSTO_NOTIFICATIONS_OF(Tag_Tree, "dwTagID")
VDSTO_NOTIFICATIONS_OF(Tag_List, "dwTagID")

#undef VDSTO_NOTIFICATIONS_OF

void Notifications::AddNotifyTrash_List(const char* guid, BYTE type) {
  m_db->Guarded([&] {
    if (guid == nullptr) {
      ResetNotifyTrash_List();
      m_db->Run("INSERT INTO NotifyTrash_List (szGUID, byteType) values ('', 0xFF)");
      return;
    }
    Rows rows = m_db->Select("SELECT * FROM NotifyTrash_List WHERE szGUID = '' OR szGUID = '%s'",
                             Raw(guid));
    if (rows.HasRow() && rows->Text("szGUID").IsEmpty()) return;
    WriteMark(rows, "szGUID", guid, type);
  });
}

void Notifications::AddNotifyTrash_List(const CStringArray& guids, BYTE type) {
  m_db->ForEach(guids, [&](const CString& guid) { AddNotifyTrash_List(guid, type); });
}

bool Notifications::GetNotifyTrash_List(TrashNotifyArray& marks) {
  return m_db->Guarded(false, [&] {
    return AppendMarks(
        m_db->Select("SELECT * FROM NotifyTrash_List"), marks,
        [](Row& row) {
          TRASHNOTIFY_INFO mark{"", row.Byte("byteType")};
          CopyToFixed(mark.szGUID, row.Text("szGUID").Str());
          return mark;
        },
        [](const TRASHNOTIFY_INFO& mark) { return mark.szGUID[0] == '\0'; });
  });
}

void Notifications::ResetNotifyTrash_List() {
  m_db->Execute("DELETE FROM NotifyTrash_List");
}

}  // namespace vdstomgr::catalogue
