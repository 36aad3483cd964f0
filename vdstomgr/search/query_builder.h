#pragma once

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/cstring.h"

/// The statement that finds the rows of `table` whose `column` holds the whole text, or every one
/// of its words in any order, ordered by that column. Blanks at the ends do not count and a run of
/// them counts as one; tabs count between words only. What means something in a pattern is escaped,
/// so that it stands for itself, but for two characters: a "[" finds "[" only where a "]" follows,
/// and a "\" finds two of them.
VDSTO_API CString BuildSearchQuery(const char* table, const char* column, const char* text);

/// Replaces `words` by what stands between the separators, without the empty ones.
VDSTO_API void SplitStringBySpace(const CString& text, char separator, CStringArray& words);
