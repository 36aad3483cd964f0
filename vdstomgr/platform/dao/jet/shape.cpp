#include "vdstomgr/platform/dao/jet/shape.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "vdstomgr/platform/dao/jet/char_class.h"
#include "vdstomgr/platform/dao/jet/reserved_words.h"
#include "vdstomgr/platform/dao/jet/syntax_error.h"

namespace vdstomgr::jet {
namespace {

// More than this is given back before the next statement.
constexpr size_t kMostLiteralsKept = 1024;

bool IsDigit(char byte) {
  return ClassOf(byte) == CharClass::Digit;
}
bool IsSpace(char byte) {
  return ClassOf(byte) == CharClass::Space;
}

}  // namespace

// One pass over one statement: copies what is no literal to the shape's key, run by run.
class ShapeScanner {
 public:
  ShapeScanner(Shape& shape, std::string_view sql)
      : shape_(shape), sql_(sql), at_(sql.data()), end_(at_ + sql.size()), run_(at_) {}

  void Run() {
    if (!sql_.empty() && std::memchr(sql_.data(), 0, sql_.size())) {
      Refuse(sql_.data() + sql_.find('\0'));
    }
    while (at_ != end_) Step();
    CopyRun(end_);
  }

 private:
  void Step() {
    switch (ClassOf(*at_)) {
      case CharClass::Word:
        return SkipWord();
      case CharClass::Space:
        ++at_;
        return;
      case CharClass::Symbol:
        if (Next() == '*' && *at_ == '/') Refuse(at_);
        ++at_;
        return;
      case CharClass::Quote:
        return TakeText();
      case CharClass::Digit:
        return TakeNumber(at_);
      case CharClass::Dot:
        return IsDigit(Next()) && !FollowsName() ? TakeNumber(at_) : static_cast<void>(++at_);
      case CharClass::Minus:
        return TakeMinus();
      case CharClass::Bracket:
        return SkipBrackets();
      case CharClass::Refused:
        Refuse(at_);
    }
  }

  char Next() const { return end_ - at_ > 1 ? at_[1] : '\0'; }
  bool FollowsName() const { return at_ != sql_.data() && (IsWordByte(at_[-1]) || at_[-1] == ']'); }

  [[noreturn]] void Refuse(const char* where) const {
    ThrowSyntaxError(dao::Error::SyntaxInExpression, sql_,
                     static_cast<size_t>(where - sql_.data()));
  }

  void SkipWord() {
    while (at_ != end_ && IsWordByte(*at_)) ++at_;
  }

  const char* FindClosing(char closing, const char* from, const char* opening) const {
    const void* found =
        from == end_ ? nullptr : std::memchr(from, closing, static_cast<size_t>(end_ - from));
    if (!found) Refuse(opening);
    return static_cast<const char*>(found);
  }

  void SkipBrackets() {
    const char* closing = FindClosing(']', at_ + 1, at_);
    if (std::any_of(at_, closing, [](unsigned char byte) { return byte < ' '; })) Refuse(at_);
    at_ = closing + 1;
  }

  void CopyRun(const char* end) { shape_.key_.append(run_, static_cast<size_t>(end - run_)); }

  Literal& StartLiteral(const char* first, Literal::Kind kind) {
    CopyRun(first);
    shape_.key_.push_back(Marker(kind));
    return shape_.AddLiteral(kind);
  }

  void TakeText() {
    const char* opening = at_;
    const char quote = *at_;
    std::string& text = StartLiteral(opening, Literal::Kind::Text).text;
    const char* closing = FindClosing(quote, at_ + 1, opening);
    text.assign(at_ + 1, closing);
    for (at_ = closing + 1; at_ != end_ && *at_ == quote; at_ = closing + 1) {
      closing = FindClosing(quote, at_ + 1, opening);
      text.append(at_, closing);
    }
    run_ = at_;
  }

  void TakeMinus() {
    if (Next() == '-') Refuse(at_);
    const char* sign = at_++;
    const bool number = at_ != end_ && (IsDigit(*at_) || (*at_ == '.' && IsDigit(Next())));
    if (number && IsSign(sign)) TakeNumber(sign);
  }

  // Is the minus a sign, judged by what stands before it?
  bool IsSign(const char* minus) const {
    const char* const begin = sql_.data();
    const char* last = minus;
    while (last != begin && IsSpace(last[-1])) --last;
    if (last == begin) return true;
    if (!IsWordByte(last[-1])) return std::memchr(")]'\".", last[-1], 5) == nullptr;
    const char* word = last;
    while (word != begin && IsWordByte(word[-1])) --word;
    return TakesSign({word, static_cast<size_t>(last - word)});
  }

  // at_ stands on the first digit or the point, `first` there too or on the sign before it.
  void TakeNumber(const char* first) {
    const char* digits = at_;
    const bool hex = *at_ == '0' && (Next() | 0x20) == 'x';
    const bool real = !hex && SkipDecimal();
    if (hex) SkipWord();
    if (at_ != end_ && (IsWordByte(*at_) || *at_ == '.')) Refuse(digits);
    // -2 ^ 2 is -(2 ^ 2)
    const char* behind = std::find_if_not(at_, end_, IsSpace);
    if (behind != end_ && *behind == '^') first = digits;

    if (hex) {
      AddHex(first, digits + 2);
    } else {
      AddDecimal(first, real);
    }
    run_ = at_;
  }

  void SkipDigits() {
    while (at_ != end_ && IsDigit(*at_)) ++at_;
  }

  bool SkipDecimal() {
    const char* begin = at_;
    SkipDigits();
    const char* whole_end = at_;
    if (at_ != end_ && *at_ == '.') {
      ++at_;
      SkipDigits();
    }
    SkipExponent();
    return at_ != whole_end || begin == whole_end;
  }

  void SkipExponent() {
    if (at_ == end_ || (*at_ | 0x20) != 'e') return;
    const char* digits = at_ + 1;
    if (digits != end_ && (*digits == '+' || *digits == '-')) ++digits;
    if (digits == end_ || !IsDigit(*digits)) return;
    at_ = digits;
    SkipDigits();
  }

  void AddDecimal(const char* first, bool real) {
    std::int64_t integer = 0;
    if (!real && std::from_chars(first, at_, integer).ec == std::errc()) {
      StartLiteral(first, Literal::Kind::Integer).integer = integer;
      return;
    }
    double value = 0;
    const auto read = std::from_chars(first, at_, value);
    if (read.ec == std::errc::result_out_of_range) Overflow(first);
    if (read.ec != std::errc() || read.ptr != at_) Refuse(first);
    StartLiteral(first, Literal::Kind::Real).real = value;
  }

  void AddHex(const char* first, const char* digits) {
    std::uint64_t value = 0;
    const auto read = std::from_chars(digits, at_, value, 16);
    if (read.ec == std::errc::result_out_of_range) Overflow(first);
    if (read.ec != std::errc() || read.ptr != at_) Refuse(first);
    const bool negative = *first == '-';
    if (value <= INT64_MAX) {
      const auto integer = static_cast<std::int64_t>(value);
      StartLiteral(first, Literal::Kind::Integer).integer = negative ? -integer : integer;
    } else {
      const auto magnitude = static_cast<double>(value);
      StartLiteral(first, Literal::Kind::Real).real = negative ? -magnitude : magnitude;
    }
  }

  [[noreturn]] void Overflow(const char* first) const {
    dao::Throw(dao::Error::NumberOverflow, {first, static_cast<size_t>(at_ - first)});
  }

  Shape& shape_;
  std::string_view sql_;
  const char* at_;
  const char* end_;
  const char* run_;  // what stands before it is in the key
};

void Shape::Scan(std::string_view sql) {
  if (literals_.size() > kMostLiteralsKept) {
    literals_ = {};
    key_ = {};
  }
  key_.clear();
  literal_count_ = 0;
  ShapeScanner(*this, sql).Run();
}

Literal& Shape::AddLiteral(Literal::Kind kind) {
  if (literal_count_ == literals_.size()) literals_.emplace_back();
  Literal& literal = literals_[literal_count_++];
  literal.kind = kind;
  return literal;
}

}  // namespace vdstomgr::jet
