#include "tools/vdsto/upload/webdav_target.h"

#include <utility>

#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/upload/curl_session.h"
#include "tools/vdsto/upload/file_digest.h"

namespace vdsto {
namespace {

constexpr const char* kQuestion =
    R"(<?xml version="1.0"?><propfind xmlns="DAV:"><prop><resourcetype/></prop></propfind>)";

enum Status : long {
  kCreated = 201,
  kMultiStatus = 207,
  kUnauthorized = 401,
  kForbidden = 403,
  kNotFound = 404,
  kNotAllowed = 405,
  kConflict = 409,
  kPreconditionFailed = 412,
  kTooLarge = 413,
  kUriTooLong = 414,
  kLocked = 423,
  kTooMany = 429,
  kUnavailable = 503,
  kNoStorage = 507,
};

bool IsSuccess(long status) {
  return status >= 200 && status < 300;
}

UploadFault FaultOf(long status) {
  switch (status) {
    case kUnauthorized:
      return UploadFault::kLoginRefused;
    case kTooLarge:
      return UploadFault::kTooLarge;
    case kUriTooLong:
      return UploadFault::kBadName;
    case kLocked:
    case kTooMany:
    case kUnavailable:
      return UploadFault::kBusy;
    case kNoStorage:
      return UploadFault::kNoSpace;
    case kNotFound:
    case kConflict:
      return UploadFault::kServerFailed;  // somebody removed the folder
    default:
      return status < 500 ? UploadFault::kRefused : UploadFault::kServerFailed;
  }
}

/// The text of every element of that name, whatever its prefix; those that are asked for hold no
/// other elements.
std::vector<std::string> ElementTexts(std::string_view xml, const std::string& name) {
  std::vector<std::string> texts;
  for (size_t at = xml.find('<'); at != std::string_view::npos; at = xml.find('<', at + 1)) {
    const size_t end = xml.find('>', at);
    if (end == std::string_view::npos) break;
    std::string_view tag = xml.substr(at + 1, end - at - 1);
    tag = tag.substr(0, tag.find_first_of(" \t\r\n"));
    if (tag.starts_with('/') || tag.substr(tag.rfind(':') + 1) != name) continue;
    texts.emplace_back(xml.substr(end + 1, xml.find('<', end) - end - 1));
  }
  return texts;
}

/// The decoded path of a reference, which may be a whole URL, without a '/' at its end.
std::string PathOfReference(std::string reference) {
  for (size_t at = reference.find("&amp;"); at != std::string::npos; at = reference.find("&amp;"))
    reference.replace(at, 5, "&");
  const size_t scheme = reference.find("://");
  if (scheme != std::string::npos) reference.erase(0, reference.find('/', scheme + 3));
  std::string path = FromUrlPath(reference);
  while (path.ends_with('/')) path.pop_back();
  return path;
}

class WebDavTarget : public UploadTarget {
 public:
  WebDavTarget(const ServerPlace& place, const UploadCredentials& credentials, long methods)
      : place_(place), credentials_(credentials), methods_(methods), session_(place, credentials) {}

  std::unique_ptr<UploadTarget> Another() const override {
    return std::make_unique<WebDavTarget>(place_, credentials_, methods_);
  }
  /// Servers drop what they got of a request that breaks off.
  bool KeepsParts() const override { return false; }

  std::vector<std::string> OpenFolder(const std::string& folder) override {
    const std::string path = folder.empty() ? folder : folder + "/";
    long status = List(path);
    if (status == kUnauthorized && methods_ == static_cast<long>(CURLAUTH_BASIC)) {
      methods_ = static_cast<long>(CURLAUTH_DIGEST);
      status = List(path);
    }
    if (status == kNotFound && folder.empty())
      throw UploadError(UploadFault::kFolderGone,
                        place_.address + " is not there: make that folder first");
    if (status == kNotFound) return Make(folder), std::vector<std::string>();
    if (status != kMultiStatus) Throw(status, place_.address);
    return Names(folder);
  }

  void Send(OutgoingFile& file, const std::string& path, bool) override {
    Begin(path);
    session_.SetFile(file, false);
    Require(Request(nullptr), path);
    file.NoteArrival();
    RequireWhole(file, path);
  }

  bool Rename(const std::string& from, const std::string& to) override {
    Begin(from);
    session_.SetList(CURLOPT_HTTPHEADER,
                     {"Destination: " + place_.address + "/" + UrlPath(to), "Overwrite: F"});
    const long status = Request("MOVE");
    if (status == kPreconditionFailed) return false;
    Require(status, to);
    return true;
  }

  bool Holds(const OutgoingFile& file, const std::string& path) override {
    uint64_t position = 0;
    std::vector<char> ours(CURL_MAX_WRITE_SIZE);
    Begin(path);
    session_.SetReceive([&](std::string_view theirs) {
      const int64_t length = session_.ContentLength();
      if (length >= 0 && static_cast<uint64_t>(length) != file.Size()) return false;
      const size_t count = file.ReadAt(position, std::span(ours).first(theirs.size()));
      position += count;
      return std::string_view(ours.data(), count) == theirs;
    });
    const CURLcode code = session_.Perform();
    const long status = session_.Status();
    if (status == kNotFound || (IsSuccess(status) && code == CURLE_WRITE_ERROR)) return false;
    if (code != CURLE_OK && code != CURLE_WRITE_ERROR) session_.Throw(code);
    Require(status, path);
    return position == file.Size();
  }

  void Remove(const std::string& path) override {
    Begin(path);
    const long status = Request("DELETE");
    if (status != kNotFound) Require(status, path);
  }

 private:
  void Begin(const std::string& path) {
    session_.Begin(path);
    session_.Set(CURLOPT_HTTPAUTH, methods_);
  }

  /// The status of the request, whose method is the usual one for null.
  long Request(const char* method) {
    if (method != nullptr) session_.Set(CURLOPT_CUSTOMREQUEST, method);
    session_.PerformOrThrow();
    return session_.Status();
  }

  long List(const std::string& path) {
    Begin(path);
    session_.SetList(CURLOPT_HTTPHEADER, {"Depth: 1", "Content-Type: application/xml"});
    session_.Set(CURLOPT_POSTFIELDS, kQuestion);
    return Request("PROPFIND");
  }

  std::vector<std::string> Names(const std::string& folder) const {
    const std::string own = folder.empty() ? place_.path : place_.path + "/" + folder;
    std::vector<std::string> names;
    for (std::string& reference : ElementTexts(session_.Body(), "href")) {
      const std::string path = PathOfReference(std::move(reference));
      if (path != own) names.emplace_back(LastComponent(path));
    }
    return names;
  }

  /// A collection that is there already is not allowed to be made.
  void Make(const std::string& folder) {
    for (size_t end = 0; end != std::string::npos;) {
      end = folder.find('/', end + 1);
      const std::string path = folder.substr(0, end);
      Begin(path + "/");
      const long status = Request("MKCOL");
      if (status != kNotAllowed) Require(status, path);
    }
  }

  /// Compares with what the server tells of what it got, as far as it does.
  void RequireWhole(const OutgoingFile& file, const std::string& path) {
    Begin(path);
    session_.Set(CURLOPT_NOBODY, 1L);
    Require(Request(nullptr), path);
    const int64_t length = session_.ContentLength();
    if (length >= 0 && static_cast<uint64_t>(length) != file.Size())
      throw UploadError(UploadFault::kNotWhole, path + ": its size is not that of the file");
    if (!FitsDigests(file, session_.Headers()))
      throw UploadError(UploadFault::kNotWhole, path + ": its digest is not that of the file");
  }

  void Require(long status, const std::string& path) const {
    if (!IsSuccess(status)) Throw(status, place_.address + "/" + path);
  }

  [[noreturn]] void Throw(long status, const std::string& what) const {
    std::string reason = what + ": the server answers " + std::to_string(status);
    if (status == kUnauthorized) {
      reason = place_.host + " does not let " + (place_.user.empty() ? "strangers" : place_.user) +
               " in: check VDSTO_UPLOAD_USER and VDSTO_UPLOAD_PASSWORD, or the netrc file";
      if (place_.scheme == "http" && !place_.IsLoopback())
        reason +=
            "; without https a password is only sent where the server asks for a digest of it";
    }
    throw UploadError(FaultOf(status), reason);
  }

  const ServerPlace place_;
  const UploadCredentials credentials_;
  long methods_;
  CurlSession session_;
};

}  // namespace

/// Whoever listens to plain http could read a basic password.
std::unique_ptr<UploadTarget> MakeWebDavTarget(const ServerPlace& place,
                                               const UploadCredentials& credentials) {
  const bool is_private = place.scheme == "https" || place.IsLoopback();
  return std::make_unique<WebDavTarget>(
      place, credentials, static_cast<long>(is_private ? CURLAUTH_BASIC : CURLAUTH_DIGEST));
}

}  // namespace vdsto
