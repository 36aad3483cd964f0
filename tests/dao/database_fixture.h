#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/temporary_folder.h"
#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/rk_dao.h"
#include "vdstomgr/platform/text/code_page.h"

/// A fresh database in a folder of its own.
class DatabaseTest : public testing::Test {
 protected:
  void SetUp() override {
    vdstomgr::SetTextCodePage(vdstomgr::TextCodePage::utf8);
    folder_ = MakeTemporaryFolder("dao");
    db_.Create(Path().c_str());
  }
  void TearDown() override {
    db_.Close();
    std::filesystem::remove_all(folder_);
  }

  std::string Path(const char* name = "test.vdb") const { return (folder_ / name).string(); }

  int Run(const std::string& sql) {
    db_.ExecuteOrThrow(sql.c_str());
    return db_.GetRecordsAffected();
  }

  /// The error number of a statement, 0 when it runs.
  int ErrorOf(const std::string& sql) {
    return NumberOf([&] { Run(sql); });
  }

  template <class Body>
  static int NumberOf(Body body) {
    try {
      body();
      return 0;
    } catch (const CDaoException& error) {
      return error.Code();
    }
  }

  /// The rows of a query, columns joined with '|', null shown as "-".
  std::vector<std::string> Rows(const std::string& sql) {
    std::vector<std::string> rows;
    CRkDaoRecordset rs(&db_);
    for (rs.Open(dbOpenDynaset, sql.c_str()); !rs.IsEOF(); rs.MoveNext()) {
      rows.push_back(Row(rs));
    }
    return rows;
  }

  static std::string Row(CDaoRecordset& rs) {
    std::string row;
    for (int i = 0; i < rs.GetFieldCount(); ++i) {
      const COleVariant value = rs.GetFieldValue(i);
      row += (i > 0 ? "|" : "");
      row += value.vt == VT_NULL ? "-" : value.ToText().GetString();
    }
    return row;
  }

  std::filesystem::path folder_;
  CRkDaoDatabase db_;
};

using Lines = std::vector<std::string>;
