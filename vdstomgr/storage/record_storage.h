#pragma once

#include <memory>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/storage/array_file.h"

namespace vdstomgr {
struct SyncAccess;
}

/// Records of any length under a key, in a data file ("*.pdb") and its index file ("*.pdx"); both
/// are described in docs/file-formats.md. Keys are unsigned 32-bit numbers ('D', 0x44) or texts of
/// up to a fixed number of bytes, compared without the case of ASCII letters ('S', 0x53). Several
/// records may have one key. Records are not changed in place; the space of removed ones comes
/// back by compaction.
///
/// A record that Add has acknowledged is there after the process was killed at any later instant.
/// After a power cut that holds for what SyncStorage has acknowledged.
///
/// Records have positions: those known to be sorted come first, in key order, then the unsorted
/// ones in the order of their arrival. Searches look at the sorted ones only; `refresh` sorts
/// first. Sorting merges what has arrived into what is sorted. The order is kept in memory: the
/// index file itself is put in key order when it is handed out (GetClusterArray), on
/// SortStorageCluster, SyncStorage and FreeStorageFile.
///
/// Copies of an open storage share its files, positions and lock: closing through one closes it for
/// all. A copy of a closed storage is a storage of its own. Each operation takes the lock, which is
/// recursive. Paths are in the process's code page. Failures answer false, null, -1 or 0.
class VDSTO_API CRkStorageManager {
 public:
  /// Replaces data file and index file by new ones without records. The index file's name is the
  /// path up to its last '.' and ".pdx"; without a '.' an empty data file is left and the answer is
  /// false. False, and both stay, while anybody, this process too, has either of them open for
  /// writing, and when either is a folder or a file that may not be written. Who only reads them
  /// keeps the old ones.
  static bool CreateStorageFile(const char* path, DWORD storage_id, WORD key_type, WORD key_length);

  CRkStorageManager();
  /// Closes the files when no copy holds them.
  virtual ~CRkStorageManager();
  CRkStorageManager(const CRkStorageManager& other);
  CRkStorageManager& operator=(const CRkStorageManager& other);

  /// Opens a data file and its index file as their only writer and sorts. The modes are those of
  /// CRkFileMapper::OpenFile and concern the data file. False when it is no data file, ends before
  /// its header says, or is in use, and when it has holes that a full disk cannot fill; also when
  /// the index file cannot be opened or is another storage's, and the data file then stays open
  /// until FreeStorageFile.
  bool LoadStorageFile(const char* path, int mapping_mode = 2, int open_mode = 3);
  void FreeStorageFile();
  /// Asks the system to write out the record that GetBuffer holds, if any, without waiting.
  void Flush();

  /// Adds a record of `length` bytes, and with `sort` puts it in its place at once. False when the
  /// key is of the other kind, and when the disk is full: nothing has been added then.
  bool Add(DWORD key, const BYTE* data, int length, bool sort);
  /// The key ends at its 0 byte or at the key length; shorter ones are filled up with zeros.
  bool Add(const char* key, const BYTE* data, int length, bool sort);

  /// Marks the record removed and drops it from the index; the positions behind it move down by
  /// one. Sorts nothing. False, and nothing is removed, when the record's bytes are not there.
  bool RemoveAt(int position);
  /// Removes all records and reuses their space. For text keys only.
  bool RemoveAll();

  /// The position of a record with the key (with several, any of them), or -1. On a storage with
  /// keys of the other kind the answer is 0, on purpose.
  int FindDWORD(DWORD key, bool refresh);
  int FindString(const char* key, bool refresh);
  /// As FindString, for a key that begins with `prefix`.
  int FindStringAt(const char* prefix, bool refresh);

  /// The key at a position, after sorting; 0 when there is none.
  DWORD GetKeyAtDWORD(int position);
  /// Answers the key length in bytes; 0, and an empty text, when there is no such position.
  int GetKeyAtString(int position, CString& key);

  /// The data of the record at a position, after sorting, in the mapped file; good until
  /// ReleaseBuffer. Null when there is no such position, when index and data file disagree about
  /// the record, and while another record is held. Takes the lock and keeps it until one
  /// ReleaseBuffer, also when the answer is null. At position -1 `length` is left as it was.
  BYTE* GetBuffer(int position, int& length);
  void ReleaseBuffer();

  /// Sorts, and puts the index file itself in key order. False when nothing is open or the keys are
  /// of an unknown kind.
  bool SortStorageCluster();

  /// The index file itself. Once it has been asked for, every operation leaves it in order, at the
  /// cost of moving its clusters each time.
  CRkFileArrayManager* GetClusterArray();
  /// The number of records.
  int GetSize();
  DWORD GetStorageID();
  bool IsFileOpened();
  /// Whether GetBuffer holds a record.
  bool IsStorageLocked();
  /// The path of the data file last loaded.
  CString GetStoragePath();

  /// Rewrites a closed storage without its removed records, in key order. What was there before
  /// stays beside it: "%s.bak" of each of the two files, replacing older ones. A record whose bytes
  /// are damaged keeps its key and loses its data. When the process is killed between the last
  /// steps, RepairStorage brings back the old or the new pair.
  static bool CompactStorageFile(const char* path);
  /// As CompactStorageFile, for this storage, which must have been loaded from `path`; does nothing
  /// and answers true below `minimum_count` records. The old pair is deleted once the new one is on
  /// the device and loaded. A ".bak" file that is there already makes it fail and leaves this
  /// storage closed; a failure before that leaves it open.
  bool CompactStorageFileOnline(const char* path, int minimum_count);

 protected:
  /// Reads the header of the data file.
  bool RefreshStorageDHF();

 private:
  friend class CRkPhotoImageStorage;
  friend struct vdstomgr::SyncAccess;
  struct State;

  /// Add with sorting, then the removal of the record at `position`: a process killed in between
  /// leaves both. False when there is no such position.
  bool Replace(int position, const char* key, const BYTE* data, int length);

  std::shared_ptr<State> m_state;
};
