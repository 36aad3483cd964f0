#include "tools/vdsto/backup/piece_store.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "tools/vdsto/library/file_descriptor.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPieces = "pieces";
constexpr const char* kUnfinished = ".vdsto-unfinished/piece";
constexpr const char* kSetAside = ".damaged";
constexpr size_t kDigestDigits = 64;

bool IsDigest(const std::string& name) {
  return name.size() == kDigestDigits &&
         name.find_first_not_of("0123456789abcdef") == std::string::npos;
}

/// The digest of what has the name of a piece, also of one that was set aside; else empty.
std::string DigestOfName(const std::string& name) {
  const std::string digest = name.substr(0, kDigestDigits);
  const bool is_piece = IsDigest(digest) && (name == digest || name == digest + kSetAside);
  return is_piece ? digest : std::string();
}

}  // namespace

std::string Sha256(PieceBytes bytes) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr);
  std::string text;
  for (unsigned i = 0; i < size; ++i) {
    text.push_back("0123456789abcdef"[digest[i] >> 4]);
    text.push_back("0123456789abcdef"[digest[i] & 15]);
  }
  return text;
}

void ThrowBackupError(const std::string& path, int error) {
  const bool is_full = error == ENOSPC || error == EDQUOT || error == EFBIG;
  throw ToolError(ExitCode::kTarget,
                  Printable(path) + ": " + std::generic_category().message(error) +
                      (is_full ? ": make room there. Older backups are untouched; vdsto backup DIR "
                                 "--prune --keep N deletes all but the newest N"
                               : ""));
}

PieceStore::PieceStore(const std::string& folder)
    : folder_(Joined(folder, kPieces)), unfinished_(Joined(folder, kUnfinished)) {}

std::string PieceStore::PathOf(const std::string& digest) const {
  return Joined(folder_, digest.substr(0, 2)) + "/" + digest;
}

bool PieceStore::IsThere(const std::string& digest, uint64_t size) const {
  std::error_code error;
  return fs::file_size(PathOf(digest), error) == size && !error;
}

std::string PieceStore::Add(PieceBytes bytes) {
  std::string digest = Sha256(bytes);
  if (IsThere(digest, bytes.size())) {
    std::vector<unsigned char> present;
    if (trusted_.contains(digest)) return digest;
    if (Read(digest, bytes.size(), present) == PieceFault::kNone) return digest;
  }
  Write(PathOf(digest), bytes);
  trusted_.insert(digest);
  new_bytes_ += bytes.size();
  return digest;
}

void PieceStore::Write(const std::string& path, PieceBytes bytes) const {
  std::error_code error;
  fs::create_directories(ParentOf(path), error);
  if (error) ThrowBackupError(folder_, error.value());
  {
    const FileDescriptor file(unfinished_, O_WRONLY | O_CREAT | O_TRUNC);
    if (!file.IsOpen() || !file.Write(bytes)) ThrowBackupError(folder_, errno);
  }
  if (rename(unfinished_.c_str(), path.c_str()) != 0) ThrowBackupError(folder_, errno);
}

PieceFault PieceStore::Read(const std::string& digest, uint64_t size,
                            std::vector<unsigned char>& bytes) const {
  bytes.assign(size + 1, 0);  // one more shows a piece that is too long
  const FileDescriptor file(PathOf(digest), O_RDONLY);
  if (!file.IsOpen()) return errno == ENOENT ? PieceFault::kMissing : PieceFault::kDamaged;
  bytes.resize(file.Read(bytes));
  return bytes.size() == size && Sha256(bytes) == digest ? PieceFault::kNone : PieceFault::kDamaged;
}

bool PieceStore::SetAside(const std::string& digest) const {
  const std::string path = PathOf(digest);
  return rename(path.c_str(), (path + kSetAside).c_str()) == 0;
}

void PieceStore::Sweep(const DigestSet& named) const {
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder_, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string digest = DigestOfName(entry->path().filename().string());
    std::error_code ignored;
    const bool is_file = entry->symlink_status(ignored).type() == fs::file_type::regular;
    if (is_file && !digest.empty() && !named.contains(digest)) fs::remove(entry->path(), ignored);
  }
}

}  // namespace vdsto
