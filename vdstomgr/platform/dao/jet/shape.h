#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vdstomgr/platform/dao/jet/literal.h"

namespace vdstomgr::jet {

/// The byte that stands in a shape's key for a literal of that kind.
constexpr char Marker(Literal::Kind kind) {
  return static_cast<char>(1 + static_cast<int>(kind));
}

/// The shape of a statement: its text without its literals, and the literals.
///
/// Statements that differ only in their literals have the same key, which is how a composed text
/// finds its prepared statement. The scan runs for every statement, so it touches each byte once
/// and its buffers are reused from call to call.
class Shape {
 public:
  /// Takes a statement (UTF-8) apart. Throws SyntaxInExpression for text that is not closed,
  /// comments, control bytes and numbers that run into a name; NumberOverflow for a number that no
  /// double can hold.
  void Scan(std::string_view sql);

  /// The statement with each literal replaced by its Marker(). Good until the next Scan.
  std::string_view Key() const { return key_; }

  /// The literals in order of appearance. Good until the next Scan.
  std::span<const Literal> Literals() const { return {literals_.data(), literal_count_}; }

 private:
  friend class ShapeScanner;
  Literal& AddLiteral(Literal::Kind kind);

  std::string key_;
  std::vector<Literal> literals_;  // keeps its texts' memory beyond literal_count_
  size_t literal_count_ = 0;
};

}  // namespace vdstomgr::jet
