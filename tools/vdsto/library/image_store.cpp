#include "tools/vdsto/library/image_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>

#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr const char* kStoreName = "images.pdb";
constexpr const char* kUnfinishedName = "images.new";
constexpr const char* kThumbnailSuffix = ".400.jpg";
constexpr std::string_view kScheme = "store:";
constexpr size_t kKeyLength = 44;
constexpr DWORD kStorageId = 1;
constexpr std::chrono::seconds kPatience{3};
constexpr std::chrono::milliseconds kPause{50};

bool Exists(const std::string& path) {
  std::error_code error;
  const bool exists = std::filesystem::exists(path, error);
  if (error) ThrowSystemError(path, error);
  return exists;
}

/// Why the store cannot be used in the way that `access_mode` says.
std::string WhyNotOpened(const std::string& path, int access_mode) {
  if (IsInUse(path)) return "is in use by another process, perhaps an import";
  if (access(path.c_str(), access_mode) != 0)
    return "cannot be opened: " + std::generic_category().message(errno);
  const std::string reason = SystemReason();
  return "cannot be opened" + (reason.empty() ? ": run vdsto store repair" : reason);
}

void Rename(const std::string& from, const std::string& to) {
  std::error_code error;
  std::filesystem::rename(from, to, error);
  if (error) ThrowSystemError(to, error);
}

/// Without its data file there may still be the pieces of a compaction that was killed.
bool HasPieces(const std::string& path) {
  return Exists(path + ".bak") || Exists(path + ".compacting.pdb");
}

/// False without a store; throws ToolError when there are only pieces of one.
bool IsWhole(const std::string& path) {
  if (Exists(path)) return true;
  if (!HasPieces(path)) return false;
  throw ToolError(ExitCode::kCannotOpen,
                  Printable(path) +
                      " is still in the pieces of a compaction that was ended: the "
                      "next import or vdsto store repair puts them together");
}

/// What was stored; the bytes themselves where nothing is encrypted.
std::vector<uint8_t> Opened(const ImageSeal* seal, const std::string& key, ImageBytes stored) {
  if (seal == nullptr && !IsSealed(stored)) return {stored.begin(), stored.end()};
  auto image = seal == nullptr ? std::nullopt : seal->Open(key, stored);
  if (image) return std::move(*image);
  throw ToolError(ExitCode::kDamaged,
                  "the thumbnail " + Printable(key) +
                      " is not what was stored: vdsto store repair drops it, and the next import "
                      "makes it again");
}

ImageBytes BytesOf(const CBinData& data) {
  return {static_cast<const uint8_t*>(data.GetData()), static_cast<size_t>(data.GetLength())};
}

}  // namespace

std::string ImageStorePath(const std::string& library_folder) {
  return Joined(library_folder, kStoreName);
}

std::string ImageIndexPath(const std::string& path) {
  return path.substr(0, path.rfind('.')) + ".pdx";
}

bool IsInUse(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool in_use = flock(descriptor, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  close(descriptor);
  return in_use;
}

bool IsCompactionCutOff(const std::string& path) {
  if (!Exists(path)) return HasPieces(path);
  return !Exists(ImageIndexPath(path)) && Exists(path + ".compacting.pdx");
}

std::string SystemReason() {
  const auto error = vdstomgr::TakeStorageError();
  if (!error.reason) return {};
  std::string what = error.reason.message();
  if (!what.empty()) what[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(what[0])));
  return " (" + std::filesystem::path(error.path).filename().string() + ": " + what + ")";
}

bool IsImageStoreThere(const std::string& library_folder) {
  const std::string path = ImageStorePath(library_folder);
  return Exists(path) || HasPieces(path);
}

uint64_t ImageStoreBytes(const std::string& library_folder) {
  uint64_t sum = 0;
  const std::string path = ImageStorePath(library_folder);
  for (const std::string& file : {path, ImageIndexPath(path)}) {
    std::error_code error;
    auto size = std::filesystem::file_size(file, error);
    if (error) size = std::filesystem::file_size(file + ".bak", error);  // in a compaction
    if (!error) sum += size;
  }
  return sum;
}

std::string ThumbnailKey(const std::string& guid) {
  return guid + kThumbnailSuffix;
}

std::string ImageLocation(const std::string& key) {
  return std::string(kScheme) + key;
}

std::string ImageKeyOf(const std::string& location) {
  const bool is_image =
      location.starts_with(kScheme) && location.size() == kScheme.size() + kKeyLength;
  return is_image ? location.substr(kScheme.size()) : std::string();
}

void OpenPatiently(const std::string& path, const std::function<bool()>& open) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!open()) {
    if (!IsInUse(path) || std::chrono::steady_clock::now() > deadline) {
      throw ToolError(ExitCode::kCannotOpen,
                      Printable(path) + " " + WhyNotOpened(path, R_OK | W_OK));
    }
    std::this_thread::sleep_for(kPause);
  }
}

bool ReadImage(const std::string& library_folder, const std::string& key, const ImageSeal* seal,
               std::vector<uint8_t>& image) {
  const std::string path = ImageStorePath(library_folder);
  if (!IsImageStoreThere(library_folder)) return false;
  CBinData stored;
  const auto answer = vdstomgr::ReadStorage(path.c_str(), key.c_str(), stored);
  if (answer == vdstomgr::StorageLookup::Found) image = Opened(seal, key, BytesOf(stored));
  if (answer != vdstomgr::StorageLookup::Unreadable) {
    return answer == vdstomgr::StorageLookup::Found;
  }
  throw ToolError(ExitCode::kCannotOpen, Printable(path) + " " + WhyNotOpened(path, R_OK));
}

bool ImageStore::Open() {
  if (!IsWhole(path_)) return false;
  CRkPhotoImageStorage opened;
  OpenPatiently(path_, [&] {
    if (opened.OpenFile(path_.c_str())) return true;
    opened = CRkPhotoImageStorage();  // which closes what the failure left open
    return false;
  });
  const std::lock_guard lock(mutex_);
  storage_ = opened;
  return is_open_ = true;
}

/// Both files get their names when they are whole, the one that makes it a store last.
void ImageStore::Create() const {
  const std::string unfinished = Joined(ParentOf(path_), kUnfinishedName);
  if (!CRkPhotoImageStorage().CreateFileA((unfinished + ".pdb").c_str(), kStorageId)) {
    throw ToolError(ExitCode::kCannotOpen,
                    Printable(path_) + " cannot be created" + SystemReason());
  }
  Rename(unfinished + ".pdx", ImageIndexPath(path_));
  Rename(unfinished + ".pdb", path_);
}

bool ImageStore::Has(const std::string& key) {
  const std::lock_guard lock(mutex_);
  return storage_.IsImage(key.c_str());
}

bool ImageStore::Lend(const std::string& key,
                      const std::function<void(std::span<const uint8_t>)>& use) {
  CBinData image;
  const struct Loan {
    DWORD handle;
    ~Loan() { CRkPhotoImageStorage::Free_Image(handle); }
  } loan{storage_.Lock_Image(key.c_str(), image)};
  if (image.GetLength() == 0) return false;
  use(Opened(seal_.get(), key, BytesOf(image)));
  return true;
}

void ImageStore::Put(const std::string& key, std::span<const uint8_t> image) {
  if (!is_open_ && !Open()) Create(), Open();
  std::vector<uint8_t> sealed;
  if (seal_) image = sealed = seal_->Seal(key, image);
  if (!storage_.SetImage(key.c_str(), image.data(), static_cast<int>(image.size()))) {
    throw ToolError(ExitCode::kCatalogue,
                    Printable(path_) + " takes no more images" + SystemReason());
  }
  has_news_ = true;
}

void ImageStore::Remove(const std::string& key) {
  if (is_open_) storage_.DelImage(key.c_str());
}

void ImageStore::Sync() {
  if (has_news_ && !vdstomgr::SyncStorage(storage_)) {
    throw ToolError(ExitCode::kCatalogue,
                    Printable(path_) + " could not be brought to the device" + SystemReason());
  }
  has_news_ = false;
}

}  // namespace vdsto
