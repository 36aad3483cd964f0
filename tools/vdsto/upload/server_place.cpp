#include "tools/vdsto/upload/server_place.h"

#include <curl/curl.h>

#include <cctype>
#include <charconv>
#include <cstdio>
#include <memory>

#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

using Url = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

[[noreturn]] void Refuse(const std::string& reason) {
  throw ToolError(ExitCode::kUsage, reason);
}

/// Empty when the URL has no such part.
std::string Part(const Url& url, CURLUPart part, unsigned flags = 0) {
  char* text = nullptr;
  if (curl_url_get(url.get(), part, &text, flags) != CURLUE_OK) return {};
  const std::string result = text;
  curl_free(text);
  return result;
}

Url Parsed(const std::string& text) {
  Url url(curl_url(), &curl_url_cleanup);
  const CURLUcode code =
      curl_url_set(url.get(), CURLUPART_URL, text.c_str(),
                   CURLU_NON_SUPPORT_SCHEME | CURLU_URLENCODE | CURLU_ALLOW_SPACE);
  if (code != CURLUE_OK) Refuse("the target is no URL: " + std::string(curl_url_strerror(code)));
  return url;
}

void RequirePlain(const Url& url, const std::string& scheme) {
  if (!Part(url, CURLUPART_PASSWORD).empty())
    Refuse(
        "a password does not belong into a URL, where every user of this machine can read it: set "
        "VDSTO_UPLOAD_PASSWORD, or use a netrc file or an ssh key");
  if (scheme != "sftp" && scheme != "http" && scheme != "https")
    Refuse("the target is a folder, or begins with sftp://, https:// or http://, not " + scheme +
           "://");
  if (!Part(url, CURLUPART_QUERY).empty() || !Part(url, CURLUPART_FRAGMENT).empty())
    Refuse("a target's URL has no '?' and no '#'; write %3F and %23 in names");
}

std::string WithoutSlash(std::string text) {
  while (text.ends_with('/')) text.pop_back();
  return text;
}

}  // namespace

bool ServerPlace::IsLoopback() const {
  return host == "localhost" || host == "[::1]" || host.starts_with("127.");
}

bool IsUrl(std::string_view text) {
  const size_t colon = text.find("://");
  if (colon == std::string_view::npos || colon == 0) return false;
  for (const char c : text.substr(0, colon))
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) return false;
  return true;
}

ServerPlace ParseServerPlace(const std::string& text, const std::string& user) {
  const Url url = Parsed(text);
  ServerPlace place;
  place.scheme = Part(url, CURLUPART_SCHEME);
  RequirePlain(url, place.scheme);
  place.host = Part(url, CURLUPART_HOST);
  place.port = Part(url, CURLUPART_PORT);
  place.user = Part(url, CURLUPART_USER, CURLU_URLDECODE);
  if (place.user.empty()) place.user = user;
  place.path = WithoutSlash(Part(url, CURLUPART_PATH, CURLU_URLDECODE));
  const std::string path = WithoutSlash(Part(url, CURLUPART_PATH));
  const std::string server = place.host + (place.port.empty() ? "" : ":" + place.port) + path;
  place.address = place.scheme + "://" + server;
  place.url = place.user.empty() ? place.address
                                 : place.scheme + "://" + UrlPath(place.user) + "@" + server;
  return place;
}

std::string UrlPath(std::string_view path) {
  std::string result;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool is_plain =
        byte < 0x80 &&
        (std::isalnum(byte) != 0 || std::string_view("-._~/").find(c) != std::string_view::npos);
    char code[4];
    std::snprintf(code, sizeof code, "%%%02X", byte);
    is_plain ? result.push_back(c) : void(result.append(code));
  }
  return result;
}

std::string FromUrlPath(std::string_view path) {
  std::string result;
  for (size_t i = 0; i < path.size(); ++i) {
    unsigned byte = 0;
    const char* digits = path.data() + i + 1;
    const bool is_code = path[i] == '%' && i + 2 < path.size() &&
                         std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
    result.push_back(is_code ? static_cast<char>(byte) : path[i]);
    if (is_code) i += 2;
  }
  return result;
}

}  // namespace vdsto
