#pragma once

#include "vdstomgr/catalogue/sync_process.h"

namespace vdstomgr::catalogue {

/// Local paths of photos, and the lists of cameras and lenses.
class VDSTO_API SideTables : public SyncProcess {
 public:
  /// ---- A photo's reduced picture (RP) and its full-size picture (OP) on this computer ----

  /// False also for an empty path.
  bool IsRP(const char* guid);
  bool IsOP(const char* guid);
  /// False, without a report, when the photo has a path already.
  bool AddRP(const char* guid, const char* path);
  bool AddOP(const char* guid, const char* path);
  /// Changes a path that is there; never adds one.
  bool SetRP(const char* guid, const char* path);
  bool SetOP(const char* guid, const char* path);
  /// Empty when the photo has no path.
  CString GetRP(const char* guid);
  CString GetOP(const char* guid);
  /// Forgets a path; the file stays.
  bool DelRP(const char* guid);
  bool DelOP(const char* guid);

  /// ---- Camera models and lenses: those met in photos, and the user's own ----

  /// False, without a report, when the name is there already.
  bool AddModel(const char* name);
  bool AddMyModel(const char* name);
  bool AddLens(const char* name);
  bool AddMyLens(const char* name);
  /// The names in ascending order. These answer how many they appended.
  int GetModel(CStringArray& names);
  int GetMyModel(CStringArray& names);
  int GetLens(CStringArray& names);
  int GetMyLens(CStringArray& names);
};

}  // namespace vdstomgr::catalogue
