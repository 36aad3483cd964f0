#include "vdstomgr/catalogue/gallery_items.h"

#include <memory>

#include "vdstomgr/session/database_session.h"
#include "vdstomgr/tables/photo_columns.h"

namespace vdstomgr::catalogue {

namespace {

constexpr BYTE kNoFilter = 255;

constexpr ColumnMap kItemColumns(std::array{
    FixedText<&GA_TBITEMINFO::GUID, GA_ITEMINFO>("szGUID"),
    PropertyText<&GA_TBITEMINFO::GetFileName, &GA_TBITEMINFO::SetFileName, GA_ITEMINFO>(
        "szFileName"),
    Number<&GA_TBITEMINFO::Public, GA_ITEMINFO>("bytePublic"),
    Number<&GA_TBITEMINFO::Flag, GA_ITEMINFO>("byteFlag"),
    Number<&GA_TBITEMINFO::Comment, GA_ITEMINFO>("byteComment"),
    DecimalText<&GA_TBITEMINFO::FileSize, GA_ITEMINFO>("dxFileSize"),
    Number<&GA_TBITEMINFO::Width, GA_ITEMINFO>("wWidth"),
    Number<&GA_TBITEMINFO::Height, GA_ITEMINFO>("wHeight"),
    Number<&GA_ITEMINFO::dwFolderID>("dwFolderID"),
    Number<&GA_TBITEMINFO::Rotate, GA_ITEMINFO>("byteRotate"),
    RuledDate<&GA_ITEMINFO::SetShootDate>("szShootDate"),
    RuledDate<&GA_TBITEMINFO::SetRegDate, GA_ITEMINFO>("szRegDate"),
    Number<&GA_ITEMINFO::ExifISO>("wExifISO"),
});

/// What the masks are held against, read before an item is made.
struct PhotoState {
  BYTE flags = 0;
  BYTE state = 0;
};
constexpr ColumnMap kStateColumns(std::array{
    Number<&PhotoState::flags>("byteFlag"),
    Number<&PhotoState::state>("bytePublic"),
});

bool FillFirst(Rows rows, GA_TBITEMINFO& item) {
  if (!rows.HasRow()) return false;
  const PHOTOINFO photo = kPhotoColumns.ReadFresh(rows->Recordset());
  item.SetPhotoInfo(&photo);
  return true;
}

struct ItemsDeleter {
  void operator()(ItemList* items) const {
    for (const GA_ITEMINFO* item : *items) delete item;
    delete items;
  }
};

/// Makes groups of the rows of photos that it is given one by one. The group at hand is lost with
/// the object unless it is closed.
class GroupBuilder {
 public:
  GroupBuilder(ItemGroupArray& groups, BYTE flag_mask, BYTE public_mask)
      : groups_(groups), flag_mask_(flag_mask), public_mask_(public_mask) {}

  void Add(Row& row, DWORD tag) {
    if (tag != tag_) Close();
    tag_ = tag;
    if (!Passes(row)) return;
    auto item = std::make_unique<GA_ITEMINFO>();
    item->SetWidthHeight(kPlaceholderSide, kPlaceholderSide);
    kItemColumns.Read(row.Recordset(), *item);
    if (!items_) items_.reset(new ItemList);
    items_->Add(item.get());
    item.release();
  }

  void Close() {
    if (!items_) return;
    groups_.Add({tag_, items_.get()});
    items_.release();
  }

 private:
  static bool Passes(BYTE value, BYTE mask) { return mask == kNoFilter || (value & mask) == mask; }

  bool Passes(Row& row) const {
    if (flag_mask_ == kNoFilter && public_mask_ == kNoFilter) return true;
    const PhotoState photo = kStateColumns.ReadFresh(row.Recordset());
    return Passes(photo.flags, flag_mask_) && Passes(photo.state, public_mask_);
  }

  ItemGroupArray& groups_;
  const BYTE flag_mask_;
  const BYTE public_mask_;
  DWORD tag_ = 0;
  std::unique_ptr<ItemList, ItemsDeleter> items_;
};

void AddTagByTag(DatabaseSession& db, const CDWordArray& tags, GroupBuilder& groups) {
  for (Row& row : db.Select("SELECT b.dwTagID, a.szGUID, a.szFileName, a.bytePublic, a.byteFlag, "
                            "a.byteComment, a.dxFileSize, a.wWidth, a.wHeight, a.dwFolderID, "
                            "a.byteRotate, a.szShootDate, a.szRegDate, a.wExifISO \t\t\t"
                            "FROM PhotoMaster as a INNER JOIN "
                            "(SELECT * From PhotoTag WHERE dwTagID IN (%s) ORDER BY szGUID) as b "
                            "ON a.szGUID = b.szGUID ORDER BY b.dwTagID",
                            IdList(tags)))
    groups.Add(row, row.Id());
}

/// Leaves the photos that carry all of the tags in IX_PT. A statement that fails unnoticed would
/// leave others.
void Intersect(DatabaseSession& db, const CDWordArray& tags) {
  db.RunOrThrow("delete from IX_PT");
  db.RunOrThrow("Insert into IX_PT select szGUID from PhotoTag where dwTagID = %d", tags[0]);
  for (int i = 1; i < tags.GetSize(); ++i) {
    db.RunOrThrow("delete from IX_PT1");
    db.RunOrThrow(
        "insert into IX_PT1 select a.szGUID from PhotoTag as a INNER JOIN IX_PT as b "
        "ON a.szGUID = b.szGUID where a.dwTagID = %d",
        tags[i]);
    db.RunOrThrow(
        "delete a.* from IX_PT as a LEFT OUTER JOIN IX_PT1 as b ON a.szGUID = b.szGUID "
        "where b.szGUID IS NULL");
  }
}

void AddWithAll(DatabaseSession& db, const CDWordArray& tags, GroupBuilder& groups) {
  Intersect(db, tags);
  if (!db.Exists("SELECT * from IX_PT")) return;
  for (Row& row :
       db.Select("SELECT a.* FROM PhotoMaster as a INNER JOIN IX_PT as b ON a.szGUID = b.szGUID"))
    groups.Add(row, tags[0]);
}

}  // namespace

bool GalleryItems::GetFolderIcon(DWORD folder, GA_TBITEMINFO& item) {
  return m_db->Guarded(false, [&] {
    return FillFirst(m_db->Select("SELECT a.* FROM PhotoMaster as a INNER JOIN FolderInfo as b "
                                  "ON a.szGUID = b.szIconGUID WHERE b.dwFolderID = %d",
                                  folder),
                     item) ||
           GetFolderIconFromMaster(folder, item);
  });
}

bool GalleryItems::GetFolderIconFromMaster(DWORD folder, GA_TBITEMINFO& item) {
  return m_db->Guarded(false, [&] {
    // The key alone is sorted: whole rows would be, too, and a folder may have very many.
    Rows newest = m_db->Select(
        "SELECT szGUID FROM PhotoMaster WHERE dwFolderID = %d AND szLTBURL <> '' "
        "ORDER BY szRegDate DESC, szShootDate DESC, szGUID DESC",
        folder);
    return newest.HasRow() &&
           FillFirst(m_db->Select("SELECT * FROM PhotoMaster WHERE szGUID = '%s'", newest->Text()),
                     item);
  });
}

int GalleryItems::Lock_FilteredTagItemList(ItemGroupArray& groups, const CDWordArray& tagIDs,
                                           bool byTag, BYTE flagMask, BYTE publicMask) {
  m_lockTagItems.Lend();
  if (tagIDs.IsEmpty()) return 0;
  return m_db->Guarded(-1, [&] {
    GroupBuilder builder(groups, flagMask, publicMask);
    (byTag ? AddTagByTag : AddWithAll)(*m_db, tagIDs, builder);
    builder.Close();
    return groups.GetSize();
  });
}

void GalleryItems::Free_FilteredTagItemList(ItemGroupArray& groups) {
  for (const GA_ITEMINFO_GROUP& group : groups) {
    if (group.pItemList != nullptr) ItemsDeleter()(group.pItemList);
  }
  groups.RemoveAll();
  m_lockTagItems.TakeBack();
}

}  // namespace vdstomgr::catalogue
