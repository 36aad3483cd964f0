#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/dao/jet_schema.h"

namespace {

using vdstomgr::jet::Literal;
using vdstomgr::jet::Shape;

// The key with literals as <text>, <integer> and <real>, which the key itself shows as bytes 1,
// 2, 3.
std::string Describe(const Shape& shape) {
  std::string described;
  size_t next = 0;
  for (const char byte : shape.Key()) {
    if (static_cast<unsigned char>(byte) > 3) {
      described += byte;
      continue;
    }
    const Literal& literal = shape.Literals()[next++];
    EXPECT_EQ(byte, Marker(literal.kind));
    if (literal.kind == Literal::Kind::Text) described += "<" + literal.text + ">";
    if (literal.kind == Literal::Kind::Integer) {
      described += "<" + std::to_string(literal.integer) + ">";
    }
    if (literal.kind == Literal::Kind::Real) described += "<~" + std::to_string(literal.real) + ">";
  }
  EXPECT_EQ(next, shape.Literals().size());
  return described;
}

TEST(JetShape, LiteralsAreLiftedOut) {
  const struct {
    const char* sql;
    const char* shape;
  } kCases[] = {
      {"", ""},
      {"x = 'it''s' AND y=''", "x = <it's> AND y=<>"},
      {"'''' '''''' \"a\"\"b'c\" 'a\"b'", "<'> <''> <a\"b'c> <a\"b>"},
      {"'개인 폴더','a\tb\x01'", "<개인 폴더>,<a\tb\x01>"},
      {"sz500URL, IX1_PT, 폴더1, [a 'b' 1]", "sz500URL, IX1_PT, 폴더1, [a 'b' 1]"},
      {"values(-1,-10, 5, +7)", "values(<-1>,<-10>, <5>, +<7>)"},
      {"a -1, a-1, (a)-1, [a]-1, 5-3, 'x' -1",
       "a -<1>, a-<1>, (a)-<1>, [a]-<1>, <5>-<3>, <x> -<1>"},
      {"SET -1 where -1 And -1 >-1 MOD -1 *-.5",
       "SET <-1> where <-1> And <-1> ><-1> MOD <-1> *<~-0.500000>"},
      {"setx -1, -a, - 1", "setx -<1>, -a, - <1>"},
      {"TOP -1 (-2^2, -2 ^2)", "TOP -<1> (-<2>^<2>, -<2> ^<2>)"},
      {"0xFF 0Xff (-0x10)", "<255> <255> (<-16>)"},
      {"1.5 .5 2. 1e3 1E-2 007 t.a 3e", nullptr},
      {"1.5 .5 2. 1e3 1E-2 007 t.a",
       "<~1.500000> <~0.500000> <~2.000000> <~1000.000000> <~0.010000> <7> t.a"},
      {"9223372036854775807 (-9223372036854775808)",
       "<9223372036854775807> (<-9223372036854775808>)"},
      {"9223372036854775808", "<~9223372036854775808.000000>"},
      {"0xFFFFFFFFFFFFFFFF", "<~18446744073709551616.000000>"},
      {"0x10000000000000000", nullptr},
      {"1e999", nullptr},
      {"0x", nullptr},
      {"1.2.3", nullptr},
      {"12ab", nullptr},
      {"'open", nullptr},
      {"'open''", nullptr},
      {"\"open'", nullptr},
      {"[open", nullptr},
      {"[\x01]", nullptr},
      {"a \x02", nullptr},
      {"a --b", nullptr},
      {"a /* b */", nullptr},
      {"a ? b", nullptr},
      {"a]", nullptr},
  };
  Shape shape;
  for (const auto& c : kCases) {
    if (c.shape) {
      shape.Scan(c.sql);
      EXPECT_EQ(Describe(shape), c.shape);
    } else {
      EXPECT_THROW(shape.Scan(c.sql), CDaoException) << c.sql;
    }
  }
  EXPECT_THROW(shape.Scan(std::string_view("a\0b", 3)), CDaoException);
  EXPECT_THROW(shape.Scan(std::string_view("'a\0b'", 5)), CDaoException);
}

}  // namespace
