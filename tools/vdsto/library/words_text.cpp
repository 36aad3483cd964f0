#include "tools/vdsto/library/words_text.h"

#include <cinttypes>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace vdsto {

using Json = nlohmann::json;

std::string TextOf(const PictureWords& words) {
  if (words == PictureWords()) return {};
  Json json;
  if (words.rating) json["rating"] = *words.rating;
  json["title"] = words.title;
  json["description"] = words.description;
  json["keywords"] = words.keywords;
  return json.dump();
}

PictureWords WordsFromText(const std::string& text) {
  if (text.empty()) return {};
  try {
    const Json json = Json::parse(text);
    PictureWords words;
    if (json.contains("rating")) words.rating = json["rating"].get<uint8_t>();
    words.title = json.at("title");
    words.description = json.at("description");
    words.keywords = json.at("keywords");
    return words;
  } catch (const Json::exception&) {
    return {};
  }
}

std::string TextOf(const FileStamp& stamp) {
  return stamp == FileStamp() ? std::string()
                              : std::to_string(stamp.size) + "/" + std::to_string(stamp.last_write);
}

FileStamp StampFromText(const std::string& text) {
  FileStamp stamp;
  const int parts =
      std::sscanf(text.c_str(), "%" SCNu64 "/%" SCNu64, &stamp.size, &stamp.last_write);
  return parts == 2 ? stamp : FileStamp();
}

}  // namespace vdsto
