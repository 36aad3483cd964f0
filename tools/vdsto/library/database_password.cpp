#include "tools/vdsto/library/database_password.h"

#include <fstream>
#include <string_view>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr int kNotAccessible = 3051;
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

std::string OpenWith(CDaoDatabase& database, const std::string& path, std::string password,
                     bool to_write) {
  const std::string connect = ";PWD=" + password;
  try {
    database.Open(path.c_str(), false, !to_write, connect.c_str());
  } catch (const CDaoException& error) {
    if (!to_write || error.Code() != kNotAccessible) throw;
    database.Open(path.c_str(), false, true, connect.c_str());
  }
  return password;
}

}  // namespace

bool IsPlainDatabase(const std::string& path) {
  constexpr std::string_view kMagic("SQLite format 3\0", 16);
  std::string start(kMagic.size(), '\0');
  std::ifstream file(path, std::ios::binary);
  return file.read(start.data(), static_cast<std::streamsize>(start.size())) && start == kMagic;
}

std::string CountingPassword(const std::string& password) {
  return Cut(password, &KoreanPlaces);
}

std::string OpenUnderPassword(CDaoDatabase& database, const std::string& path,
                              const std::string& password, bool to_write) {
  try {
    return OpenWith(database, path, CountingPassword(password), to_write);
  } catch (const CDaoException& error) {
    if (error.Code() != kWrongDatabasePassword) throw;
    // of a file made when bytes counted
    return OpenWith(database, path, Cut(password, &Bytes), to_write);
  }
}

}  // namespace vdsto
