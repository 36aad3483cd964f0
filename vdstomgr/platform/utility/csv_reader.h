#pragma once

#include <string_view>

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/utility/bin_data.h"

namespace vdstomgr {

/// Walks through the lines of a text that it holds.
class CsvReader {
 public:
  /// An empty separator makes each line one field, an empty line end the whole text one line.
  CsvReader(CBinData text, CString separator, CString line_end);

  /// As CUtilityLib::ReadCSV.
  int Read(CStringArray& fields);

 private:
  CBinData text_;
  std::string_view rest_;
  CString separator_;
  CString line_end_;
  int lines_ = 0;
};

}  // namespace vdstomgr
