#include "vdstomgr/platform/dao/jet/syntax_error.h"

#include <algorithm>
#include <string>

namespace vdstomgr::jet {
namespace {

constexpr size_t kLongestExcerpt = 40;

bool ContinuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

std::string Excerpt(std::string_view text, size_t position) {
  text.remove_prefix(std::min(position, text.size()));
  size_t length = std::min(text.size(), kLongestExcerpt);
  if (length < text.size()) {
    while (length > 0 && ContinuesCharacter(text[length])) --length;
  }
  std::string excerpt(text.substr(0, length));
  std::replace_if(
      excerpt.begin(), excerpt.end(), [](unsigned char byte) { return byte < ' '; }, '?');
  return excerpt;
}

}  // namespace

void ThrowSyntaxError(dao::Error error, std::string_view text, size_t position) {
  dao::Throw(error, Excerpt(text, position));
}

}  // namespace vdstomgr::jet
