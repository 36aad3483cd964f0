#include "vdstomgr/platform/dao/jet/lexer.h"

#include <algorithm>

#include "vdstomgr/platform/dao/jet/char_class.h"
#include "vdstomgr/platform/dao/jet/shape.h"

namespace vdstomgr::jet {
namespace {

size_t CountWhile(std::string_view text, bool (*belongs)(char)) {
  const auto end = std::find_if_not(text.begin(), text.end(), belongs);
  return static_cast<size_t>(end - text.begin());
}

}  // namespace

Token Lexer::Next() {
  at_ += CountWhile(key_.substr(at_), [](char c) { return ClassOf(c) == CharClass::Space; });
  if (at_ == key_.size()) return Cut(Token::Kind::End, 0);
  const char first = key_[at_];
  for (const auto kind : {Literal::Kind::Text, Literal::Kind::Integer, Literal::Kind::Real}) {
    if (first == Marker(kind)) return CutLiteral(kind);
  }
  if (first == '[') return CutName();
  if (IsWordByte(first)) return Cut(Token::Kind::Word, CountWhile(key_.substr(at_), IsWordByte));
  return Cut(Token::Kind::Symbol, SymbolLength());
}

Token Lexer::Cut(Token::Kind kind, size_t length) {
  Token token{kind, key_.substr(at_, length), at_, {}};
  at_ += length;
  return token;
}

Token Lexer::CutName() {
  const size_t closing = key_.find(']', at_);
  if (closing == std::string_view::npos) return Cut(Token::Kind::Symbol, 1);
  Token token = Cut(Token::Kind::Name, closing + 1 - at_);
  token.text = token.text.substr(1, token.text.size() - 2);
  return token;
}

Token Lexer::CutLiteral(Literal::Kind kind) {
  Token token = Cut(Token::Kind::Literal, 1);
  token.literal = {literals_++, kind};
  return token;
}

size_t Lexer::SymbolLength() const {
  const std::string_view pair = key_.substr(at_, 2);
  return pair == "<>" || pair == "<=" || pair == ">=" ? 2 : 1;
}

}  // namespace vdstomgr::jet
