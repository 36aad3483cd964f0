#pragma once
#include <curl/curl.h>

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vdsto/upload/outgoing_file.h"
#include "tools/vdsto/upload/server_place.h"
#include "tools/vdsto/upload/upload_credentials.h"
#include "tools/vdsto/upload/upload_error.h"

namespace vdsto {

/// One connection to a server that request after request goes over. One thread uses it. Requests
/// throw UploadStopped when the user wants to stop, and what the file to send throws.
class CurlSession {
 public:
  CurlSession(const ServerPlace& place, const UploadCredentials& credentials);

  /// A new request for a path below the server's folder.
  void Begin(const std::string& path);
  template <class Value>
  void Set(CURLoption option, Value value) {
    curl_easy_setopt(handle_.get(), option, value);
  }
  /// The request's headers, or the commands of an option that takes a list.
  void SetList(CURLoption option, const std::vector<std::string>& lines);
  /// Sends the file from where the server wants it; before each part, all before counts as arrived.
  void SetFile(OutgoingFile& file, bool resume);
  /// Gets what comes; false breaks the request off, which fails then with CURLE_WRITE_ERROR. Else
  /// what comes is in Body().
  using Receive = std::function<bool(std::string_view bytes)>;
  void SetReceive(Receive receive) { receive_ = std::move(receive); }

  CURLcode Perform();
  /// Performs and throws UploadError unless it succeeds.
  void PerformOrThrow();
  [[noreturn]] void Throw(CURLcode code);

  /// Of the last request:
  long Status() const;
  /// -1 when the server does not say.
  int64_t ContentLength() const;
  const std::string& Body() const { return body_; }
  /// By names in lower case; for SFTP, what commands answer is all in "".
  const std::map<std::string, std::string>& Headers() const { return headers_; }
  std::string Reason() const { return reason_; }

 private:
  void SetTrust();
  void SetCallbacks();
  static size_t OnRead(char* buffer, size_t size, size_t count, void* session);
  static int OnSeek(void* session, curl_off_t position, int origin);
  static size_t OnWrite(char* bytes, size_t size, size_t count, void* session);
  static size_t OnHeader(char* bytes, size_t size, size_t count, void* session);
  static int OnProgress(void* session, curl_off_t, curl_off_t, curl_off_t, curl_off_t);
  static int OnHostKey(CURL* handle, const curl_khkey* known, const curl_khkey* found,
                       curl_khmatch match, void* session);
  /// Runs what a callback does; a failure waits until the request is over.
  template <class Result, class Function>
  Result Shielded(Result failure, Function function);

  using List = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

  const ServerPlace place_;
  const UploadCredentials credentials_;
  std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle_;
  std::vector<List> lists_;
  char reason_[CURL_ERROR_SIZE] = {};
  OutgoingFile* file_ = nullptr;
  Receive receive_;
  std::string body_;
  std::map<std::string, std::string> headers_;
  std::string distrust_;  // why the host's key is not believed
  std::exception_ptr thrown_;
};

}  // namespace vdsto
