#include "tools/vdsto/text/source_location.h"

#include <charconv>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr std::string_view kScheme = "file://";
constexpr size_t kColumnWidth = 255;

bool StandsForItself(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte > 0x20 && byte < 0x7F && c != '%' && c != '?' && c != '#';
}

std::string PercentEncoded(std::string_view path) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string result(kScheme);
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (StandsForItself(c)) {
      result += c;
    } else {
      result += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return result;
}

std::string PercentDecoded(std::string_view text) {
  std::string result;
  for (size_t i = 0; i < text.size(); ++i) {
    unsigned char byte = 0;
    const char* digits = text.data() + i + 1;
    if (text[i] == '%' && i + 2 < text.size() &&
        std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
      result += static_cast<char>(byte);
      i += 2;
    } else {
      result += text[i];
    }
  }
  return result;
}

}  // namespace

std::string UnlimitedLocationOf(std::string_view path) {
  return IsUtf8(path) ? std::string(path) : PercentEncoded(path);
}

std::string LocationOf(std::string_view path) {
  std::string location = UnlimitedLocationOf(path);
  return CharacterCount(location) <= kColumnWidth ? location : std::string();
}

std::string PathOf(std::string_view location) {
  if (location.starts_with('/')) return std::string(location);
  return location.starts_with(kScheme) ? PercentDecoded(location.substr(kScheme.size()))
                                       : std::string();
}

std::string ParentOf(std::string_view path) {
  const size_t slash = path.rfind('/');
  return slash == 0 || slash == std::string_view::npos ? "/" : std::string(path.substr(0, slash));
}

std::string_view LastComponent(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

std::string Joined(std::string_view folder, std::string_view name) {
  std::string result(folder);
  if (!result.ends_with('/')) result += '/';
  return result += name;
}

bool IsBelow(std::string_view path, std::string_view folder) {
  if (folder == "/") return path.size() > 1 && path.starts_with('/');
  return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

}  // namespace vdsto
