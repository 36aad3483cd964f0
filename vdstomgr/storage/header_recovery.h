#pragma once

#include <optional>
#include <vector>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/storage/array_format.h"
#include "vdstomgr/storage/record_format.h"

namespace vdstomgr {

/// What can be read of an index file that may be damaged in any way.
struct OldIndex {
  bool has_header = false;  ///< which begins as one does; its values may still be lies
  ArrayHeader header;
  std::vector<BYTE> units;  ///< no more than a data file of that size can have records

  static OldIndex Read(const CString& path, std::uint64_t data_file_bytes);
  std::size_t Count() const { return header.unit_size == 0 ? 0 : units.size() / header.unit_size; }
};

/// The header that a data file should have, by what it says itself, what its index says, and under
/// which of them the records have the right checksums. Its data length is one that the file has;
/// beyond what the header counts it reaches to the last good record that a cluster names. Nothing
/// when neither tells what the records are.
std::optional<DataHeader> RecoverHeader(os::File& data, const OldIndex& index);

}  // namespace vdstomgr
