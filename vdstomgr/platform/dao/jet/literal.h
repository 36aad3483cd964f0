#pragma once

#include <cstdint>
#include <string>

namespace vdstomgr::jet {

/// A constant of a statement, lifted out of its text.
struct Literal {
  enum class Kind : std::uint8_t { Text, Integer, Real };

  Kind kind = Kind::Text;
  std::string text;          ///< Text only: the value, quotes undoubled, UTF-8
  std::int64_t integer = 0;  ///< Integer only
  double real = 0;           ///< Real only
};

}  // namespace vdstomgr::jet
