#pragma once

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/records/folder_info.h"
#include "vdstomgr/records/photo_info.h"

class CRkSearchDBManager;

namespace vdstomgr {

/// The statement that finds the rows of `table` whose `column` holds every word of the text, when a
/// consonant stands for any syllable that begins with it, ordered by that column. What is typed
/// last may be half a syllable: a vowel may go on, a final consonant come or begin the next
/// syllable. Letters that make a syllable may stand apart. All other characters stand for
/// themselves, in any case.
VDSTO_API CString BuildInitialsQuery(const char* table, const char* column, const char* text);

/// Is the text made of consonants and blanks only, and of at least one consonant?
VDSTO_API bool IsInitials(const char* text);

/// As SearchFileName and SearchFolderName of the search database, by initials: "ㅈㅈㄷ", "제ㅈ" and
/// "젲" find "제주도".
VDSTO_API int SearchFileNameByInitials(CRkSearchDBManager& search, const char* text,
                                       PhotoArray& photos, int max);
VDSTO_API int SearchFolderNameByInitials(CRkSearchDBManager& search, const char* text,
                                         FolderArray& folders, int max);

}  // namespace vdstomgr
