#pragma once

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/records/queued_upload.h"

/// A file that the user wants to have uploaded: a row of UploadList.
struct UPLOADLIST : vdstomgr::QueuedUpload {};

namespace vdstomgr {
using UploadListArray = CArray<UPLOADLIST, UPLOADLIST&>;
}
