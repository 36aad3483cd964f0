#include "vdstomgr/records/image_names.h"

#include <algorithm>

#include "vdstomgr/platform/utility/utility_lib.h"

namespace vdstomgr {

namespace {

constexpr const char* kImageExtensions[] = {"JPG", "JPEG", "JPE", "TIFF", "TIF", "PSD", "GIF",
                                            "PNG", "BMP",  "CR2", "CRW",  "PEF", "NEF", "KDC"};

}  // namespace

bool IsImageFileName(const char* file_name) {
  const CString extension = CUtilityLib::GetFileExt(file_name);
  return std::ranges::any_of(
      kImageExtensions, [&](const char* known) { return extension.CompareNoCase(known) == 0; });
}

bool IsPngFileName(const char* file_name) {
  return CUtilityLib::GetFileExt(file_name).CompareNoCase("PNG") == 0;
}

}  // namespace vdstomgr
