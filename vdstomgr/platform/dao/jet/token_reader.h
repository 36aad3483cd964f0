#pragma once

#include <span>
#include <string>
#include <string_view>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/jet/lexer.h"

namespace vdstomgr::jet {

/// What the grammar's rules read from: the current token, and how to complain about it.
/// A copy may run ahead to see what follows, and be assigned back.
class TokenReader {
 public:
  TokenReader(std::string_view key, std::span<const Literal> literals)
      : lexer_(key), literals_(literals), current_(lexer_.Next()) {}

  const Token& Current() const { return current_; }
  bool AtEnd() const { return current_.kind == Token::Kind::End; }

  /// Is the current token that keyword (upper case here, any case there) or symbol?
  bool Is(std::string_view keyword_or_symbol) const;
  /// Is the token after the current one that?
  bool IsNext(std::string_view keyword_or_symbol) const;
  /// Can the current token be a name? Reserved words need brackets for that.
  bool IsName() const;

  Token Take();
  bool Accept(std::string_view keyword_or_symbol);
  void Expect(std::string_view keyword_or_symbol);
  std::string TakeName();
  /// Takes "(a, b, c)".
  std::vector<std::string> TakeNameList();
  /// Takes an integer literal and returns its value.
  std::int64_t TakeInteger();

  /// Counts an arithmetic operation. The engine works through the calculations of a statement by
  /// recursion, so there is a limit to them; beyond it this fails.
  void CountCalculation();

  /// Throws the current clause's syntax error at the current token.
  [[noreturn]] void Fail() const;

  /// While it lives, failures are those of its clause.
  class Clause {
   public:
    Clause(TokenReader& reader, dao::Error error) : reader_(reader), outer_(reader.error_) {
      reader.error_ = error;
    }
    ~Clause() { reader_.error_ = outer_; }
    Clause(const Clause&) = delete;
    Clause& operator=(const Clause&) = delete;

   private:
    TokenReader& reader_;
    dao::Error outer_;
  };

  /// One level of nesting. Statements that nest deeper than is sane fail instead of exhausting the
  /// stack, ours or the engine's.
  class Nesting {
   public:
    explicit Nesting(TokenReader& reader) : reader_(reader) {
      if (reader.depth_ == kDeepest) reader.Fail();
      ++reader.depth_;
    }
    ~Nesting() { --reader_.depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

   private:
    static constexpr int kDeepest = 50;
    TokenReader& reader_;
  };

 private:
  Lexer lexer_;
  std::span<const Literal> literals_;
  Token current_;
  dao::Error error_ = dao::Error::InvalidStatement;
  int depth_ = 0;
  int calculations_ = 0;
};

}  // namespace vdstomgr::jet
