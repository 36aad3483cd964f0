#pragma once

#include "vdstomgr/records/album_info.h"
#include "vdstomgr/session/column_kinds.h"

namespace vdstomgr {

/// An album record but for its room.
inline constexpr std::array kAlbumColumnsInRoom{
    Number<&ALBUMINFO::dwAlbumID>("dwAlbumID"),
    Number<&ALBUMINFO::dwParentID>("dwParentID"),
    FixedText<&ALBUMINFO::szAlbumName>("szAlbumName"),
    FixedText<&ALBUMINFO::szDesc>("szDesc"),
};

/// An album record and its row of AlbumInfo.
inline constexpr ColumnMap kAlbumColumns(Join(std::array{Number<&ALBUMINFO::dwRoomID>("dwRoomID")},
                                              kAlbumColumnsInRoom));
inline constexpr ColumnMap kRoomlessAlbumColumns(kAlbumColumnsInRoom);

}  // namespace vdstomgr
