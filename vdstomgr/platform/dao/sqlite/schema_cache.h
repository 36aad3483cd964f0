#pragma once

#include <map>
#include <string>
#include <string_view>

#include "vdstomgr/platform/dao/schema.h"

struct sqlite3;

namespace vdstomgr::sqlite {

/// The tables of the open file, read back from it on demand and kept until the schema changes.
class SchemaCache final : public dao::SchemaView {
 public:
  explicit SchemaCache(sqlite3* db) : db_(db) {}

  const dao::TableSchema* FindTable(std::string_view name) const override;
  void Clear() { tables_.clear(); }

 private:
  sqlite3* db_;
  mutable std::map<std::string, dao::TableSchema, std::less<>> tables_;  // by lower-case name
};

}  // namespace vdstomgr::sqlite
