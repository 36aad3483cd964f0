#pragma once

#include "vdstomgr/platform/framework/geometry.h"
#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr {

/// The size of a picture that is drawn turned by a number of quarter turns.
struct TurnedImage {
  WORD width;
  WORD height;
  BYTE turns;

  /// The size that fits the picture into `area`, keeping its proportions: as wide as the area when
  /// it lies, as high when it stands. Whether it lies honours the turns always; the proportions do
  /// only with `rotate`. A picture whose width or height is 0 fills the area.
  CSize SizeIn(CSize area, bool rotate) const;
  /// The rotated size in the middle of `area`, not clipped.
  CRect RectIn(CRect area) const;
};

}  // namespace vdstomgr
