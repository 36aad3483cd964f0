#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vdstomgr::dao {

enum class Kind : std::uint8_t { Null, Integer, Real, Text, Binary };

/// One column of a query's current row, borrowed: good until the query moves, writes or closes.
struct Field {
  Kind kind = Kind::Null;
  std::int64_t integer = 0;
  double real = 0;
  std::string_view bytes;  ///< Text (UTF-8) or Binary

  bool IsNull() const { return kind == Kind::Null; }
};

/// A value on its way into a column. Reused from row to row, so that its text keeps its memory.
struct Value {
  Kind kind = Kind::Null;
  std::int64_t integer = 0;
  double real = 0;
  std::string bytes;  ///< Text (UTF-8) or Binary

  void SetNull() { kind = Kind::Null; }
  void SetInteger(std::int64_t value) { kind = Kind::Integer, integer = value; }
  void SetReal(double value) { kind = Kind::Real, real = value; }

  /// Is it, to the byte, what the field holds?
  bool operator==(const Field& field) const {
    if (kind != field.kind) return false;
    switch (kind) {
      case Kind::Integer:
        return integer == field.integer;
      case Kind::Real:
        return real == field.real;
      case Kind::Text:
      case Kind::Binary:
        return bytes == field.bytes;
      case Kind::Null:
        return true;
    }
    return false;
  }
};

}  // namespace vdstomgr::dao
