#pragma once

#include <string>

#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/jet/parser.h"
#include "vdstomgr/platform/dao/jet/shape.h"
#include "vdstomgr/platform/dao/sqlite/printer.h"

/// Tables T and U (id INTEGER key, b BYTE, s VARCHAR(5), d DOUBLE) and I (s CHAR(36) key).
class TestSchema : public vdstomgr::dao::SchemaView {
 public:
  const vdstomgr::dao::TableSchema* FindTable(std::string_view name) const override {
    for (const auto& table : tables_) {
      if (name.size() == 1 && (name[0] & ~0x20) == table.name[0]) return &table;
    }
    return nullptr;
  }

 private:
  using Type = vdstomgr::dao::ColumnType;
  static vdstomgr::dao::TableSchema Wide(const char* name) {
    return {name,
            {{"id", Type::Integer, 0, true, true},
             {"b", Type::Byte},
             {"s", Type::Text, 5},
             {"d", Type::Double}}};
  }
  vdstomgr::dao::TableSchema tables_[3] = {
      Wide("T"), Wide("U"), {"I", {{"s", Type::Text, 36, true, true}}}};
};

inline vdstomgr::sqlite::Printed Translate(const std::string& sql,
                                           const vdstomgr::sqlite::PrintOptions& options = {}) {
  vdstomgr::jet::Shape shape;
  shape.Scan(sql);
  return vdstomgr::sqlite::Print(vdstomgr::jet::Parse(shape.Key(), shape.Literals()), TestSchema(),
                                 options);
}

/// The error number of a statement, 0 when it can be translated.
inline int TranslationError(const std::string& sql) {
  try {
    Translate(sql);
    return 0;
  } catch (const CDaoException& error) {
    return error.Code();
  }
}
