#pragma once

#include <algorithm>
#include <string>

#include "operation_table.h"

namespace vdstomgr {

constexpr const char* kQueue = "SELECT szGUID, nStatus FROM UploadList ORDER BY nDispOrder";

template <class Record = UPLOADLIST>
Record Upload(const char* guid, int status = 0, const char* name = "a.jpg",
              std::uint64_t bytes = 10) {
  Record record;
  CopyToFixed(record.szGUID, guid);
  record.SetFileName(name);
  record.nStatus = status;
  record.dxFileSize = bytes;
  return record;
}

/// Every field in its declared order, but for the row's own id.
inline std::string Fields(const QueuedUpload& record) {
  std::string wide;
  for (const char16_t* at = record.wszOPPath; *at != 0; ++at) wide += std::to_string(*at) + ".";
  return Joined(record.nDispOrder, record.szGUID, record.szOPPath, record.dxFileSize,
                record.dxSentBytes, record.szFileName, record.byteRotate, record.szServerPath,
                record.nStatus, wide, record.nThumbStatus, record.szLTBPath, record.szRPPath,
                record.szExifString, record.byteResume);
}

template <class Record>
std::string Guids(const CArray<Record, Record&>& records) {
  CStringArray guids;
  for (const Record& record : records) guids.Add(record.szGUID);
  return Listed(guids);
}

class UploadTest : public OperationTest {
 protected:
  /// Adds a row beside the catalogue.
  void Insert(const std::string& guid, int place, int status, const char* name = "a.jpg") {
    if (!beside_.IsOpen()) beside_.Open(file_.c_str());
    beside_.ExecuteOrThrow(
        ("INSERT INTO UploadList (szGUID, nDispOrder, nStatus, szFileName, byteSmall, "
         "byteImage, nThumbStatus, dxFileSize, dxSentBytes) values ('" +
         guid + "', " + std::to_string(place) + ", " + std::to_string(status) + ", '" + name +
         "', 1, 0, 0, '10', '3')")
            .c_str());
  }

 private:
  CRkDaoDatabase beside_;
};

}  // namespace vdstomgr
