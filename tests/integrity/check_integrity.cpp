#include <sqlite3.h>

#include <cstdio>
#include <string>

#include "vdstomgr/platform/dao/sqlite/functions.h"

/// Runs the engine's own integrity check on a catalogue without a password.
/// Usage: check_integrity FILE. Exits with 0 when the check finds nothing; else prints what it
/// found.
int main(int argc, char** argv) {
  sqlite3* db = nullptr;
  if (argc != 2 || sqlite3_open_v2(argv[1], &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
    std::fprintf(stderr, "usage: check_integrity FILE\n");
    return 2;
  }
  vdstomgr::sqlite::InstallFunctions(db);
  std::string findings;
  const auto note = [](void* out, int, char** row, char**) {
    *static_cast<std::string*>(out) += row[0];
    return 0;
  };
  const int code = sqlite3_exec(db, "PRAGMA integrity_check", note, &findings, nullptr);
  if (code != SQLITE_OK) findings = sqlite3_errmsg(db);
  sqlite3_close(db);
  if (findings == "ok") return 0;
  std::fprintf(stderr, "%s: %s\n", argv[1], findings.c_str());
  return 1;
}
