#include "tools/vdsto/gallery/gallery_data.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

using Json = nlohmann::ordered_json;

/// The areas that the page gives a photo: a square of this side in the grid, where it takes parts
/// of the side, and at most this size in the slideshow.
constexpr int kCell = 1000;
constexpr int kSlide = 800;

constexpr size_t kMonthLength = std::string_view("2024-05").size();
constexpr size_t kMinuteLength = std::string_view("2024-05-04 11:20").size();

std::string MonthOf(const GalleryPhoto& photo) {
  return TimeText(photo.item.ShootDate).substr(0, kMonthLength);
}

/// The months in the order of the photos, each with how many it has.
Json Months(const Gallery& gallery) {
  Json months = Json::array();
  for (const GalleryPhoto& photo : gallery.photos) {
    const std::string month = MonthOf(photo);
    if (months.empty() || months.back()[0] != month) months.push_back({month, 0});
    months.back()[1] = months.back()[1].get<int>() + 1;
  }
  return months;
}

Json FoldersAsJson(const Gallery& gallery) {
  Json folders = Json::array();
  for (const GalleryFolder& folder : gallery.folders)
    folders.push_back({folder.name, folder.parent});
  return folders;
}

/// For every tag its name and the photos that carry it.
Json TagsAsJson(const Gallery& gallery) {
  Json tags = Json::array();
  for (const std::string& name : gallery.tags) tags.push_back({name, Json::array()});
  for (size_t i = 0; i < gallery.photos.size(); ++i) {
    for (const size_t tag : gallery.photos[i].tags) tags[tag][1].push_back(i);
  }
  return tags;
}

Json PhotoAsJson(const GalleryPhoto& photo) {
  const CSize slide = photo.item.GetImageSizeInArea({kSlide, kSlide}, true);
  const CRect cell = photo.item.GetImageRectInArea({0, 0, kCell, kCell}, true);
  Json tags = Json::array();
  for (const size_t tag : photo.tags) tags.push_back(tag);
  return {photo.item.GetFileName(),
          photo.title,
          photo.description,
          TimeText(photo.item.ShootDate).substr(0, kMinuteLength),
          photo.camera,
          photo.folder,
          std::move(tags),
          !photo.image_key.empty(),
          {slide.cx, slide.cy},
          {cell.left, cell.top, cell.Width(), cell.Height()}};
}

void ReplaceAll(std::string& text, std::string_view what, std::string_view with) {
  for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
    text.replace(at, what.size(), with);
}

/// A call of the page with data in which nothing can end a script.
std::string Call(const char* name, const Json& data) {
  std::string text = data.dump(-1, ' ', false, Json::error_handler_t::replace);
  ReplaceAll(text, "<", "\\u003c");
  ReplaceAll(text, "\u2028", "\\u2028");
  ReplaceAll(text, "\u2029", "\\u2029");
  return std::string("vdstoGallery.") + name + "(" + text + ");\n";
}

}  // namespace

std::string IndexScript(const Gallery& gallery, const std::string& title) {
  Json folder_of = Json::array();
  for (const GalleryPhoto& photo : gallery.photos) folder_of.push_back(photo.folder);
  return Call("index", {{"title", title},
                        {"chunk", kPhotosPerChunk},
                        {"folders", FoldersAsJson(gallery)},
                        {"folderOf", std::move(folder_of)},
                        {"tags", TagsAsJson(gallery)},
                        {"months", Months(gallery)}});
}

std::string ChunkScript(const Gallery& gallery, size_t chunk) {
  const size_t first = chunk * kPhotosPerChunk;
  const size_t end = std::min(first + kPhotosPerChunk, gallery.photos.size());
  Json photos = Json::array();
  for (size_t i = first; i < end; ++i) photos.push_back(PhotoAsJson(gallery.photos[i]));
  return Call("chunk", {{"number", chunk}, {"photos", std::move(photos)}});
}

std::string ThumbnailPath(size_t photo) {
  return "thumbs/" + std::to_string(photo / kPhotosPerChunk) + "/" + std::to_string(photo) + ".jpg";
}

std::string HtmlText(const std::string& text) {
  std::string html = text;
  for (const auto& [what, with] :
       {std::pair{"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}, {"'", "&#39;"}})
    ReplaceAll(html, what, with);
  return html;
}

}  // namespace vdsto
