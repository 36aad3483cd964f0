#pragma once

#include <cstdint>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/geometry.h"
#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/records/fixed_text.h"
#include "vdstomgr/records/owned_text.h"
#include "vdstomgr/records/record_rules.h"

struct GA_ITEMINFO;
struct GA_TRASHITEMINFO;
struct PHOTOINFO;
struct TRASHPHOTOINFO;

/// One thumbnail of a browser view: a photo, a photo in the trash or a folder's icon. A plain
/// value; starts all zero and empty, copies own their texts. Texts are in the process's code page;
/// getters never return null.
struct VDSTO_API GA_TBITEMINFO {
  BYTE Type = 255;  ///< 0: a photo, 1: a photo in the trash, 255: not set
  char GUID[37] = {};
  DWORD dwFolderID = 0;  ///< set by who needs it
  std::uint64_t FileSize = 0;
  BYTE NoThumbnail = 0;  ///< 1: the photo has no thumbnail location
  BYTE Rotate = 0;       ///< quarter turns
  WORD Width = 0;
  WORD Height = 0;
  BYTE Public = 0;
  BYTE Flag = 0;  ///< user flags, one bit each
  BYTE Comment = 0;
  BYTE UploadEnd = 0;
  BYTE LinkUrl = 0;
  BYTE LockStatus = 0;
  std::int32_t RegDate = 0;
  std::int32_t RegDay = 0;  ///< the start of its local day
  std::int32_t DeleteDate = 0;
  std::int32_t SeqNo = 0;  ///< the place in a view
  std::int32_t ViewCount = 0;
  std::int32_t CommentCount = 0;
  std::int32_t TotalDownloadCount = 0;
  std::int32_t LinkDownloadCount = 0;
  FILETIME ModDate = {};

  GA_TBITEMINFO() = default;
  /// An item of a kind, 400 x 400 until it gets a size.
  explicit GA_TBITEMINFO(BYTE type);
  GA_TBITEMINFO(const PHOTOINFO& photo);
  GA_TBITEMINFO(const TRASHPHOTOINFO& photo);
  GA_TBITEMINFO(const GA_TRASHITEMINFO& item);

  /// Frees all texts.
  void FreeBuff();

  const char* GetFileName() const { return m_FileName.Get(); }
  const char* GetFolderPath() const { return m_FolderPath.Get(); }
  const char* GetWriterID() const { return m_WriterID.Get(); }
  const char* GetMemoID() const { return m_MemoID.Get(); }
  const char* GetMemo() const { return m_Memo.Get(); }
  const char* GetUploadUserID() const { return m_UploadUserID.Get(); }

  /// Text setters copy; null or an empty text empties the field.
  void SetFileName(const char* text) { m_FileName.Assign(text); }
  void SetFolderPath(const char* text) { m_FolderPath.Assign(text); }
  void SetWriterID(const char* text) { m_WriterID.Assign(text); }
  void SetMemoID(const char* text) { m_MemoID.Assign(text); }
  void SetUploadUserID(const char* text) { m_UploadUserID.Assign(text); }
  /// The first 100 bytes, never a part of a character.
  void SetMemo(const char* text);
  /// Null leaves the GUID as it is; more than 36 bytes are cut.
  void SetGUID(const char* guid) { vdstomgr::SetFixed(GUID, guid); }

  void SetType(BYTE type) { Type = type; }
  void SetFolderID(DWORD id) { dwFolderID = id; }
  void SetFileSize(std::uint64_t bytes) { FileSize = bytes; }
  void SetNoThumbnail(BYTE mark) { NoThumbnail = mark; }
  void SetRotate(BYTE quarter_turns) { Rotate = quarter_turns; }
  /// Also of an item without a thumbnail.
  void SetWidthHeight(int cx, int cy);
  void SetPublic(BYTE state) { Public = state; }
  void SetComment(BYTE mark) { Comment = mark; }
  void SetUploadEnd(BYTE mark) { UploadEnd = mark; }
  void SetLinkUrl(BYTE state) { LinkUrl = state; }
  void SetLockStatus(BYTE state) { LockStatus = state; }
  void SetSeqNo(int number) { SeqNo = number; }
  void SetViewCount(int count) { ViewCount = count; }
  void SetCommentCount(int count) { CommentCount = count; }
  void SetTotalDownloadCount(int count) { TotalDownloadCount = count; }
  void SetLinkDownloadCount(int count) { LinkDownloadCount = count; }
  void SetModDate(FILETIME time) { ModDate = time; }

  /// Times are seconds since 1970; -1 (no time) is kept as 0. The day follows its time.
  void SetRegDate(std::int32_t time);
  void SetDeleteDate(std::int32_t time) { DeleteDate = vdstomgr::TimeOrZero(time); }

  /// All user flags at once.
  void SetFlag(BYTE flags) { Flag = flags; }
  /// The user flag number `bit` mod 32; there are the flags 0 to 7.
  void SetFlag(int bit, bool on);

  /// The size that fits the picture into `area`, and where it stands in the middle of one, by the
  /// rules of PHOTOINFO.
  CSize GetImageSizeInArea(CSize area, bool rotate) const;
  CRect GetImageRectInArea(CRect area, bool unused) const;

  /// Fill the item from a record; null changes nothing. The folder becomes 0xFFFFFFFF, and what a
  /// record does not have stays as it is.
  void SetPhotoInfo(const PHOTOINFO* photo);
  void SetPhotoInfo(const TRASHPHOTOINFO* photo);
  void SetPhotoInfo(const GA_ITEMINFO* item);
  /// All but the number of comments.
  void SetPhotoInfo(const GA_TRASHITEMINFO* item);

 private:
  void SetFromItem(const GA_TBITEMINFO& item);

  vdstomgr::OwnedText m_FileName;
  vdstomgr::OwnedText m_FolderPath;
  vdstomgr::OwnedText m_WriterID;
  vdstomgr::OwnedText m_MemoID;
  vdstomgr::OwnedText m_Memo;
  vdstomgr::OwnedText m_UploadUserID;
};

/// A photo of a list, with what lists need besides its thumbnail.
struct VDSTO_API GA_ITEMINFO : GA_TBITEMINFO {
  BYTE Deleted = 0;
  DWORD dwFolderID = 0xFFFFFFFF;  ///< the photo's folder; the thumbnail has one of its own
  std::int32_t ShootDate = 0;
  std::int32_t ShootDay = 0;  ///< the start of its local day
  WORD ExifISO = 0;
  DWORD LastWriteTimeLow = 0;
  DWORD LastWriteTimeHigh = 0;

  GA_ITEMINFO() { Type = 0; }
  GA_ITEMINFO(const PHOTOINFO& photo);
  /// Leaves the thumbnail all zero and copies the other fields only, on purpose. Assignments and
  /// moves take all.
  GA_ITEMINFO(const GA_ITEMINFO& other);
  GA_ITEMINFO(GA_ITEMINFO&& other) = default;
  GA_ITEMINFO& operator=(const GA_ITEMINFO& other) = default;
  GA_ITEMINFO& operator=(GA_ITEMINFO&& other) = default;

  void SetDeleted(BYTE mark) { Deleted = mark; }
  void SetFolder(DWORD id) { dwFolderID = id; }
  /// -1 (no time) is kept as 0. The day follows the time.
  void SetShootDate(std::int32_t time);

  /// Fills the item from a photo; null changes nothing. The thumbnail's own folder stays, and times
  /// are taken as they are, -1 too.
  void SetPhotoInfo(const PHOTOINFO* photo);
};

/// A photo in the trash.
struct VDSTO_API GA_TRASHITEMINFO : GA_TBITEMINFO {
  GA_TRASHITEMINFO() = default;
  explicit GA_TRASHITEMINFO(BYTE type) : GA_TBITEMINFO(type) {}
  GA_TRASHITEMINFO(const TRASHPHOTOINFO& photo);

  /// As a thumbnail is filled from one, with the time of deletion and the folder's path.
  void SetPhotoInfo(const TRASHPHOTOINFO* photo);
};

namespace vdstomgr {
using ItemList = CArray<GA_ITEMINFO*, GA_ITEMINFO*>;
}

/// The photos under one tag. Copies share the list, which belongs to who made it.
struct GA_ITEMINFO_GROUP {
  DWORD dwTagID = 0;
  vdstomgr::ItemList* pItemList = nullptr;
};

namespace vdstomgr {
using ItemGroupArray = CArray<GA_ITEMINFO_GROUP, GA_ITEMINFO_GROUP&>;
}
