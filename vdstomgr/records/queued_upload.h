#pragma once

#include <cstdint>

#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/records/record_rules.h"

namespace vdstomgr {

/// What the rows of both upload queues have in common: a file to send and how far that got. A plain
/// value; starts all zero and empty. Texts are in the process's code page.
struct QueuedUpload {
  std::int32_t nID = 0;         ///< the row itself; given by the database
  std::int32_t nDispOrder = 0;  ///< place in the queue: the lower, the earlier
  char szGUID[37] = {};
  char szOPPath[2048] = {};  ///< the file to send
  std::uint64_t dxFileSize = 0;
  std::uint64_t dxSentBytes = 0;
  char szFileName[kFileNameBytes] = {};  ///< as shown and sent; set by SetFileName
  BYTE byteRotate = 0;                   ///< quarter turns, 0..3
  char szServerPath[512] = {};
  std::int32_t nStatus = 0;  ///< 0 ready, 1 in transfer, 2 and 3 finished, negative an error code
  char16_t wszOPPath[260] = {};   ///< szOPPath in UTF-16; made when a row is read, never stored
  std::int32_t nThumbStatus = 0;  ///< 1: its thumbnail is made or being made
  char szLTBPath[260] = {};       ///< the small thumbnail made for the upload
  char szRPPath[260] = {};        ///< the reduced picture made for the upload
  char szExifString[256] = {};
  BYTE byteResume = 0;  ///< nonzero: the transfer goes on at dxSentBytes

  /// A name that does not fit keeps its extension; null leaves the field as it is.
  void SetFileName(const char* name) { CopyFileName(szFileName, name); }
};

}  // namespace vdstomgr
