#pragma once

#include "vdstomgr/catalogue/side_tables.h"
#include "vdstomgr/records/notify_info.h"

namespace vdstomgr::catalogue {

/// What changed since a view last looked: folders, dates and tags for a tree and for a list,
/// deleted photos for a list. A mark is an item and bits of what changed; marks of one item add up.
/// The mark of everything (id 0xFFFFFFFF with any type, or a null GUID) covers all others and stays
/// alone in what a view gets. Who gets and then resets holds the DAO lock over both, or loses the
/// marks made in between.
class VDSTO_API Notifications : public SideTables {
 public:
  /// Marks of folders for a tree.
  void AddNotifyFolder_Tree(DWORD id, BYTE type);
  void AddNotifyFolder_Tree(const CDWordArray& ids, BYTE type);
  bool GetNotifyFolder_Tree(NotifyArray& marks);
  void ResetNotifyFolder_Tree();

  /// Marks of folders for a list.
  void AddNotifyFolder_List(DWORD id, BYTE type);
  void AddNotifyFolder_List(const CDWordArray& ids, BYTE type);
  bool GetNotifyFolder_List(NotifyArray& marks);
  void ResetNotifyFolder_List();

  /// Marks of dates for a tree.
  void AddNotifyDate_Tree(DWORD id, BYTE type);
  void AddNotifyDate_Tree(const CDWordArray& ids, BYTE type);
  bool GetNotifyDate_Tree(NotifyArray& marks);
  void ResetNotifyDate_Tree();

  /// Marks of dates for a list.
  void AddNotifyDate_List(DWORD id, BYTE type);
  void AddNotifyDate_List(const CDWordArray& ids, BYTE type);
  bool GetNotifyDate_List(NotifyArray& marks);
  void ResetNotifyDate_List();

  /// Marks of tags for a tree.
  void AddNotifyTag_Tree(DWORD id, BYTE type);
  void AddNotifyTag_Tree(const CDWordArray& ids, BYTE type);
  bool GetNotifyTag_Tree(NotifyArray& marks);
  void ResetNotifyTag_Tree();

  /// Marks of tags for a list.
  void AddNotifyTag_List(DWORD id, BYTE type);
  void AddNotifyTag_List(const CDWordArray& ids, BYTE type);
  bool GetNotifyTag_List(NotifyArray& marks);
  void ResetNotifyTag_List();

  /// Marks of deleted photos for a list. An empty GUID that is not null is marked with its type,
  /// and then covers all others too.
  void AddNotifyTrash_List(const char* guid, BYTE type);
  void AddNotifyTrash_List(const CStringArray& guids, BYTE type);
  bool GetNotifyTrash_List(TrashNotifyArray& marks);
  void ResetNotifyTrash_List();

 protected:
  /// The mark of everything empties NotifyFolder_Tree, whichever table it goes into.
  void cAddNotify(DWORD id, BYTE type, const char* table, const char* key);
  void cAddNotify(const CDWordArray& ids, BYTE type, const char* table, const char* key);
  /// Appends the marks; the mark of everything replaces all that the array holds. False on failure.
  bool cGetNotify(NotifyArray& marks, const char* table, const char* key);
  void cResetNotify(const char* table);
};

}  // namespace vdstomgr::catalogue
