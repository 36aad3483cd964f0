#pragma once

#include <limits>
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

  /// As CUtilityLib::ReadCSV, but of a line with more fields the first ones only.
  int Read(CStringArray& fields, int most_fields = std::numeric_limits<int>::max());

 private:
  CBinData text_;
  std::string_view rest_;
  CString separator_;
  CString line_end_;
  int lines_ = 0;
};

}  // namespace vdstomgr
