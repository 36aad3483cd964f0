#pragma once

struct sqlite3;

namespace vdstomgr::sqlite {

/// Teaches the engine's text index to take texts apart into grams, under the name jet::kGramsName.
void InstallGramTokenizer(sqlite3* db);

}  // namespace vdstomgr::sqlite
