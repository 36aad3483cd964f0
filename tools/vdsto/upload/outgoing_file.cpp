#include "tools/vdsto/upload/outgoing_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/upload/upload_error.h"

namespace vdsto {
namespace {

[[noreturn]] void ThrowSourceErrno(int error) {
  const bool is_gone = error == ENOENT || error == ENOTDIR;
  throw UploadError(is_gone ? UploadFault::kFileGone : UploadFault::kFileUnreadable,
                    std::generic_category().message(error));
}

auto TimeOf(const struct stat& state) {
  return std::pair(state.st_mtim.tv_sec, state.st_mtim.tv_nsec);
}

}  // namespace

OutgoingFile::OutgoingFile(const std::string& path, RateLimiter& limiter, Arrival arrived)
    : path_(path),
      limiter_(limiter),
      arrived_(std::move(arrived)),
      descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
  if (descriptor_ < 0) ThrowSourceErrno(errno);
  const bool is_file = fstat(descriptor_, &state_) == 0 && S_ISREG(state_.st_mode);
  if (is_file) return;
  close(descriptor_);
  throw UploadError(UploadFault::kFileUnreadable, "not a file");
}

OutgoingFile::~OutgoingFile() {
  close(descriptor_);
}

std::string OutgoingFile::Stamp() const {
  char text[64];
  std::snprintf(text, sizeof text, "%llx-%llx", static_cast<unsigned long long>(Size()),
                static_cast<unsigned long long>(state_.st_mtim.tv_sec) * 1'000'000'000ull +
                    static_cast<unsigned long long>(state_.st_mtim.tv_nsec));
  return text;
}

void OutgoingFile::Begin(uint64_t position) {
  position_ = position;
  unnoted_ = 0;
  is_whole_ = false;
  NoteArrival();
}

size_t OutgoingFile::Read(std::span<char> buffer) {
  if (IsInterrupted()) throw UploadStopped();
  if (is_whole_) return 0;
  const size_t wanted =
      static_cast<size_t>(std::min<uint64_t>(limiter_.Portion(buffer.size()), Size() - position_));
  const size_t count = ReadAt(position_, buffer.first(wanted));
  if (count < wanted) ThrowChanged();
  is_whole_ = position_ + count == Size();
  if (is_whole_) RequireUnchanged();
  if (count > 0) limiter_.Wait(count);
  position_ += count;
  unnoted_ += count;
  return count;
}

size_t OutgoingFile::ReadAt(uint64_t position, std::span<char> buffer) const {
  size_t done = 0;
  while (done < buffer.size()) {
    const ssize_t count = pread(descriptor_, buffer.data() + done, buffer.size() - done,
                                static_cast<off_t>(position + done));
    if (count == 0) break;
    if (count < 0 && errno != EINTR) ThrowSourceErrno(errno);
    if (count > 0) done += static_cast<size_t>(count);
  }
  return done;
}

void OutgoingFile::RequireUnchanged() const {
  struct stat now {};
  if (stat(path_.c_str(), &now) != 0) ThrowSourceErrno(errno);
  if (now.st_size != state_.st_size || TimeOf(now) != TimeOf(state_) || now.st_ino != state_.st_ino)
    ThrowChanged();
}

void OutgoingFile::ThrowChanged() const {
  throw UploadError(UploadFault::kFileChanged, "it changed while it was sent");
}

}  // namespace vdsto
