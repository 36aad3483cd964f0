#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/os/tick_count.h"
#include "vdstomgr/records/fixed_text.h"
#include "vdstomgr/records/folder_ids.h"
#include "vdstomgr/vdstomgr.h"

namespace vdstomgr {

/// The protected operations of a catalogue, and its database.
class OpenCatalogue : public CRkPhotoDBManager {
 public:
  using CRkPhotoDBManager::cGetLongBinary;
  using CRkPhotoDBManager::cGetSubFolder;
  using CRkPhotoDBManager::cLoadFileData;
  using CRkPhotoDBManager::cToDBString;
  using CRkPhotoDBManager::m_db;
  using CRkPhotoDBManager::m_mapSubFolderDef;
};

/// A folder of its own for every test, a new open catalogue in it, and the database errors
/// reported.
class CatalogueTest : public ::testing::Test {
 protected:
  using Reports = std::vector<int>;

  CatalogueTest();
  ~CatalogueTest() override;

  std::string Path(const char* name) const { return (folder_ / name).string(); }
  /// Runs a statement on the file beside the catalogue.
  void RunBeside(const char* statement);
  /// The answers of a query, row by row, columns joined by '|'; null columns as "null".
  std::vector<std::string> Ask(const char* query);
  /// What was reported since the last call.
  Reports TakeReports() { return std::exchange(reports_, {}); }

  static PHOTOINFO Photo(const std::string& guid, DWORD folder = 0, const char* name = "a.jpg");
  bool AddFolder(DWORD id, DWORD parent, const char* name);

  std::filesystem::path folder_;
  std::string file_;
  Reports reports_;
  OpenCatalogue catalogue_;
};

}  // namespace vdstomgr
