#pragma once

#include <string_view>

#include "vdstomgr/platform/dao/jet/ast.h"

namespace vdstomgr::jet {

struct Token {
  enum class Kind {
    End,
    Word,     ///< a name or a keyword
    Name,     ///< a name in brackets: never a keyword
    Literal,  ///< a marker
    Symbol,   ///< punctuation; also any byte that is none of the above
  };
  Kind kind = Kind::End;
  std::string_view text;  ///< without the brackets
  size_t position = 0;    ///< in the key
  LiteralRef literal;     ///< Literal only
};

/// Cuts a shape's key into tokens. A copy goes on from the same place.
class Lexer {
 public:
  explicit Lexer(std::string_view key) : key_(key) {}

  Token Next();
  std::string_view Key() const { return key_; }

 private:
  Token Cut(Token::Kind kind, size_t length);
  Token CutName();
  Token CutLiteral(Literal::Kind kind);
  size_t SymbolLength() const;

  std::string_view key_;
  size_t at_ = 0;
  int literals_ = 0;
};

}  // namespace vdstomgr::jet
