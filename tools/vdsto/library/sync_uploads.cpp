#include "tools/vdsto/library/sync_uploads.h"

namespace vdsto {
namespace {

constexpr const char* kRows =
    "SELECT szGUID, szFileName, szOPPath, szServerPath, nStatus, dxFileSize, dxSentBytes "
    "FROM SyncUploadList ORDER BY nDispOrder, nID";

Upload UploadAt(CRkDaoRecordset& rows, int position) {
  const auto text = [&](const char* column) { return rows.GetFieldValue(column).ToText().Str(); };
  const auto size = [&](const char* column) {
    return CUtilityLib::StrToINT64(text(column).c_str());
  };
  return {position,
          text("szGUID"),
          text("szFileName"),
          text("szOPPath"),
          text("szServerPath"),
          static_cast<int>(rows.GetFieldValue("nStatus").ToInteger()),
          size("dxFileSize"),
          size("dxSentBytes")};
}

}  // namespace

std::vector<Upload> ReadSyncUploads(CatalogueFile& file, int first, int count) {
  return file.Query(kRows, [&](CRkDaoRecordset& rows) {
    std::vector<Upload> uploads;
    for (int i = 0; !rows.IsEOF() && i - first < count; ++i, rows.MoveNext())
      if (i >= first) uploads.push_back(UploadAt(rows, i));
    return uploads;
  });
}

void QueueSyncUpload(Library& library, const PHOTOINFO& photo, const std::string& folder,
                     const SyncFlags& flags) {
  SYNCUPLOADLIST row;
  static_cast<vdstomgr::QueuedUpload&>(row) = UploadRow(photo, folder);
  row.bOnlyOneTime = flags.only_once;
  row.bPostEndMsgToSyncDlg = flags.tells_end;
  library.Call([&](auto& catalogue) {
    return catalogue.SetSyncUploadList(row) || catalogue.AddSyncUploadList(row);
  });
}

void SetSyncStatus(Library& library, const std::vector<Upload>& uploads, int status) {
  library.Call([&](auto& catalogue) {
    return catalogue.InOneCommit([&] {
      SYNCUPLOADLIST row;
      for (const Upload& upload : uploads) {
        if (!catalogue.GetSyncUploadInfo(upload.guid.c_str(), row)) continue;
        row.nStatus = status;
        if (IsFinished(status)) row.dxSentBytes = row.dxFileSize;
        if (IsWaiting(status)) row.dxSentBytes = 0;
        catalogue.SetSyncUploadList(row);
      }
    });
  });
}

}  // namespace vdsto
