#include <algorithm>
#include <limits>

#include "vdstomgr/catalogue/session.h"
#include "vdstomgr/platform/dao/ole_variant.h"
#include "vdstomgr/platform/utility/file_ex.h"

namespace vdstomgr::catalogue {

bool Session::cLoadFileData(const char* path, CLongBinary& holder) {
  CFileEx file;
  if (!file.Open(path) || file.GetLength() > std::numeric_limits<DWORD>::max()) return false;
  const auto size = static_cast<DWORD>(file.GetLength());
  auto block = std::make_shared<BYTE[]>(size);
  if (file.Read(block.get(), size) != size) return false;
  holder = {std::move(block), size};
  return true;
}

bool Session::cGetLongBinary(const COleVariant& value, CLongBinary& holder) {
  if (value.vt != VT_BYTES) return false;
  auto block = std::make_shared<BYTE[]>(value.bytes.size());
  std::ranges::copy(value.bytes, block.get());
  holder = {std::move(block), static_cast<DWORD>(value.bytes.size())};
  return true;
}

bool Session::cGetLongBinary(const COleVariant& value, CBinData& data) {
  if (value.vt != VT_BYTES) return false;
  data.SetData(value.bytes.data(), static_cast<DWORD>(value.bytes.size()));
  return true;
}

}  // namespace vdstomgr::catalogue
