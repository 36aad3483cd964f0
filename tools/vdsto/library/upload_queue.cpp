#include "tools/vdsto/library/upload_queue.h"

#include <algorithm>

#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr int kRowsPerCommit = 500;
constexpr int kRowsPerPart = 1000;

Upload UploadOf(const UPLOADLIST& row, int position) {
  return {position,         row.szGUID,  row.szFileName, row.szOPPath,
          row.szServerPath, row.nStatus, row.dxFileSize, row.dxSentBytes};
}

}  // namespace

std::vector<Upload> ReadUploads(Library& library) {
  return library.Call([](auto& catalogue) {
    const vdstomgr::ScopedLock lock(*catalogue.GetDAOCriticalSection());
    std::vector<Upload> uploads;
    vdstomgr::UploadListArray part;
    do {
      part.RemoveAll();
      catalogue.cGetUploadListByIndex(part, kRowsPerPart, static_cast<int>(uploads.size()));
      for (const UPLOADLIST& row : part)
        uploads.push_back(UploadOf(row, static_cast<int>(uploads.size())));
    } while (!part.IsEmpty());
    return uploads;
  });
}

std::vector<Upload> ReadUploads(Library& library, int first, int count) {
  return library.Call([&](auto& catalogue) {
    const vdstomgr::ScopedLock lock(*catalogue.GetDAOCriticalSection());
    const int rows = catalogue.GetUploadListCount();
    std::vector<Upload> uploads;
    for (int i = first; i < rows && i - first < count; ++i) {
      UPLOADLIST row;
      catalogue.GetUploadInfoByIndex(row, i);
      uploads.push_back(UploadOf(row, i));
    }
    return uploads;
  });
}

void RequireUploadable(const PHOTOINFO& photo) {
  if (*photo.GetOPURL() == '\0')
    throw ToolError(ExitCode::kRefused, Printable(photo.GetFileName()) +
                                            " cannot be uploaded: where its file is, is not known");
}

UPLOADLIST UploadRow(const PHOTOINFO& photo, const std::string& folder) {
  UPLOADLIST row;
  vdstomgr::CopyToFixed(row.szGUID, photo.szGUID);
  vdstomgr::CopyToFixed(row.szOPPath, photo.GetOPURL());
  vdstomgr::CopyToFixed(row.szServerPath, folder);
  row.SetFileName(photo.GetFileName());
  row.dxFileSize = photo.FileSize;
  row.byteRotate = photo.byteRotate;
  return row;
}

void QueueUploads(Library& library, const CStringArray& guids,
                  const std::function<std::string(uint32_t folder)>& name_of) {
  for (int first = 0; first < guids.GetSize(); first += kRowsPerCommit) {
    CStringArray queued;
    vdstomgr::UploadListArray rows;
    for (int i = first; i < std::min(first + kRowsPerCommit, guids.GetSize()); ++i) {
      const auto photo = library.Photo(guids[i].Str());
      if (!photo) continue;  // deleted meanwhile
      queued.Add(guids[i]);
      rows.Add(UploadRow(*photo, name_of(photo->dwFolderID)));
    }
    library.Call([&](auto& catalogue) {
      catalogue.DelUploadList(queued);
      return catalogue.AddUploadList(rows);  // 0 in any case
    });
  }
}

}  // namespace vdsto
