#include "tools/vdsto/library/catalogue_file.h"

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr int kWrongPassword = 3031;
constexpr size_t kPasswordPlaces = 20;

size_t KoreanPlaces(char32_t character) {
  return character < 0x80 ? 1 : 2;
}

size_t Bytes(char32_t character) {
  return character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
}

/// The start of a password that counts.
std::string Cut(const std::string& password, size_t (*places_of)(char32_t)) {
  size_t places = 0, characters = 0;
  for (const char32_t character : CodePoints(password)) {
    places += places_of(character);
    if (places > kPasswordPlaces) break;
    ++characters;
  }
  return FirstCharacters(password, characters);
}

}  // namespace

CatalogueFile::CatalogueFile(const Library& library, const std::string& password) {
  const auto open = [&](auto places_of) {
    const std::string connect = ";PWD=" + Cut(password, places_of);
    database_.Open(library.CataloguePath().c_str(), false, true, connect.c_str());
  };
  try {
    try {
      open(&KoreanPlaces);
    } catch (const CDaoException& error) {
      if (error.Code() != kWrongPassword) throw;
      open(&Bytes);  // of a file made when bytes counted
    }
  } catch (const CDaoException& error) {
    throw ToolError(ExitCode::kCannotOpen, error.what());
  }
}

}  // namespace vdsto
