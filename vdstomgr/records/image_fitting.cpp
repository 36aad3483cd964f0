#include "vdstomgr/records/image_fitting.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace vdstomgr {

namespace {

int Scaled(int length, double ratio) {
  using Limits = std::numeric_limits<int>;
  return static_cast<int>(std::clamp<double>(length * ratio + 0.5, Limits::min(), Limits::max()));
}

int Centred(int start, int available, int used) {
  return static_cast<int>(start + (std::int64_t{available} - used) / 2);
}

}  // namespace

CSize TurnedImage::SizeIn(CSize area, bool rotate) const {
  if (width == 0 || height == 0) return area;
  const bool turned = turns % 2 == 1;
  const bool landscape = turned ? height >= width : height <= width;
  // Only the proportions depend on `rotate`; that the choice above does not is on purpose.
  const double shown_width = rotate && turned ? height : width;
  const double shown_height = rotate && turned ? width : height;
  return landscape ? CSize{area.cx, Scaled(area.cx, shown_height / shown_width)}
                   : CSize{Scaled(area.cy, shown_width / shown_height), area.cy};
}

CRect TurnedImage::RectIn(CRect area) const {
  const CSize size = SizeIn(area.Size(), true);
  const int left = Centred(area.left, area.Width(), size.cx);
  const int top = Centred(area.top, area.Height(), size.cy);
  return {left, top, left + size.cx, top + size.cy};
}

}  // namespace vdstomgr
