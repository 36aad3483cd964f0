#include "vdstomgr/platform/dao/sqlite/gram_tokenizer.h"

#include <sqlite3.h>

#include <string_view>

#include "vdstomgr/platform/dao/jet/grams.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/statement_cache.h"

namespace vdstomgr::sqlite {
namespace {

using Token = int (*)(void* context, int flags, const char* token, int size, int start, int end);

// A tokenizer has nothing to remember; the engine wants an object.
int Create(void*, const char**, int, Fts5Tokenizer** tokenizer) {
  static char nothing;
  *tokenizer = reinterpret_cast<Fts5Tokenizer*>(&nothing);
  return SQLITE_OK;
}

void Delete(Fts5Tokenizer*) {}

// What is asked for is a gram already.
int Tokenize(Fts5Tokenizer*, void* context, int flags, const char* text, int size, Token token) {
  if (flags & FTS5_TOKENIZE_QUERY) return token(context, 0, text, size, 0, size);
  if (!text) return SQLITE_OK;
  int code = SQLITE_OK;
  jet::ForEachGram({text, static_cast<size_t>(size)}, [&](std::string_view gram) {
    code = token(context, 0, gram.data(), static_cast<int>(gram.size()), 0, 0);
    return code == SQLITE_OK;
  });
  return code;
}

fts5_api* TextIndexApi(sqlite3* db) {
  constexpr const char* kSql = "SELECT fts5(?1)";
  sqlite3_stmt* raw = nullptr;
  Check(db, sqlite3_prepare_v2(db, kSql, -1, &raw, nullptr), kSql);
  const StatementHandle statement(raw);
  fts5_api* api = nullptr;
  Check(db, sqlite3_bind_pointer(raw, 1, &api, "fts5_api_ptr", nullptr), kSql);
  if (sqlite3_step(raw) != SQLITE_ROW) ThrowEngineError(db, sqlite3_errcode(db), kSql);
  return api;
}

}  // namespace

void InstallGramTokenizer(sqlite3* db) {
  fts5_api* api = TextIndexApi(db);
  fts5_tokenizer tokenizer{Create, Delete, Tokenize};
  Check(db, api->xCreateTokenizer(api, jet::kGramsName, nullptr, &tokenizer, nullptr), "");
}

}  // namespace vdstomgr::sqlite
