#pragma once

#include <cstdint>

#include "vdstomgr/platform/os/lock.h"
#include "vdstomgr/storage/cluster_file.h"
#include "vdstomgr/storage/mapped_file.h"
#include "vdstomgr/storage/record_format.h"
#include "vdstomgr/storage/record_storage.h"

/// What the copies of a storage share. Members are called with the lock held.
struct CRkStorageManager::State {
  vdstomgr::RecursiveLock lock;
  vdstomgr::MappedFile data;
  vdstomgr::ClusterFile clusters;
  vdstomgr::DataHeader header;  ///< as last read or written, also after closing
  CString data_path;
  CString index_path;
  int mapping_mode = 2;
  int open_mode = 3;

  ~State() { Free(); }

  bool Load(const char* path, int new_mapping_mode, int new_open_mode);
  void Free();
  bool ReadHeader();

  bool IsPosition(int position) {
    return position >= 0 && static_cast<std::size_t>(position) < clusters.Size();
  }
  /// Appends a record whose checksum is known: first its bytes, then the data length that makes
  /// them part of the file, then the cluster.
  bool Append(vdstomgr::KeyBytes key, const BYTE* data, DWORD length, DWORD crc, bool sort);
  bool RemoveAt(std::size_t position);
  /// The data of a record, as a view to be ended by data.EndView; null, and nothing to end, when
  /// index and data file disagree about it.
  BYTE* Borrow(std::size_t position, int& length);
  /// The record's bytes as a view to be ended by data.EndView; null when they are not in the
  /// file. ViewToWrite also when the disk is full.
  BYTE* View(const vdstomgr::RecordPlace& place);
  BYTE* ViewToWrite(const vdstomgr::RecordPlace& place);
  int Find(vdstomgr::KeyBytes key, bool refresh);
  int FindPrefix(const char* prefix, bool refresh);

  /// Copies the records in key order to a new storage under these names.
  bool CopyTo(const CString& new_data_path, const CString& new_index_path);
  /// Writes the data length that the header has from now on.
  bool PublishLength(std::uint64_t length);

 private:
  void MarkRemoved(vdstomgr::RecordPlace place);
  bool CopyRecord(std::size_t position, State& target);
};
