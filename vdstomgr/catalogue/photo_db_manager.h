#pragma once

#include "vdstomgr/catalogue/resets.h"

/// The catalogue of one photo collection: one object per database file. Any thread may call it.
///
/// Unless it says otherwise, an operation takes the DAO lock, commits what it wrote as one unit,
/// and never throws: a failure is reported once through the database-error hook (a duplicate key is
/// not) and answered with the operation's failure value: false, 0, an empty text, or 0xFFFFFFFF for
/// an id. What was done before the failure stays. Texts are in the process's code page; null is an
/// empty text. Lists given to be filled are appended to, and answers that count them count what
/// they held before too. GUIDs go into statements as they are (vdstomgr::IsGuid checks one that
/// comes from outside); names and descriptions are quoted.
///
/// Its operations stand by subject in headers of their own, each a class on top of the one before:
///
///   session.h             create, open, close; lock, clock, first rows
///   versions.h            versions of single tables
///   folders.h             the folder tree: reading, lists, sub-folders, paths, changing
///   folder_attributes.h   shared, secure and limited folders, their counts and times
///   active_folders.h      the folders whose photos are kept
///   photos.h              whole photo records, and questions about photos
///   photo_attributes.h    single attributes of photos: titles, flags, rotation, days
///   tags.h                tags and the photos that carry them
///   gallery_items.h       items for the browser views: folder icons, photos by tag
///   rooms.h, albums.h     rooms, their albums and the photos in them
///   trash.h               deleted photos
///   sync_process.h        handing changed photos over to the synchronisation
///   side_tables.h         local paths of photos, lists of cameras and lenses
///   notifications.h       what changed since a view last looked
///   deletion.h            deleting with what hangs on it
///   resets.h              emptying whole tables, a repair
///
/// and, in transfer/, what waits to be uploaded:
///
///   upload_list.h         the queue of the user's uploads: order, claims, retries
///   upload_list_file.h    the queue as a text file
///   upload_tags.h         tags and albums that uploads get when they are done
///   sync_upload_list.h    the queue of the synchronisation
class VDSTO_API CRkPhotoDBManager : public vdstomgr::catalogue::Resets {
 public:
  ~CRkPhotoDBManager() override;
};
