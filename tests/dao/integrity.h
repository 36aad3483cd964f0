#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "vdstomgr/platform/dao/rk_dao.h"
#include "vdstomgr/platform/dao/sqlite/connection.h"

/// The engine's own check of an open file.
inline void ExpectSound(CRkDaoDatabase& db) {
  sqlite3* engine = static_cast<vdstomgr::sqlite::Connection&>(db.Connection()).Handle();
  const auto expect_ok = [](void*, int, char** columns, char**) {
    EXPECT_STREQ(columns[0], "ok");
    return 0;
  };
  EXPECT_EQ(sqlite3_exec(engine, "PRAGMA integrity_check", expect_ok, nullptr, nullptr), 0);
}
