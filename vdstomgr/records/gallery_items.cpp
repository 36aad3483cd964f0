#include "vdstomgr/records/gallery_items.h"

#include <algorithm>

#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/records/image_fitting.h"
#include "vdstomgr/records/photo_info.h"
#include "vdstomgr/records/trash_photo_info.h"

using vdstomgr::LocalMidnight;
using vdstomgr::TimeOrZero;

namespace {

constexpr BYTE kPhoto = 0;
constexpr BYTE kTrashedPhoto = 1;
constexpr DWORD kNoFolder = 0xFFFFFFFF;
constexpr std::size_t kMemoBytes = 100;

/// In code page 949 every byte from 0x80 on takes the next one along, on purpose: also where the
/// two are no character.
std::string_view CutMemo(std::string_view text) {
  if (vdstomgr::GetTextCodePage() != vdstomgr::TextCodePage::korean949)
    return vdstomgr::CutToBytes(text, kMemoBytes);
  std::size_t end = 0;
  while (end < std::min(text.size(), kMemoBytes)) {
    const std::size_t bytes = static_cast<unsigned char>(text[end]) < 0x80 ? 1 : 2;
    if (end + bytes > kMemoBytes) break;
    end += bytes;
  }
  return text.substr(0, end);
}

/// The fields that photos and photos in the trash call the same.
template <class Photo>
void SetShared(GA_TBITEMINFO& item, const Photo& photo) {
  item.SetGUID(photo.szGUID);
  item.FileSize = photo.FileSize;
  item.NoThumbnail = photo.byteNoLTB;
  item.Rotate = photo.byteRotate;
  item.Width = photo.Width;
  item.Height = photo.Height;
  item.UploadEnd = photo.UploadEnd;
  item.LockStatus = photo.LockStatus;
}

/// All but the folder and the times of registration.
void SetFromPhoto(GA_TBITEMINFO& item, const PHOTOINFO& photo) {
  SetShared(item, photo);
  item.Type = kPhoto;
  item.SetFileName(photo.GetFileName());
  item.Public = photo.bytePublic;
  item.Flag = photo.byteFlag;
  item.Comment = photo.byteComment;
  item.LinkUrl = photo.LinkUrl;
  item.SetMemoID(photo.GetMemoID());
  item.CommentCount = photo.CommentCount;
  item.TotalDownloadCount = photo.TotalDownloadCount;
  item.ModDate = {photo.LastWriteTimeLow, photo.LastWriteTimeHigh};
  item.SetUploadUserID(photo.GetUploadUserID());
}

}  // namespace

GA_TBITEMINFO::GA_TBITEMINFO(BYTE type)
    : Type(type), Width(vdstomgr::kPlaceholderSide), Height(vdstomgr::kPlaceholderSide) {}

GA_TBITEMINFO::GA_TBITEMINFO(const PHOTOINFO& photo) {
  SetPhotoInfo(&photo);
}

GA_TBITEMINFO::GA_TBITEMINFO(const TRASHPHOTOINFO& photo) {
  SetPhotoInfo(&photo);
}

GA_TBITEMINFO::GA_TBITEMINFO(const GA_TRASHITEMINFO& item) {
  SetPhotoInfo(&item);
}

void GA_TBITEMINFO::FreeBuff() {
  for (vdstomgr::OwnedText* text :
       {&m_FileName, &m_FolderPath, &m_WriterID, &m_MemoID, &m_Memo, &m_UploadUserID})
    text->Assign(nullptr);
}

void GA_TBITEMINFO::SetMemo(const char* text) {
  m_Memo.Assign(text == nullptr ? nullptr : std::string(CutMemo(text)).c_str());
}

void GA_TBITEMINFO::SetWidthHeight(int cx, int cy) {
  Width = static_cast<WORD>(cx);
  Height = static_cast<WORD>(cy);
}

void GA_TBITEMINFO::SetRegDate(std::int32_t time) {
  RegDate = TimeOrZero(time);
  RegDay = LocalMidnight(RegDate);
}

void GA_TBITEMINFO::SetFlag(int bit, bool on) {
  const auto mask = static_cast<BYTE>(1U << (bit & 31));
  Flag = static_cast<BYTE>(on ? Flag | mask : Flag & ~mask);
}

CSize GA_TBITEMINFO::GetImageSizeInArea(CSize area, bool rotate) const {
  return vdstomgr::TurnedImage{Width, Height, Rotate}.SizeIn(area, rotate);
}

CRect GA_TBITEMINFO::GetImageRectInArea(CRect area, bool) const {
  return vdstomgr::TurnedImage{Width, Height, Rotate}.RectIn(area);
}

void GA_TBITEMINFO::SetPhotoInfo(const PHOTOINFO* photo) {
  if (photo == nullptr) return;
  SetFromPhoto(*this, *photo);
  dwFolderID = kNoFolder;
  SetRegDate(photo->RegDate);
}

void GA_TBITEMINFO::SetPhotoInfo(const TRASHPHOTOINFO* photo) {
  if (photo == nullptr) return;
  SetShared(*this, *photo);
  Type = kTrashedPhoto;
  SetFileName(photo->szFileName);
  dwFolderID = kNoFolder;
  Public = Flag = Comment = 0;
  SetRegDate(photo->RegDate);
}

void GA_TBITEMINFO::SetFromItem(const GA_TBITEMINFO& item) {
  SetGUID(item.GUID);
  m_FileName = item.m_FileName;
  dwFolderID = kNoFolder;
  FileSize = item.FileSize;
  NoThumbnail = item.NoThumbnail;
  Rotate = item.Rotate;
  Width = item.Width;
  Height = item.Height;
  UploadEnd = item.UploadEnd;
  LockStatus = item.LockStatus;
  SetRegDate(item.RegDate);
  m_MemoID = item.m_MemoID;
  TotalDownloadCount = item.TotalDownloadCount;
  ModDate = item.ModDate;
  m_UploadUserID = item.m_UploadUserID;
}

void GA_TBITEMINFO::SetPhotoInfo(const GA_ITEMINFO* item) {
  if (item == nullptr) return;
  SetFromItem(*item);
  Type = kPhoto;
  Public = item->Public;
  Flag = item->Flag;
  Comment = item->Comment;
  LinkUrl = item->LinkUrl;
  CommentCount = item->CommentCount;
}

void GA_TBITEMINFO::SetPhotoInfo(const GA_TRASHITEMINFO* item) {
  if (item == nullptr) return;
  SetFromItem(*item);
  Type = kTrashedPhoto;
  Public = Flag = Comment = LinkUrl = 0;
  DeleteDate = item->DeleteDate;
  m_FolderPath = item->m_FolderPath;
}

GA_ITEMINFO::GA_ITEMINFO(const PHOTOINFO& photo) {
  SetPhotoInfo(&photo);
}

GA_ITEMINFO::GA_ITEMINFO(const GA_ITEMINFO& other)
    : GA_TBITEMINFO(),
      Deleted(other.Deleted),
      dwFolderID(other.dwFolderID),
      ShootDate(other.ShootDate),
      ShootDay(other.ShootDay),
      ExifISO(other.ExifISO),
      LastWriteTimeLow(other.LastWriteTimeLow),
      LastWriteTimeHigh(other.LastWriteTimeHigh) {
  Type = 0;
}

void GA_ITEMINFO::SetShootDate(std::int32_t time) {
  ShootDate = TimeOrZero(time);
  ShootDay = LocalMidnight(ShootDate);
}

void GA_ITEMINFO::SetPhotoInfo(const PHOTOINFO* photo) {
  if (photo == nullptr) return;
  SetFromPhoto(*this, *photo);
  RegDate = photo->RegDate;
  RegDay = LocalMidnight(RegDate);
  Deleted = 0;
  dwFolderID = photo->dwFolderID;
  ShootDate = photo->ShootDate;
  ShootDay = LocalMidnight(ShootDate);
  ExifISO = photo->ExifISO;
  LastWriteTimeLow = photo->LastWriteTimeLow;
  LastWriteTimeHigh = photo->LastWriteTimeHigh;
}

GA_TRASHITEMINFO::GA_TRASHITEMINFO(const TRASHPHOTOINFO& photo) {
  SetPhotoInfo(&photo);
}

void GA_TRASHITEMINFO::SetPhotoInfo(const TRASHPHOTOINFO* photo) {
  if (photo == nullptr) return;
  GA_TBITEMINFO::SetPhotoInfo(photo);
  LinkUrl = 0;
  DeleteDate = photo->DeleteDate;
  SetFolderPath(photo->szFolderPath);
}
