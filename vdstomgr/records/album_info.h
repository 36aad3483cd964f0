#pragma once

#include <compare>

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/types.h"

/// An album: a place for photos in a room, and in the album above it. Texts are in the process's
/// code page; they have room for the 64 and 255 characters of their columns.
struct ALBUMINFO {
  DWORD dwRoomID = 0;
  DWORD dwAlbumID = 0;
  DWORD dwParentID = 0;  ///< 0 for an album that is directly in its room
  char szAlbumName[257] = {};
  char szDesc[1021] = {};
};

/// Which album.
struct ALBUMINDEX {
  DWORD dwRoomID = 0;
  DWORD dwAlbumID = 0;

  friend auto operator<=>(const ALBUMINDEX&, const ALBUMINDEX&) = default;
};

namespace vdstomgr {
using AlbumArray = CArray<ALBUMINFO, ALBUMINFO&>;
using AlbumIndexArray = CArray<ALBUMINDEX, ALBUMINDEX&>;
}
