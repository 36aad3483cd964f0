#include "tools/vdsto/upload/upload_names.h"

#include <algorithm>

#include "tools/vdsto/text/source_location.h"

namespace vdsto {
namespace {

constexpr size_t kNameBytes = 255;
constexpr size_t kExtensionBytes = 16;

std::string WithoutControls(std::string_view text) {
  std::string result(text);
  std::replace_if(
      result.begin(), result.end(),
      [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }, '_');
  return result;
}

bool IsNoName(std::string_view name) {
  return name.empty() || name == "." || name == "..";
}

/// The first bytes of UTF-8 text, cut between characters.
std::string_view FirstBytes(std::string_view text, size_t most) {
  if (text.size() <= most) return text;
  while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) --most;
  return text.substr(0, most);
}

/// `name` with `mark` before its extension, and within the length of a name.
std::string WithMark(std::string_view name, const std::string& mark) {
  const size_t dot = name.rfind('.');
  const bool has_extension =
      dot != std::string_view::npos && dot > 0 && name.size() - dot <= kExtensionBytes;
  const std::string_view extension = has_extension ? name.substr(dot) : std::string_view();
  const std::string_view stem = name.substr(0, name.size() - extension.size());
  const size_t room = kNameBytes - mark.size() - extension.size();
  return std::string(FirstBytes(stem, room)) + mark + std::string(extension);
}

}  // namespace

std::string SafeFolder(std::string_view path) {
  std::string folder;
  while (!path.empty()) {
    const std::string_view name = path.substr(0, path.find('/'));
    path.remove_prefix(std::min(path.size(), name.size() + 1));
    if (!IsNoName(name)) folder = folder.empty() ? SafeName(name) : Joined(folder, SafeName(name));
  }
  return folder;
}

std::string SafeName(std::string_view name) {
  std::string safe = WithoutControls(name);
  std::replace(safe.begin(), safe.end(), '/', '_');
  return IsNoName(safe) ? "_" : WithMark(safe, "");
}

std::string NumberedName(const std::string& name, int number) {
  return number == 1 ? name : WithMark(name, " (" + std::to_string(number) + ")");
}

std::string PartPrefix(const std::string& guid) {
  return "." + guid + ".";
}

std::string PartName(const std::string& guid, const std::string& stamp) {
  return PartPrefix(guid) + stamp + ".part";
}

}  // namespace vdsto
