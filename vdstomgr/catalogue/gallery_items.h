#pragma once

#include "vdstomgr/catalogue/tags.h"
#include "vdstomgr/platform/os/lock.h"
#include "vdstomgr/records/gallery_items.h"

namespace vdstomgr::catalogue {

/// Items for the browser views: icons of folders, and photos by their tags.
class VDSTO_API GalleryItems : public Tags {
 public:
  /// The photo that the folder names as its icon or, when there is none, that of
  /// GetFolderIconFromMaster. False, and the item as it was, when there is neither.
  bool GetFolderIcon(DWORD folder, GA_TBITEMINFO& item);
  /// The folder's newest photo that has a thumbnail: the last one registered and, of several, the
  /// last one shot. The folder's row is not asked.
  bool GetFolderIconFromMaster(DWORD folder, GA_TBITEMINFO& item);

  /// Appends the photos that carry any of the tags, a group for each tag by id (`byTag`), or one
  /// group, named by the first tag, of the photos that carry all of them. A photo passes when its
  /// flags and its public state have all bits of their mask; a mask of 255 lets all pass. No group
  /// is empty. Answers how many groups there are then; 0 for no tags; -1 on failure, with the
  /// groups that were whole.
  ///
  /// Takes a lock of its own, before the DAO lock, and keeps it whatever it answers until the same
  /// thread calls Free_FilteredTagItemList: once for each call. Two processes must not ask for all
  /// tags at the same time, because the tables that this works in are the file's.
  int Lock_FilteredTagItemList(ItemGroupArray& groups, const CDWordArray& tagIDs, bool byTag,
                               BYTE flagMask, BYTE publicMask);
  /// Deletes the lists of all groups with their items, empties the array and gives the lock back.
  void Free_FilteredTagItemList(ItemGroupArray& groups);

 private:
  LentLock m_lockTagItems;
};

}  // namespace vdstomgr::catalogue
