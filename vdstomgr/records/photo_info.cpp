#include "vdstomgr/records/photo_info.h"

#include "vdstomgr/records/fixed_text.h"
#include "vdstomgr/records/image_fitting.h"
#include "vdstomgr/records/record_rules.h"

void PHOTOINFO::SetLTBURL(const char* text) {
  m_LTBURL.Assign(text);
  vdstomgr::MarkThumbnail(*this, !m_LTBURL.IsEmpty());
}

void PHOTOINFO::SetGUID(const char* guid) {
  vdstomgr::SetFixed(szGUID, guid);
}

void PHOTOINFO::SetWidthHeight(int cx, int cy) {
  vdstomgr::SetSizeUnlessPlaceholder(*this, cx, cy);
}

void PHOTOINFO::SetFlag(int bit, bool on) {
  if (bit < 0 || bit > 7) return;
  const auto mask = static_cast<BYTE>(1 << bit);
  byteFlag = static_cast<BYTE>(on ? byteFlag | mask : byteFlag & ~mask);
}

CSize PHOTOINFO::GetImageSizeInArea(CSize area, bool rotate) const {
  return vdstomgr::TurnedImage{Width, Height, byteRotate}.SizeIn(area, rotate);
}

CRect PHOTOINFO::GetImageRectInArea(CRect area, bool) const {
  return vdstomgr::TurnedImage{Width, Height, byteRotate}.RectIn(area);
}
