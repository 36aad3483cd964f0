#include "tools/vdsto/gallery/gallery_output.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>

#include "tools/vdsto/gallery/page_files.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

namespace fs = std::filesystem;

constexpr const char* kMarker = "vdsto-gallery.json";
constexpr const char* kUnfinished = ".vdsto-gallery.new";
/// What a gallery's folder holds, in the order in which it is put there: the marker first, so that
/// a folder that is made in part is known for what it is, and the page last.
constexpr std::array kEntries{kMarker, "thumbs", "data", "assets", "index.html"};

bool IsNumbered(const fs::path& name, const char* extension) {
  const std::string stem = name.stem().string();
  return name.extension() == extension &&
         std::all_of(stem.begin(), stem.end(), [](unsigned char c) { return std::isdigit(c); });
}

/// Does a gallery have files of this name? `name` is below its folder.
bool IsOfGallery(const fs::path& name) {
  const std::string text = name.generic_string();
  const auto is_this = [&](const EmbeddedFile& file) { return file.name == text; };
  if (text == kMarker || text == "data/index.js" || std::ranges::any_of(PageFiles(), is_this))
    return true;
  if (text.starts_with("data/")) return IsNumbered(name.filename(), ".js");
  return text.starts_with("thumbs/") && IsNumbered(name.filename(), ".jpg");
}

bool HasMarker(const fs::path& folder) {
  std::ifstream file(folder / kMarker);
  const auto marker = nlohmann::json::parse(file, nullptr, false);
  return marker.is_object() && marker.contains("program") && marker["program"] == "vdsto";
}

ToolError NotWritten(const std::string& name, const std::error_code& error) {
  return {ExitCode::kUnexpected, Printable(name) + " cannot be written: " + error.message()};
}

ToolError Refused(const std::string& message) {
  return {ExitCode::kRefused, message};
}

}  // namespace

GalleryOutput::GalleryOutput(const std::string& path, bool force) : name_(path), path_(path) {
  std::error_code error;
  const fs::file_status status = fs::status(path_, error);
  if (path.empty() || (fs::exists(status) && !fs::is_directory(status)))
    throw ToolError(ExitCode::kUsage, "'" + Printable(path) + "' is no folder");
  if (fs::is_symlink(fs::symlink_status(path_, error)) && !fs::exists(status))
    throw Refused(Printable(path) + " is a link to nowhere");
  try {
    if (fs::exists(status)) RequireOnlyGallery(force);
    is_new_ = fs::create_directories(path_);
    unfinished_ = path_ / kUnfinished;
    fs::remove_all(unfinished_);
    fs::create_directory(unfinished_);
  } catch (const fs::filesystem_error& failure) {
    throw NotWritten(name_, failure.code());
  }
}

GalleryOutput::~GalleryOutput() {
  std::error_code error;
  fs::remove_all(unfinished_, error);
  if (is_new_ && !is_published_) fs::remove(path_, error);
}

void GalleryOutput::RequireOnlyGallery(bool force) const {
  const bool is_gallery = HasMarker(path_);
  bool is_empty = true;
  for (auto entry = fs::recursive_directory_iterator(path_); entry != fs::end(entry); ++entry) {
    const fs::path name = entry->path().lexically_relative(path_);
    if (name == kUnfinished) {
      entry.disable_recursion_pending();
      continue;
    }
    is_empty = false;
    const bool is_folder = entry->is_directory() && !entry->is_symlink();
    if (!is_gallery) throw Refused(Printable(name_) + " is not empty and no gallery");
    if (!is_folder && !IsOfGallery(name))
      throw Refused(Printable(name_) + " holds " + Printable(name.string()) +
                    ", which is not the gallery's: move it away");
  }
  if (!is_empty && !force)
    throw Refused(Printable(name_) + " is a gallery already: --force replaces it");
}

void GalleryOutput::Write(const std::string& name, std::string_view contents) {
  const fs::path path = unfinished_ / name;
  std::error_code error;
  fs::create_directories(path.parent_path(), error);
  errno = 0;
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  file.close();
  if (!file)
    throw NotWritten(name_, std::error_code(errno == 0 ? EIO : errno, std::generic_category()));
}

void GalleryOutput::Publish() {
  Write(kMarker, nlohmann::json{{"program", "vdsto"}, {"version", VDSTO_VERSION}}.dump() + "\n");
  try {
    for (const char* entry : kEntries) {
      is_published_ = true;
      fs::remove_all(path_ / entry);
      if (fs::exists(unfinished_ / entry)) fs::rename(unfinished_ / entry, path_ / entry);
    }
  } catch (const fs::filesystem_error& failure) {
    throw NotWritten(name_, failure.code());
  }
}

}  // namespace vdsto
