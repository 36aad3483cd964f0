#include "vdstomgr/platform/dao/jet/token_reader.h"

#include <utility>

#include "vdstomgr/platform/dao/jet/reserved_words.h"
#include "vdstomgr/platform/dao/jet/syntax_error.h"
#include "vdstomgr/platform/text/ascii.h"

namespace vdstomgr::jet {
namespace {

constexpr int kMostCalculations = 500;

}  // namespace

bool TokenReader::Is(std::string_view keyword_or_symbol) const {
  switch (current_.kind) {
    case Token::Kind::Word:
      return SameName(current_.text, keyword_or_symbol);
    case Token::Kind::Symbol:
      return current_.text == keyword_or_symbol;
    default:
      return false;
  }
}

bool TokenReader::IsNext(std::string_view keyword_or_symbol) const {
  TokenReader ahead = *this;
  ahead.Take();
  return ahead.Is(keyword_or_symbol);
}

bool TokenReader::IsName() const {
  if (current_.kind == Token::Kind::Word) return !IsReserved(current_.text);
  return current_.kind == Token::Kind::Name && !current_.text.empty();
}

Token TokenReader::Take() {
  return std::exchange(current_, lexer_.Next());
}

bool TokenReader::Accept(std::string_view keyword_or_symbol) {
  if (!Is(keyword_or_symbol)) return false;
  Take();
  return true;
}

void TokenReader::Expect(std::string_view keyword_or_symbol) {
  if (!Accept(keyword_or_symbol)) Fail();
}

std::string TokenReader::TakeName() {
  if (!IsName()) Fail();
  return std::string(Take().text);
}

std::vector<std::string> TokenReader::TakeNameList() {
  Expect("(");
  std::vector<std::string> names;
  do {
    names.push_back(TakeName());
  } while (Accept(","));
  Expect(")");
  return names;
}

std::int64_t TokenReader::TakeInteger() {
  const bool is_integer = current_.kind == Token::Kind::Literal &&
                          current_.literal.kind == Literal::Kind::Integer &&
                          static_cast<size_t>(current_.literal.index) < literals_.size();
  if (!is_integer) Fail();
  return literals_[static_cast<size_t>(Take().literal.index)].integer;
}

void TokenReader::CountCalculation() {
  if (++calculations_ > kMostCalculations) Fail();
}

void TokenReader::Fail() const {
  ThrowSyntaxError(error_, lexer_.Key(), current_.position);
}

}  // namespace vdstomgr::jet
