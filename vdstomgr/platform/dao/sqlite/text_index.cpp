#include "vdstomgr/platform/dao/sqlite/text_index.h"

#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/jet/like.h"
#include "vdstomgr/platform/dao/sqlite/connection.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/sql_text.h"

namespace vdstomgr::sqlite {
namespace {

constexpr int kMostChanges = 255;  // that searches look through
constexpr int kSamples = 16;

// How many rows the index says it has: the number that its record of averages begins with, seven
// bits in a byte.
std::optional<std::int64_t> FirstNumber(std::string_view record) {
  std::int64_t number = 0;
  for (const char byte : record.substr(0, 8)) {
    number = number << 7 | (byte & 0x7F);
    if (!(byte & 0x80)) return number;
  }
  return std::nullopt;
}

// A gram from the middle of a text, where it is less like others than at its ends.
std::vector<jet::Gram> SampleGram(std::string_view text) {
  std::vector<jet::Gram> grams;
  jet::ForEachGram(text, [&](std::string_view term) {
    if (term.find('\0') == term.npos) grams.push_back({std::string(term)});
    return true;
  });
  if (grams.empty()) return {};
  return {std::move(grams[grams.size() / 2])};
}

std::string_view BytesOf(sqlite3_stmt* row, int column) {
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(row, column));
  return {bytes ? bytes : "", static_cast<size_t>(sqlite3_column_bytes(row, column))};
}

}  // namespace

std::string MatchAll(const std::vector<jet::Gram>& grams, std::optional<char32_t> head) {
  return Join(grams, " AND ", [&](const jet::Gram& gram) {
    if (!head || !gram.has_head) return QuoteName(gram.term) + (gram.is_start ? "*" : "");
    return QuoteName(gram.term + std::string(jet::GramTerm().Single(*head).View()));
  });
}

std::string TextIndex::NameOf(std::string_view table, std::string_view column) {
  return "vdsto." + std::string(table) + "." + std::string(column);
}

std::string TextIndex::CandidatesSql(std::string_view table, std::string_view column) {
  return MatchesSql(table, column) + " UNION ALL " + ChangedSql(table, column);
}

std::string TextIndex::ChangedSql(std::string_view table, std::string_view column) {
  return "SELECT key FROM " + QuoteName(NameOf(table, column) + ".changes");
}

std::string TextIndex::MatchesSql(std::string_view table, std::string_view column) {
  const std::string index = QuoteName(NameOf(table, column));
  return "SELECT rowid FROM " + index + " WHERE " + index + " MATCH ?1";
}

TextIndex::TextIndex(Connection& connection, std::string_view table, std::string_view column)
    : connection_(connection),
      name_(NameOf(table, column)),
      table_(QuoteName(table)),
      column_(QuoteName(column)),
      index_(QuoteName(name_)),
      changes_(QuoteName(name_ + ".changes")) {}

std::vector<TextIndex::Object> TextIndex::Tables() const {
  return {{name_, "CREATE VIRTUAL TABLE " + index_ +
                      " USING fts5(text, content='', columnsize=0, detail=none, tokenize=" +
                      jet::kGramsName + ")"},
          {name_ + ".changes",
           "CREATE TABLE " + changes_ + "(key INTEGER PRIMARY KEY, indexed INT, text TEXT)"}};
}

// The first change of a row counts: what the index has of it is what it was before.
std::vector<TextIndex::Object> TextIndex::Triggers() const {
  const auto trigger = [&](const char* event, const std::string& when, const std::string& row) {
    const std::string name = name_ + "." + event;
    const std::string key = row.substr(0, row.find(','));
    return Object{name, "CREATE TRIGGER " + QuoteName(name) + " AFTER " + when + " ON " + table_ +
                            " BEGIN INSERT INTO " + changes_ + " SELECT " + row +
                            " WHERE NOT EXISTS (SELECT 1 FROM " + changes_ + " WHERE key = " + key +
                            "); END"};
  };
  const std::string was_indexed = "old.rowid, 1, old." + column_;
  return {trigger("insert", "INSERT", "new.rowid, 0, NULL"),
          trigger("delete", "DELETE", was_indexed),
          trigger("update", "UPDATE OF " + column_, was_indexed)};
}

void TextIndex::Run(const std::string& sql) {
  const StatementHandle statement = connection_.PrepareToKeep(sql);
  connection_.Write(statement.get());
}

void TextIndex::MakeAnew() {
  for (const Object& trigger : Triggers()) Run("DROP TRIGGER IF EXISTS " + QuoteName(trigger.name));
  for (const Object& table : Tables()) {
    Run("DROP TABLE IF EXISTS " + QuoteName(table.name));
    Run(table.sql);
  }
  Run("INSERT INTO " + index_ + "(rowid, text) SELECT rowid, " + column_ + " FROM " + table_);
  for (const Object& trigger : Triggers()) Run(trigger.sql);
}

bool TextIndex::HasManyChanges() {
  const auto count = connection_.PrepareOwn("SELECT 1 FROM " + changes_ + " LIMIT 1 OFFSET " +
                                            std::to_string(kMostChanges));
  return sqlite3_step(count->Handle()) == SQLITE_ROW;
}

// What the index has of a changed row goes before the row comes in again. A text that is taken out
// must be the one that was put in.
void TextIndex::TakeChanges() {
  if (!HasManyChanges()) return;
  for (const std::string& sql :
       {"INSERT INTO " + index_ + "(" + index_ + ", rowid, text) SELECT 'delete', key, text FROM " +
            changes_ + " WHERE indexed",
        "INSERT INTO " + index_ + "(rowid, text) SELECT t.rowid, t." + column_ + " FROM " +
            changes_ + " c CROSS JOIN " + table_ + " t ON t.rowid = c.key",
        "DELETE FROM " + changes_}) {
    const auto statement = connection_.PrepareOwn(sql);
    const int code = sqlite3_step(statement->Handle());
    if (code != SQLITE_DONE) ThrowEngineError(connection_.Handle(), code, sql);
  }
}

bool TextIndex::IsCurrent() {
  try {
    for (const auto& objects : {Tables(), Triggers()}) {
      for (const Object& object : objects) {
        if (!IsDeclared(object)) return false;
      }
    }
    return CountsTheRows() && HasSamples();
  } catch (const CDaoException&) {
    return false;  // trouble with the file shows again when the index is made
  }
}

bool TextIndex::IsDeclared(const Object& object) {
  const auto found = connection_.PrepareOwn("SELECT sql FROM sqlite_schema WHERE name = ?1");
  Check(connection_.Handle(),
        sqlite3_bind_text(found->Handle(), 1, object.name.c_str(), -1, SQLITE_TRANSIENT), "");
  return sqlite3_step(found->Handle()) == SQLITE_ROW && BytesOf(found->Handle(), 0) == object.sql;
}

// The index has every row but those that are noted as new, and still those that are noted as gone.
bool TextIndex::CountsTheRows() {
  const auto counts = connection_.PrepareOwn(
      "SELECT (SELECT count(*) FROM " + table_ + ") + (SELECT count(*) FROM " + changes_ +
      " WHERE indexed) - (SELECT count(*) FROM " + changes_ + " WHERE key IN (SELECT rowid FROM " +
      table_ + ")), (SELECT block FROM " + QuoteName(name_ + "_data") + " WHERE id = 1)");
  if (sqlite3_step(counts->Handle()) != SQLITE_ROW) return false;
  const std::int64_t rows = sqlite3_column_int64(counts->Handle(), 0);
  const std::string_view averages = BytesOf(counts->Handle(), 1);
  return averages.empty() ? rows == 0 : FirstNumber(averages) == rows;
}

// From the first row to the last in equal steps.
bool TextIndex::HasSamples() {
  const std::string first = "(SELECT min(rowid) FROM " + table_ + ")";
  const std::string last = "(SELECT max(rowid) FROM " + table_ + ")";
  const auto row = connection_.PrepareOwn("SELECT rowid, " + column_ + " FROM " + table_ +
                                          " WHERE rowid >= " + first + " + (" + last + " - " +
                                          first + ") * ?1 / ?2 AND rowid NOT IN (SELECT key FROM " +
                                          changes_ + ") ORDER BY rowid LIMIT 1");
  const auto found = connection_.PrepareOwn("SELECT 1 FROM " + index_ + " WHERE " + index_ +
                                            " MATCH ?1 AND rowid = ?2");
  for (int sample = 0; sample <= kSamples; ++sample) {
    sqlite3_reset(row->Handle());
    sqlite3_reset(found->Handle());
    sqlite3_bind_int(row->Handle(), 1, sample);
    sqlite3_bind_int(row->Handle(), 2, kSamples);
    if (sqlite3_step(row->Handle()) != SQLITE_ROW) return sample == 0;  // no rows at all
    const auto grams = SampleGram(BytesOf(row->Handle(), 1));
    if (grams.empty()) continue;
    const std::string match = MatchAll(grams);
    sqlite3_bind_text(found->Handle(), 1, match.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_int64(found->Handle(), 2, sqlite3_column_int64(row->Handle(), 0));
    if (sqlite3_step(found->Handle()) != SQLITE_ROW) return false;
  }
  return true;
}

}  // namespace vdstomgr::sqlite
