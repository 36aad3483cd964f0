#include "tools/vdsto/backup/backup_writer.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <memory>

#include "tools/vdsto/library/database_password.h"
#include "tools/vdsto/library/file_descriptor.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

namespace fs = std::filesystem;
using vdstomgr::DatabaseSnapshot;
using vdstomgr::StorageSnapshot;

/// A database of a library's folder.
struct DatabaseFile {
  const char* name;
  const char* remedy;  ///< what makes it again; null: nothing does
};

constexpr std::array kDatabases{DatabaseFile{"catalogue.vdb", nullptr},
                                DatabaseFile{"search.vdb", "vdsto reindex makes it again"},
                                DatabaseFile{"facts.vdb", "vdsto import makes it again"}};

/// Databases change here and there, the image store at its end.
constexpr uint64_t kDatabasePiece = uint64_t{256} << 10;
constexpr uint64_t kStorePiece = uint64_t{4} << 20;
constexpr int kDiskFull = 3026;

int64_t Now() {
  return std::chrono::duration_cast<std::chrono::seconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

/// Cuts what it is given into pieces of a file.
class PieceWriter {
 public:
  PieceWriter(PieceStore& store, std::string name, uint64_t piece_size)
      : store_(store), file_{std::move(name), 0, piece_size} {}

  void Add(PieceBytes bytes) {
    file_.size += bytes.size();
    while (!bytes.empty()) {
      const size_t part = std::min<size_t>(file_.piece_size - buffer_.size(), bytes.size());
      buffer_.insert(buffer_.end(), bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(part));
      bytes = bytes.subspan(part);
      if (buffer_.size() == file_.piece_size) Flush();
    }
  }
  BackedUpFile Finish() {
    if (!buffer_.empty()) Flush();
    return std::move(file_);
  }

 private:
  void Flush() {
    file_.pieces.push_back(store_.Add(buffer_));
    buffer_.clear();
  }

  PieceStore& store_;
  BackedUpFile file_;
  std::vector<unsigned char> buffer_;
};

class BackupRun {
 public:
  BackupRun(const LibraryOptions& library, BackupFolder& folder, const BackupProgress& progress)
      : library_(library), folder_(folder), progress_(progress) {}

  Generation Run() {
    TrustFinished();
    TakeMoment();
    for (size_t i = 0; i < kDatabases.size(); ++i)
      if (snapshots_[i]) OrLeftOut(kDatabases[i], [&] { CopyDatabase(i); });
    if (images_) CopyImages();
    generation_.new_bytes = folder_.Pieces().NewBytes();
    progress_(total_, total_);
    folder_.Publish(generation_);
    return std::move(generation_);
  }

 private:
  /// The time counts on when the clock was put back, so that the newest is the last one made.
  void TrustFinished() {
    DigestSet digests;
    generation_.time = Now();
    for (const Generation& older : folder_.Generations()) {
      generation_.time = std::max(generation_.time, older.time + 1);
      for (const BackedUpFile& file : older.files)
        digests.insert(file.pieces.begin(), file.pieces.end());
    }
    generation_.id = GenerationId(generation_.time);
    generation_.library = fs::absolute(library_.folder).lexically_normal().string();
    folder_.Pieces().Trust(std::move(digests));
  }

  /// Rows name images, and images are stored before the rows: the store is looked at last.
  void TakeMoment() {
    for (size_t i = 0; i < kDatabases.size(); ++i) {
      const std::string path = Joined(library_.folder, kDatabases[i].name);
      std::error_code error;
      const auto size = fs::file_size(path, error);
      if (error && kDatabases[i].remedy != nullptr) continue;
      OrLeftOut(kDatabases[i], [&] {
        snapshots_[i] = std::make_unique<DatabaseSnapshot>(path.c_str(), library_.password.c_str());
        total_ += 2 * size;
      });
    }
    if (IsImageStoreThere(library_.folder)) {
      images_ = std::make_unique<StorageSnapshot>(ImageStorePath(library_.folder).c_str());
      total_ += ImageStoreBytes(library_.folder);
    }
  }

  /// What can be made again does not stop a backup.
  template <class Step>
  void OrLeftOut(const DatabaseFile& file, Step step) {
    try {
      step();
    } catch (const CDaoException& error) {
      if (error.Code() == kDiskFull) ThrowBackupError(folder_.Path(), ENOSPC);
      const std::string reason = error.what();
      if (file.remedy != nullptr) return LeaveOut(file.name, reason + " " + file.remedy);
      const auto code =
          error.Code() == kWrongDatabasePassword ? ExitCode::kWrongPassword : ExitCode::kCannotOpen;
      throw ToolError(code, reason + " Nothing was backed up; older backups are as they were");
    }
  }

  void LeaveOut(const std::string& name, const std::string& reason) {
    generation_.left_out.emplace_back(name, reason);
  }

  void CopyDatabase(size_t number) {
    const std::string copy = folder_.UnfinishedPath(kDatabases[number].name);
    const uint64_t before = done_;
    snapshots_[number]->CopyTo(copy.c_str(), [&](int done, int total) {
      const uint64_t size = fs::file_size(Joined(library_.folder, kDatabases[number].name));
      Tell(before + size * static_cast<uint64_t>(done) / static_cast<uint64_t>(std::max(total, 1)));
      return true;
    });
    snapshots_[number].reset();  // so that the log need not grow on
    AddFile(copy, kDatabases[number].name);
    fs::remove(copy);
  }

  void AddFile(const std::string& path, const char* name) {
    const FileDescriptor file(path, O_RDONLY);
    PieceWriter pieces(folder_.Pieces(), name, kDatabasePiece);
    std::vector<unsigned char> buffer(kDatabasePiece);
    if (!file.IsOpen()) ThrowBackupError(path, errno);
    for (size_t count = 0; (count = file.Read(buffer)) > 0;) {
      pieces.Add({buffer.data(), count});
      Tell(done_ + count);
    }
    generation_.files.push_back(pieces.Finish());
  }

  void CopyImages() {
    const std::string path = ImageStorePath(library_.folder);
    PieceWriter data(folder_.Pieces(), std::string(LastComponent(path)), kStorePiece);
    PieceWriter index(folder_.Pieces(), std::string(LastComponent(ImageIndexPath(path))),
                      kStorePiece);
    const auto to = [&](PieceWriter& pieces) {
      return [&](const void* bytes, size_t size) {
        pieces.Add({static_cast<const unsigned char*>(bytes), size});
        Tell(done_ + size);
      };
    };
    if (!images_->CopyData(to(data)))
      return LeaveOut("images.pdb", "The image store cannot be read. vdsto store verify tells why");
    images_->CopyIndex(to(index));
    generation_.files.push_back(data.Finish());
    generation_.files.push_back(index.Finish());
  }

  void Tell(uint64_t done) {
    done_ = done;
    progress_(std::min(done_, total_), total_);
  }

  const LibraryOptions& library_;
  BackupFolder& folder_;
  const BackupProgress& progress_;
  Generation generation_;
  std::array<std::unique_ptr<DatabaseSnapshot>, kDatabases.size()> snapshots_;
  std::unique_ptr<StorageSnapshot> images_;
  uint64_t done_ = 0;
  uint64_t total_ = 0;
};

}  // namespace

Generation BackUp(const LibraryOptions& library, BackupFolder& folder,
                  const BackupProgress& progress) {
  return BackupRun(library, folder, progress).Run();
}

}  // namespace vdsto
