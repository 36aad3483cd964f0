#include "tools/vdsto/library/database_password.h"

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

std::string Cut(const std::string& password, size_t (*places_of)(char32_t)) {
  size_t places = 0, characters = 0;
  for (const char32_t character : CodePoints(password)) {
    places += places_of(character);
    if (places > kPasswordPlaces) break;
    ++characters;
  }
  return FirstCharacters(password, characters);
}

std::string OpenWith(CDaoDatabase& database, const std::string& path, std::string password) {
  database.Open(path.c_str(), false, true, (";PWD=" + password).c_str());
  return password;
}

}  // namespace

std::string CountingPassword(const std::string& password) {
  return Cut(password, &KoreanPlaces);
}

std::string OpenUnderPassword(CDaoDatabase& database, const std::string& path,
                              const std::string& password) {
  try {
    return OpenWith(database, path, CountingPassword(password));
  } catch (const CDaoException& error) {
    if (error.Code() != kWrongPassword) throw;
    return OpenWith(database, path, Cut(password, &Bytes));  // of a file made when bytes counted
  }
}

}  // namespace vdsto
