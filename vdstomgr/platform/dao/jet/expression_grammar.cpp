#include <algorithm>
#include <array>
#include <utility>

#include "vdstomgr/platform/dao/jet/grammar.h"
#include "vdstomgr/platform/text/ascii.h"

namespace vdstomgr::jet {
namespace {

using dao::Error;

struct ArithmeticSymbol {
  int level;  // 0 binds loosest
  std::string_view text;
  Arithmetic op;
};

constexpr std::array kArithmetic = {
    ArithmeticSymbol{0, "&", Arithmetic::Concat},
    ArithmeticSymbol{1, "+", Arithmetic::Add},
    ArithmeticSymbol{1, "-", Arithmetic::Subtract},
    ArithmeticSymbol{2, "MOD", Arithmetic::Modulo},
    ArithmeticSymbol{3, "\\", Arithmetic::IntegerDivide},
    ArithmeticSymbol{4, "*", Arithmetic::Multiply},
    ArithmeticSymbol{4, "/", Arithmetic::Divide},
};
constexpr int kUnaryLevel = 5;

constexpr std::array kRelations = {
    std::pair{std::string_view("="), Relation::Equal},
    std::pair{std::string_view("<>"), Relation::NotEqual},
    std::pair{std::string_view("<"), Relation::Less},
    std::pair{std::string_view("<="), Relation::LessOrEqual},
    std::pair{std::string_view(">"), Relation::Greater},
    std::pair{std::string_view(">="), Relation::GreaterOrEqual},
};

constexpr std::array kAggregates = {
    std::pair{std::string_view("COUNT"), Aggregate::Function::Count},
    std::pair{std::string_view("MAX"), Aggregate::Function::Max},
    std::pair{std::string_view("MIN"), Aggregate::Function::Min},
    std::pair{std::string_view("SUM"), Aggregate::Function::Sum},
    std::pair{std::string_view("AVG"), Aggregate::Function::Avg},
};

constexpr std::array kConstants = {
    std::pair{std::string_view("NULL"), Constant::Null},
    std::pair{std::string_view("TRUE"), Constant::True},
    std::pair{std::string_view("FALSE"), Constant::False},
};

template <class Node>
Expr Make(Node node) {
  return Expr{std::move(node)};
}

ExprPtr Own(Expr expr) {
  return std::make_unique<Expr>(std::move(expr));
}

SelectPtr ParseSubSelect(TokenReader& reader) {
  return std::make_unique<Select>(ParseSelect(reader));
}

Expr ParseUnary(TokenReader& reader);

Expr ParseAggregate(TokenReader& reader) {
  const Token word = reader.Take();
  const auto* found = std::find_if(kAggregates.begin(), kAggregates.end(), [&](const auto& known) {
    return word.kind == Token::Kind::Word && SameName(known.first, word.text);
  });
  if (found == kAggregates.end()) dao::Throw(Error::UndefinedFunction, word.text);
  reader.Expect("(");
  Aggregate aggregate{found->second, nullptr};
  const bool count_all = aggregate.function == Aggregate::Function::Count && reader.Accept("*");
  if (!count_all) aggregate.argument = ParseExpressionPtr(reader);
  reader.Expect(")");
  return Make(std::move(aggregate));
}

Expr ParseColumn(TokenReader& reader) {
  ColumnRef column{{}, reader.TakeName()};
  if (reader.Accept(".")) {
    column.table = std::exchange(column.name, reader.TakeName());
  }
  return Make(std::move(column));
}

Expr ParseParentheses(TokenReader& reader) {
  reader.Expect("(");
  Expr inside =
      reader.Is("SELECT") ? Make(ScalarSelect{ParseSubSelect(reader)}) : ParseExpression(reader);
  reader.Expect(")");
  return inside;
}

Expr ParseExists(TokenReader& reader) {
  reader.Expect("(");
  Exists exists{ParseSubSelect(reader)};
  reader.Expect(")");
  return Make(std::move(exists));
}

Expr ParsePrimary(TokenReader& reader) {
  if (reader.Current().kind == Token::Kind::Literal) return Make(reader.Take().literal);
  if (reader.Is("(")) return ParseParentheses(reader);
  if (reader.Accept("EXISTS")) return ParseExists(reader);
  for (const auto& [word, constant] : kConstants) {
    if (reader.Accept(word)) return Make(constant);
  }
  if (reader.IsName() && reader.IsNext("(")) return ParseAggregate(reader);
  return ParseColumn(reader);
}

// Appends "op operand" to what was read so far.
void AddStep(TokenReader& reader, Expr& so_far, Calculation*& calculation, Arithmetic op,
             Expr operand) {
  reader.CountCalculation();
  if (!calculation) {
    so_far = Make(Calculation{Own(std::move(so_far)), {}});
    calculation = &std::get<Calculation>(so_far.node);
  }
  calculation->rest.push_back({op, Own(std::move(operand))});
}

Expr ParsePower(TokenReader& reader) {
  Expr value = ParsePrimary(reader);
  Calculation* calculation = nullptr;
  while (reader.Accept("^")) {
    const bool has_sign = reader.Is("-") || reader.Is("+");
    AddStep(reader, value, calculation, Arithmetic::Power,
            has_sign ? ParseUnary(reader) : ParsePrimary(reader));
  }
  return value;
}

Expr ParseUnary(TokenReader& reader) {
  const bool minus = reader.Is("-");
  if (!minus && !reader.Is("+")) return ParsePower(reader);
  const TokenReader::Nesting nesting(reader);
  reader.Take();
  Expr operand = ParseUnary(reader);
  return minus ? Make(Negation{Own(std::move(operand))}) : std::move(operand);
}

const ArithmeticSymbol* FindArithmetic(const TokenReader& reader, int level) {
  const auto* found =
      std::find_if(kArithmetic.begin(), kArithmetic.end(), [&](const ArithmeticSymbol& symbol) {
        return symbol.level == level && reader.Is(symbol.text);
      });
  return found == kArithmetic.end() ? nullptr : found;
}

Expr ParseCalculation(TokenReader& reader, int level = 0) {
  if (level == kUnaryLevel) return ParseUnary(reader);
  Expr value = ParseCalculation(reader, level + 1);
  Calculation* calculation = nullptr;
  while (const ArithmeticSymbol* symbol = FindArithmetic(reader, level)) {
    reader.Take();
    AddStep(reader, value, calculation, symbol->op, ParseCalculation(reader, level + 1));
  }
  return value;
}

ExprPtr ParseOperand(TokenReader& reader) {
  return Own(ParseCalculation(reader));
}

Expr ParseIn(TokenReader& reader, bool negated, ExprPtr value) {
  reader.Expect("(");
  if (reader.Is("SELECT")) {
    InSelect in{negated, std::move(value), ParseSubSelect(reader)};
    reader.Expect(")");
    return Make(std::move(in));
  }
  InList in{negated, std::move(value), {}};
  do {
    in.items.push_back(ParseExpression(reader));
  } while (reader.Accept(","));
  reader.Expect(")");
  return Make(std::move(in));
}

Expr ParseBetween(TokenReader& reader, bool negated, ExprPtr value) {
  Between between{negated, std::move(value), ParseOperand(reader), nullptr};
  reader.Expect("AND");
  between.high = ParseOperand(reader);
  return Make(std::move(between));
}

Expr ParseIsNull(TokenReader& reader, ExprPtr value) {
  const bool negated = reader.Accept("NOT");
  reader.Expect("NULL");
  return Make(IsNull{negated, std::move(value)});
}

Expr ParsePredicate(TokenReader& reader) {
  Expr value = ParseCalculation(reader);
  for (const auto& [symbol, relation] : kRelations) {
    if (reader.Accept(symbol)) {
      return Make(Comparison{relation, Own(std::move(value)), ParseOperand(reader)});
    }
  }
  if (reader.Accept("IS")) return ParseIsNull(reader, Own(std::move(value)));
  const bool negated = reader.Accept("NOT");
  if (reader.Accept("LIKE")) {
    return Make(LikeTest{negated, Own(std::move(value)), ParseOperand(reader)});
  }
  if (reader.Accept("IN")) return ParseIn(reader, negated, Own(std::move(value)));
  if (reader.Accept("BETWEEN")) return ParseBetween(reader, negated, Own(std::move(value)));
  if (negated) reader.Fail();
  return value;
}

Expr ParseNot(TokenReader& reader) {
  if (!reader.Is("NOT")) return ParsePredicate(reader);
  const TokenReader::Nesting nesting(reader);
  reader.Take();
  return Make(Not{Own(ParseNot(reader))});
}

Expr ParseLogical(TokenReader& reader, bool is_and) {
  const auto parse_operand = [&] { return is_and ? ParseNot(reader) : ParseLogical(reader, true); };
  const std::string_view keyword = is_and ? "AND" : "OR";
  Expr first = parse_operand();
  if (!reader.Is(keyword)) return first;
  Logical logical{is_and, {}};
  logical.operands.push_back(std::move(first));
  while (reader.Accept(keyword)) logical.operands.push_back(parse_operand());
  return Make(std::move(logical));
}

}  // namespace

Expr ParseExpression(TokenReader& reader) {
  const TokenReader::Clause clause(reader, Error::SyntaxInExpression);
  const TokenReader::Nesting nesting(reader);
  return ParseLogical(reader, false);
}

ExprPtr ParseExpressionPtr(TokenReader& reader) {
  return Own(ParseExpression(reader));
}

ExprPtr ParseOptionalCondition(TokenReader& reader, std::string_view keyword) {
  return reader.Accept(keyword) ? ParseExpressionPtr(reader) : nullptr;
}

}  // namespace vdstomgr::jet
