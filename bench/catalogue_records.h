#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "vdstomgr/records/folder_info.h"
#include "vdstomgr/records/photo_info.h"

/// The photos and folders of the catalogues that are measured: each the same whenever it is asked
/// for.
namespace bench {

/// A GUID that begins with the time, ten milliseconds from one photo to the next: what the importer
/// gives.
std::string GuidOf(std::uint64_t number);
/// A GUID without any order: what another host may give.
std::string RandomGuidOf(std::uint64_t number);

/// The folder that a photo is in; the first is 1, each has a hundred photos.
DWORD FolderOf(std::uint64_t number);

/// One of a hundred that whole folders share, and one of fifty that lie scattered.
std::array<DWORD, 2> TagsOf(std::uint64_t number);

PHOTOINFO PhotoOf(std::uint64_t number);
FOLDERINFO FolderRecord(DWORD id);

/// A number that was not given before, so that an update always has something to write.
std::int32_t Fresh();

/// Ends the program unless `done`.
void Require(bool done, const char* what);

}  // namespace bench
