#pragma once
#include "tools/vdsto/import/import_places.h"
#include "tools/vdsto/import/import_summary.h"
#include "tools/vdsto/import/known_photos.h"
#include "tools/vdsto/library/library.h"

namespace vdsto {

/// After a walk to its end: notes which photos below the imported folders have lost their file, and
/// which have it again, and tells the summary. What cannot be looked at, because a folder cannot be
/// read or a disk is not mounted, is not gone. Photos in the trash are left alone.
void NoteGonePhotos(Library& library, const KnownPhotos& known, const ImportPlaces& places,
                    ImportSummary& summary);

}  // namespace vdsto
