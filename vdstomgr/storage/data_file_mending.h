#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/storage/data_file_check.h"

namespace vdstomgr {

/// Makes a damaged data file sound where it lies: stretches that are no good record become removed
/// records, or are cut off at the end. Good records keep their bytes, and of the others only heads
/// and end marks are written, so that a repair costs as much as there is damage.
class DataFileMending {
 public:
  /// `add` is told of every good record and where it will lie. The file must outlive the mending.
  DataFileMending(os::ExclusiveFile& file, const DataHeader& header,
                  std::function<void(KeyBytes key, const RecordPlace& place)> add)
      : file_(file), header_(header), add_(std::move(add)) {}

  /// Takes the records as a walk meets them; reads only.
  void Take(const CheckedRecord& record);
  /// After the walk.
  void Finish();

  /// First: writes what the header should be, and copies to the end the records that are in the way
  /// of a stretch too short for a record.
  std::error_code Append();
  /// Then, when an index of the new places has been written: makes the stretches removed records.
  std::error_code Cover();

 private:
  struct Stretch {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    bool is_damaged = false;  ///< more than removed records

    std::uint64_t Length() const { return end - begin; }
  };

  void ExtendTo(std::uint64_t end, bool is_damaged);
  bool Move(const CheckedRecord& record);
  std::error_code CoverPiece(DataFileCheck& check, std::uint64_t offset, DWORD length);
  std::error_code Write(std::uint64_t offset, const BYTE* bytes, std::size_t size) {
    return file_.WriteAt(kDataHeaderBytes + offset, bytes, size);
  }

  os::ExclusiveFile& file_;
  DataHeader header_;
  std::function<void(KeyBytes, const RecordPlace&)> add_;
  Stretch open_;  ///< without good records, up to where the walk is
  std::vector<Stretch> damaged_;
  std::vector<std::vector<BYTE>> moved_;  ///< whole records
};

}  // namespace vdstomgr
