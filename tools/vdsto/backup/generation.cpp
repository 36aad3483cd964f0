#include "tools/vdsto/backup/generation.h"

#include <ctime>
#include <nlohmann/json.hpp>
#include <numeric>

#include "tools/vdsto/backup/piece_store.h"

namespace vdsto {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormat = 1;

std::string DigestOf(const Json& body) {
  const std::string text = body.dump(-1, ' ', false, Json::error_handler_t::replace);
  return Sha256({reinterpret_cast<const unsigned char*>(text.data()), text.size()});
}

Json AsJson(const BackedUpFile& file) {
  return {{"name", file.name},
          {"size", file.size},
          {"piece_size", file.piece_size},
          {"pieces", file.pieces}};
}

/// The name becomes a file's name when the backup is restored.
bool IsSensible(const BackedUpFile& file) {
  const uint64_t count = file.pieces.size();
  const bool fits = file.piece_size > 0 &&
                    count == file.size / file.piece_size + (file.size % file.piece_size != 0);
  return fits && !file.name.empty() && file.name[0] != '.' &&
         file.name.find('/') == std::string::npos;
}

Generation FromJson(const Json& body) {
  Generation generation;
  generation.id = body.at("id");
  generation.library = body.at("library");
  generation.time = body.at("time");
  generation.new_bytes = body.at("new_bytes");
  for (const Json& file : body.at("files"))
    generation.files.push_back(
        {file.at("name"), file.at("size"), file.at("piece_size"), file.at("pieces")});
  for (const Json& file : body.at("left_out"))
    generation.left_out.emplace_back(file.at("name"), file.at("reason"));
  return generation;
}

}  // namespace

uint64_t Generation::Bytes() const {
  return std::accumulate(files.begin(), files.end(), uint64_t{0},
                         [](uint64_t sum, const auto& file) { return sum + file.size; });
}

std::string ManifestOf(const Generation& generation) {
  Json files = Json::array(), left_out = Json::array();
  for (const BackedUpFile& file : generation.files) files.push_back(AsJson(file));
  for (const auto& [name, reason] : generation.left_out)
    left_out.push_back({{"name", name}, {"reason", reason}});
  const Json body{{"id", generation.id},       {"library", generation.library},
                  {"time", generation.time},   {"new_bytes", generation.new_bytes},
                  {"files", std::move(files)}, {"left_out", std::move(left_out)}};
  const Json manifest{{"format", kFormat}, {"digest", DigestOf(body)}, {"generation", body}};
  return manifest.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::optional<Generation> ReadManifest(const std::string& text) {
  try {
    const Json manifest = Json::parse(text);
    const Json& body = manifest.at("generation");
    if (manifest.at("format") != kFormat || manifest.at("digest") != DigestOf(body)) return {};
    Generation generation = FromJson(body);
    for (const BackedUpFile& file : generation.files)
      if (!IsSensible(file)) return {};
    return generation;
  } catch (const Json::exception&) {
    return std::nullopt;
  }
}

std::string GenerationId(int64_t time) {
  const time_t seconds = time;
  tm parts{};
  gmtime_r(&seconds, &parts);
  char text[32];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H-%M-%SZ", &parts)};
}

}  // namespace vdsto
