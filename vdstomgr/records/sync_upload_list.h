#pragma once

#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/records/queued_upload.h"

/// A file that the synchronisation of folders uploads: a row of SyncUploadList. The two flags are
/// the synchronisation's own and only kept here.
struct SYNCUPLOADLIST : vdstomgr::QueuedUpload {
  BOOL bOnlyOneTime = FALSE;
  BOOL bPostEndMsgToSyncDlg = FALSE;
};
