#pragma once

struct sqlite3;

namespace vdstomgr::sqlite {

/// Installs what the printed statements rely on: the text order, LIKE with the dialect's wildcards,
/// text search, and the jet_* functions (arithmetic, conversion on assignment, scalar sub-queries).
void InstallFunctions(sqlite3* db);

}  // namespace vdstomgr::sqlite
