#pragma once

#include "vdstomgr/platform/framework/types.h"

struct CPoint {
  LONG x = 0;
  LONG y = 0;

  friend bool operator==(const CPoint&, const CPoint&) = default;
};

struct CSize {
  LONG cx = 0;
  LONG cy = 0;

  friend bool operator==(const CSize&, const CSize&) = default;
};

/// A rectangle; `right` and `bottom` lie just outside it.
struct CRect {
  LONG left = 0;
  LONG top = 0;
  LONG right = 0;
  LONG bottom = 0;

  LONG Width() const { return right - left; }
  LONG Height() const { return bottom - top; }
  CSize Size() const { return {Width(), Height()}; }
  CPoint TopLeft() const { return {left, top}; }
  CPoint BottomRight() const { return {right, bottom}; }
  bool IsRectEmpty() const { return Width() <= 0 || Height() <= 0; }
  bool IsRectNull() const { return *this == CRect(); }
  void SetRect(LONG l, LONG t, LONG r, LONG b) { *this = {l, t, r, b}; }
  void SetRectEmpty() { *this = {}; }
  bool PtInRect(CPoint point) const {
    return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
  }

  friend bool operator==(const CRect&, const CRect&) = default;
};
