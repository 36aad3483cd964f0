#pragma once

#include "vdstomgr/catalogue/photo_attributes.h"
#include "vdstomgr/records/tag_info.h"

namespace vdstomgr::catalogue {

/// Tags, and which photos carry them.
class VDSTO_API Tags : public PhotoAttributes {
 public:
  /// ---- Tags ----

  /// One more than the highest id in use; 1 when there is no tag.
  DWORD GetNewTagID();
  /// Adds a tag; false when its name or id is taken, or the name does not fit.
  bool AddTagInfo(const char* name, DWORD id);
  /// False when there is no such tag, and when any tag has that name, itself included.
  bool ChangeTagName(DWORD id, const char* name);
  /// Deletes the tag only: the photos' links to it stay until RemoveAllTagByTagID.
  void RemoveTagInfo(DWORD id);
  /// Is there a tag of that name, or id?
  bool IsTag(const char* name);
  bool IsTag(DWORD id);
  /// 0xFFFFFFFF when there is no tag of that name.
  DWORD GetTagID(const char* name);
  /// Empty when there is no such tag.
  CString GetTagName(DWORD id);
  /// The names in the order of the ids, joined by ','. Missing tags are left out.
  CString GetTagNamesByTagIDs(const CDWordArray& ids);
  /// By name.
  int GetTagList(TagArray& out);
  /// The tags that photos carry, by name.
  int GetTagListAndCount(TagCountArray& out);

  /// ---- Tags of photos ----

  /// Tags the photos that are not tagged yet; with `bSync` all of them are marked for the
  /// synchronisation of tags.
  bool AddTag(const char* guid, DWORD tag, bool bSync);
  bool AddTag(const CStringArray& guids, DWORD tag, bool bSync);
  /// Marks the photos always, tagged or not.
  bool RemoveTag(const char* guid, DWORD tag);
  bool RemoveTag(const CStringArray& guids, DWORD tag);
  /// Does the photo carry the tag?
  bool IsTagged(const char* guid, DWORD tag);
  /// With `bSync` the photos are marked.
  void RemoveAllTagByGUID(const char* guid, bool bSync);
  void RemoveAllTagByGUID(const CStringArray& guids, bool bSync);
  /// Marks no photo, on purpose.
  void RemoveAllTagByTagID(DWORD tag);
  /// The photos that carry a tag.
  int GetPhotoListWithTag(DWORD tag, CStringArray& out);
  /// The tags of a photo, in no order.
  int GetTagLists(const char* guid, TagArray& out);
  /// The tags that all of the photos carry, and those that only some do, by id. Answers the size of
  /// both lists together; 0 at once for no photos.
  int GetTagLists(const CStringArray& guids, CDWordArray& common, CDWordArray& partial);
  /// The names of a photo's tags but one, by name, joined by ','.
  CString GetTagNames(const char* guid, DWORD excluded_tag);
  /// Those that all of the photos carry. No photo must be given twice.
  CString GetTagNames(const CStringArray& guids, DWORD excluded_tag);
};

}  // namespace vdstomgr::catalogue
