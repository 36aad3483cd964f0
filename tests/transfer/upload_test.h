#pragma once

#include <algorithm>
#include <sstream>
#include <string>

#include "operation_table.h"

namespace vdstomgr {

template <class Record = UPLOADLIST>
Record Upload(const std::string& guid, int status = 0, const char* name = "a.jpg",
              std::uint64_t bytes = 10) {
  Record record;
  CopyToFixed(record.szGUID, guid);
  record.SetFileName(name);
  record.nStatus = status;
  record.dxFileSize = bytes;
  return record;
}

class UploadTest : public CatalogueTest {
 protected:
  UploadTest() { beside_.Open(file_.c_str()); }

  void RunBeside(const std::string& statement) { beside_.ExecuteOrThrow(statement.c_str()); }
  /// The queue anew, of "guid:status" in the order of places from 1 on, which is not that of rows.
  void Fill(const std::string& queue) {
    catalogue_.ResetUploadList();
    std::istringstream words(queue);
    std::vector<std::string> rows;
    for (std::string word; words >> word;) rows.insert(rows.begin(), word);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const std::size_t colon = rows[i].find(':');
      RunBeside(
          "INSERT INTO UploadList (szGUID, nStatus, nDispOrder, szFileName, byteSmall, "
          "byteImage, nThumbStatus, dxFileSize, dxSentBytes) values ('" +
          rows[i].substr(0, colon) + "', " + rows[i].substr(colon + 1) + ", " +
          std::to_string(rows.size() - i) + ", 'a.jpg', 1, 0, 0, '10', '3')");
    }
  }
  /// The same from the table.
  std::string Queue() {
    std::string queue;
    for (std::string row : Ask("SELECT szGUID, nStatus FROM UploadList ORDER BY nDispOrder"))
      queue += (queue.empty() ? "" : " ") + row.replace(row.find('|'), 1, ":");
    return queue;
  }

 private:
  CRkDaoDatabase beside_;
};

}  // namespace vdstomgr
