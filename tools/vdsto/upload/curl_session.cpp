#include "tools/vdsto/upload/curl_session.h"

#include <openssl/evp.h>

#include <cstdio>
#include <utility>

#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr long kConnectSeconds = 20;
/// Less than a byte a second for so long is no connection any more.
constexpr long kSilenceSeconds = 60;
/// Without any end libcurl asks over and over, without a pause, whether the server has answered to
/// the end of an SFTP transfer.
constexpr long kEndlessSeconds = 20 * 24 * 3600;
constexpr long kMostBuffer = 512 * 1024;

CURL* NewHandle() {
  static const CURLcode once = curl_global_init(CURL_GLOBAL_DEFAULT);
  CURL* handle = once == CURLE_OK ? curl_easy_init() : nullptr;
  if (handle == nullptr) throw std::bad_alloc();
  return handle;
}

UploadFault FaultOf(CURLcode code) {
  switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return UploadFault::kHostUnknown;
    case CURLE_COULDNT_CONNECT:
      return UploadFault::kUnreachable;
    case CURLE_OPERATION_TIMEDOUT:
      return UploadFault::kTimedOut;
    case CURLE_LOGIN_DENIED:
      return UploadFault::kLoginRefused;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
      return UploadFault::kNotTrusted;
    case CURLE_REMOTE_ACCESS_DENIED:
      return UploadFault::kRefused;
    case CURLE_REMOTE_DISK_FULL:
      return UploadFault::kNoSpace;
    case CURLE_REMOTE_FILE_NOT_FOUND:
    case CURLE_QUOTE_ERROR:
    case CURLE_UPLOAD_FAILED:
      return UploadFault::kServerFailed;
    default:
      return UploadFault::kConnectionLost;
  }
}

/// "SHA256:..." as ssh shows it.
std::string Fingerprint(const curl_khkey& key) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned size = 0;
  if (key.len == 0 || EVP_Digest(key.key, key.len, digest, &size, EVP_sha256(), nullptr) != 1)
    return "not known";
  char text[2 * EVP_MAX_MD_SIZE];
  EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text), digest, static_cast<int>(size));
  std::string result = text;
  while (result.ends_with('=')) result.pop_back();
  return "SHA256:" + result;
}

std::string Distrust(const ServerPlace& place, const std::string& known_hosts, bool is_changed,
                     const std::string& fingerprint) {
  const std::string host = place.port.empty() ? place.host : "[" + place.host + "]:" + place.port;
  const std::string port = place.port.empty() ? "" : "-p " + place.port + " ";
  const std::string connect = "ssh " + port + place.host;
  if (is_changed)
    return "the key of " + place.host + " is not the one in " + known_hosts + " but " +
           fingerprint + ": somebody may stand between. If the server has a new key, remove the " +
           "old one with: ssh-keygen -R '" + host + "', and accept the new one with: " + connect;
  return "the key of " + place.host + " is not in " + known_hosts + ": it is " + fingerprint +
         ". If that is the server's, accept it with: " + connect;
}

}  // namespace

CurlSession::CurlSession(const ServerPlace& place, const UploadCredentials& credentials)
    : place_(place), credentials_(credentials), handle_(NewHandle(), &curl_easy_cleanup) {}

void CurlSession::Begin(const std::string& path) {
  curl_easy_reset(handle_.get());
  lists_.clear();
  file_ = nullptr;
  receive_ = nullptr;
  body_.clear();
  headers_.clear();
  Set(CURLOPT_URL, (place_.url + "/" + UrlPath(path)).c_str());
  Set(CURLOPT_PROTOCOLS_STR, place_.scheme.c_str());
  Set(CURLOPT_NOSIGNAL, 1L);
  Set(CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
  Set(CURLOPT_TIMEOUT, kEndlessSeconds);
  Set(CURLOPT_LOW_SPEED_LIMIT, 1L);
  Set(CURLOPT_LOW_SPEED_TIME, kSilenceSeconds);
  Set(CURLOPT_TCP_KEEPALIVE, 1L);
  Set(CURLOPT_ERRORBUFFER, reason_);
  SetTrust();
  SetCallbacks();
}

void CurlSession::SetTrust() {
  if (!credentials_.password.empty()) {
    Set(CURLOPT_USERNAME, place_.user.c_str());
    Set(CURLOPT_PASSWORD, credentials_.password.c_str());
  } else if (!credentials_.netrc_file.empty()) {
    Set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_OPTIONAL));
    Set(CURLOPT_NETRC_FILE, credentials_.netrc_file.c_str());
  }
  if (!credentials_.certificates.empty()) Set(CURLOPT_CAINFO, credentials_.certificates.c_str());
  // Without the name of a file, which need not be there, no key would be checked at all.
  const bool has_name = !credentials_.known_hosts.empty();
  Set(CURLOPT_SSH_KNOWNHOSTS, has_name ? credentials_.known_hosts.c_str() : "known_hosts");
  Set(CURLOPT_SSH_KEYFUNCTION, &OnHostKey);
  Set(CURLOPT_SSH_KEYDATA, this);
}

void CurlSession::SetCallbacks() {
  Set(CURLOPT_WRITEFUNCTION, &OnWrite);
  Set(CURLOPT_WRITEDATA, this);
  Set(CURLOPT_HEADERFUNCTION, &OnHeader);
  Set(CURLOPT_HEADERDATA, this);
  Set(CURLOPT_NOPROGRESS, 0L);
  Set(CURLOPT_XFERINFOFUNCTION, &OnProgress);
  Set(CURLOPT_XFERINFODATA, this);
}

void CurlSession::SetList(CURLoption option, const std::vector<std::string>& lines) {
  curl_slist* list = nullptr;
  for (const std::string& line : lines) list = curl_slist_append(list, line.c_str());
  lists_.emplace_back(list, &curl_slist_free_all);
  Set(option, list);
}

void CurlSession::SetFile(OutgoingFile& file, bool resume) {
  file_ = &file;
  const auto size = static_cast<curl_off_t>(file.Size());
  Set(CURLOPT_UPLOAD, 1L);
  Set(CURLOPT_INFILESIZE_LARGE, size);
  Set(CURLOPT_UPLOAD_BUFFERSIZE,
      size < kMostBuffer ? 16384L + static_cast<long>(size) : kMostBuffer);
  Set(CURLOPT_READFUNCTION, &OnRead);
  Set(CURLOPT_READDATA, this);
  Set(CURLOPT_SEEKFUNCTION, &OnSeek);
  Set(CURLOPT_SEEKDATA, this);
  if (resume) Set(CURLOPT_RESUME_FROM_LARGE, curl_off_t{-1});
  file.Begin(0);
}

CURLcode CurlSession::Perform() {
  reason_[0] = '\0';
  distrust_.clear();
  const CURLcode code = curl_easy_perform(handle_.get());
  if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
  if (code == CURLE_ABORTED_BY_CALLBACK) throw UploadStopped();
  return code;
}

void CurlSession::PerformOrThrow() {
  const CURLcode code = Perform();
  if (code != CURLE_OK) Throw(code);
}

void CurlSession::Throw(CURLcode code) {
  const std::string reason = reason_[0] != '\0' ? reason_ : curl_easy_strerror(code);
  if (!distrust_.empty()) throw UploadError(UploadFault::kNotTrusted, distrust_);
  throw UploadError(FaultOf(code), place_.address + ": " + Trimmed(reason));
}

long CurlSession::Status() const {
  long status = 0;
  curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status);
  return status;
}

int64_t CurlSession::ContentLength() const {
  curl_off_t length = -1;
  curl_easy_getinfo(handle_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
  return length;
}

template <class Result, class Function>
Result CurlSession::Shielded(Result failure, Function function) {
  try {
    return function();
  } catch (...) {
    thrown_ = std::current_exception();
    return failure;
  }
}

size_t CurlSession::OnRead(char* buffer, size_t size, size_t count, void* data) {
  auto& session = *static_cast<CurlSession*>(data);
  return session.Shielded(size_t{CURL_READFUNC_ABORT}, [&] {
    session.file_->NoteArrival();
    return session.file_->Read({buffer, size * count});
  });
}

int CurlSession::OnSeek(void* data, curl_off_t position, int) {
  auto& session = *static_cast<CurlSession*>(data);
  return session.Shielded(CURL_SEEKFUNC_FAIL, [&] {
    if (static_cast<uint64_t>(position) > session.file_->Size()) return CURL_SEEKFUNC_FAIL;
    session.file_->Begin(static_cast<uint64_t>(position));
    return CURL_SEEKFUNC_OK;
  });
}

size_t CurlSession::OnWrite(char* bytes, size_t size, size_t count, void* data) {
  auto& session = *static_cast<CurlSession*>(data);
  const std::string_view text(bytes, size * count);
  return session.Shielded(size_t{0}, [&] {
    if (session.receive_) return session.receive_(text) ? text.size() : 0;
    session.body_.append(text);
    return text.size();
  });
}

size_t CurlSession::OnHeader(char* bytes, size_t size, size_t count, void* data) {
  auto& session = *static_cast<CurlSession*>(data);
  const std::string_view line(bytes, size * count);
  return session.Shielded(size_t{0}, [&] {
    const size_t colon = session.place_.scheme == "sftp" ? std::string_view::npos : line.find(':');
    if (colon == std::string_view::npos)
      session.headers_[""].append(line);
    else
      session.headers_[AsciiLower(line.substr(0, colon))] = Trimmed(line.substr(colon + 1));
    return line.size();
  });
}

int CurlSession::OnProgress(void*, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  return IsInterrupted() ? 1 : 0;
}

int CurlSession::OnHostKey(CURL*, const curl_khkey*, const curl_khkey* found, curl_khmatch match,
                           void* data) {
  auto& session = *static_cast<CurlSession*>(data);
  if (match == CURLKHMATCH_OK) return CURLKHSTAT_FINE;
  return session.Shielded(int{CURLKHSTAT_REJECT}, [&] {
    session.distrust_ = Distrust(session.place_, session.credentials_.known_hosts,
                                 match == CURLKHMATCH_MISMATCH, Fingerprint(*found));
    return int{CURLKHSTAT_REJECT};
  });
}

}  // namespace vdsto
