#include "vdstomgr/records/photo_info.h"

#include <algorithm>
#include <limits>

#include "vdstomgr/records/fixed_text.h"
#include "vdstomgr/records/record_rules.h"

namespace {

int Scaled(int length, double ratio) {
  using Limits = std::numeric_limits<int>;
  return static_cast<int>(std::clamp<double>(length * ratio + 0.5, Limits::min(), Limits::max()));
}

int Centred(int start, int available, int used) {
  return static_cast<int>(start + (std::int64_t{available} - used) / 2);
}

}  // namespace

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
  if (Width == 0 || Height == 0) return area;
  const bool turned = byteRotate % 2 == 1;
  const bool landscape = turned ? Height >= Width : Height <= Width;
  // Only the proportions depend on `rotate`; that the choice above does not is on purpose.
  const double width = rotate && turned ? Height : Width;
  const double height = rotate && turned ? Width : Height;
  return landscape ? CSize{area.cx, Scaled(area.cx, height / width)}
                   : CSize{Scaled(area.cy, width / height), area.cy};
}

CRect PHOTOINFO::GetImageRectInArea(CRect area, bool) const {
  const CSize size = GetImageSizeInArea(area.Size(), true);
  const int left = Centred(area.left, area.Width(), size.cx);
  const int top = Centred(area.top, area.Height(), size.cy);
  return {left, top, left + size.cx, top + size.cy};
}
