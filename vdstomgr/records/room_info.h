#pragma once

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/types.h"

/// A room: a place where albums are shared. Texts are in the process's code page; a name has room
/// for the 50 characters of its column.
struct ROOMINFO {
  DWORD dwRoomID = 0;
  char szRoomName[201] = {};
  BYTE byteOrgDown = 0;     ///< may originals be downloaded?
  BYTE byteUseComment = 0;  ///< are comments allowed?
};

namespace vdstomgr {
using RoomArray = CArray<ROOMINFO, ROOMINFO&>;
}
