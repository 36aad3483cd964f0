#include "tools/vdsto/backup/backup_folder.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tools/vdsto/library/file_descriptor.h"
#include "tools/vdsto/library/finished_file.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

namespace fs = std::filesystem;

constexpr const char* kMarker = "vdsto-backup.json";
constexpr const char* kGenerations = "generations";
constexpr const char* kUnfinished = ".vdsto-unfinished";
constexpr const char* kLock = "backup.lock";
constexpr const char* kManifestEnd = ".json";
/// What may lie in a folder that is to become one of backups: the system's own, and what a first
/// backup leaves that was killed at once.
constexpr std::array<std::string_view, 3> kBegun{"lost+found", kLock, kUnfinished};

std::string Contents(const std::string& path) {
  std::ostringstream contents;
  contents << std::ifstream(path, std::ios::binary).rdbuf();
  return contents.str();
}

bool IsMarked(const std::string& folder) {
  const auto marker = nlohmann::json::parse(Contents(Joined(folder, kMarker)), nullptr, false);
  return marker.is_object() && marker.value("program", "") == "vdsto" &&
         marker.value("format", 0) == 1;
}

/// Does one of the folders above `path`, or itself, be `folder`? Links are followed.
bool IsWithin(const std::string& path, const std::string& folder) {
  const auto wanted = IdentityOf(folder);
  std::error_code error;
  for (fs::path at = fs::weakly_canonical(path, error); wanted && !at.empty();
       at = at.parent_path()) {
    if (IdentityOf(at.string()) == wanted) return true;
    if (at == at.parent_path()) break;
  }
  return false;
}

void RequireApart(const std::string& path, const std::string& library) {
  const char* fault = IsWithin(path, library)   ? " lies in the library's folder"
                      : IsWithin(library, path) ? " has the library inside"
                                                : nullptr;
  if (fault != nullptr)
    throw ToolError(
        ExitCode::kUsage,
        Printable(path) + fault + ": a backup belongs somewhere else, best on another disk");
}

void SyncFolder(const std::string& folder) {
  const FileDescriptor descriptor(folder, O_RDONLY | O_DIRECTORY);
  if (!descriptor.IsOpen() || !descriptor.Sync()) ThrowBackupError(folder, errno);
}

/// Writes a file, whole and on the device, beside its name.
void WriteBeside(const std::string& unfinished, const std::string& path, const std::string& text) {
  {
    const FileDescriptor file(unfinished, O_WRONLY | O_CREAT | O_TRUNC);
    const PieceBytes bytes(reinterpret_cast<const unsigned char*>(text.data()), text.size());
    if (!file.IsOpen() || !file.Write(bytes) || !file.Sync()) ThrowBackupError(path, errno);
  }
  if (rename(unfinished.c_str(), path.c_str()) != 0) ThrowBackupError(path, errno);
  SyncFolder(ParentOf(path));
}

void MakeFolder(const std::string& path) {
  std::error_code error;
  fs::create_directory(path, error);
  if (error) ThrowBackupError(path, error.value());
}

/// A missing parent may be a disk that is not there today.
void RequireUsable(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (path.empty() || (fs::exists(status) && !fs::is_directory(status)))
    throw ToolError(ExitCode::kUsage, "'" + Printable(path) + "' is no folder");
  if (!fs::exists(status)) {
    const std::string parent = ParentOf(fs::absolute(fs::path(path) / "").parent_path().string());
    if (!fs::is_directory(parent, error))
      throw ToolError(ExitCode::kTarget,
                      Printable(parent) + " is not there: is the backup's disk mounted?");
    return MakeFolder(path);
  }
  if (IsMarked(path)) return;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (std::ranges::find(kBegun, name) != kBegun.end()) continue;
    throw ToolError(ExitCode::kRefused,
                    Printable(path) +
                        " is not empty and no folder of backups: name one of its own, "
                        "such as " +
                        Printable(Joined(path, "vdsto-backup")));
  }
  if (error) ThrowBackupError(path, error.value());
}

}  // namespace

BackupFolder::BackupFolder(const std::string& path) : path_(path), pieces_(path) {
  if (!IsMarked(path_))
    throw ToolError(ExitCode::kNotFound, Printable(path_) + " is no folder of backups");
}

BackupFolder::BackupFolder(const std::string& path, const std::string& library_folder)
    : path_(path), pieces_(path) {
  if (!path.empty()) RequireApart(path, library_folder);
  RequireUsable(path);
  Lock();
  Discard();
  MakeFolder(Joined(path_, kUnfinished));
  if (!IsMarked(path)) Mark();
}

void BackupFolder::Mark() const {
  WriteBeside(UnfinishedPath("marker"), Joined(path_, kMarker),
              nlohmann::json{{"program", "vdsto"}, {"format", 1}}.dump() + "\n");
}

std::string BackupFolder::ManifestPath(const std::string& id) const {
  return Joined(Joined(path_, kGenerations), id + kManifestEnd);
}

std::string BackupFolder::UnfinishedPath(const std::string& name) const {
  return Joined(Joined(path_, kUnfinished), name);
}

std::vector<Generation> BackupFolder::Generations() {
  std::vector<Generation> generations;
  unreadable_.clear();
  std::error_code error;
  for (fs::directory_iterator entry(Joined(path_, kGenerations), error), end;
       !error && entry != end; entry.increment(error)) {
    if (entry->path().extension() != kManifestEnd) continue;
    auto generation = ReadManifest(Contents(entry->path().string()));
    const bool is_it = generation && generation->id == entry->path().stem().string();
    is_it ? generations.push_back(std::move(*generation))
          : unreadable_.push_back(entry->path().string());
  }
  std::sort(generations.begin(), generations.end(),
            [](const auto& left, const auto& right) { return left.id > right.id; });
  return generations;
}

Generation BackupFolder::Find(const std::string& id) {
  std::vector<Generation> found = Generations();
  std::erase_if(found, [&](const Generation& each) { return !each.id.starts_with(id); });
  if (found.empty())
    throw ToolError(ExitCode::kNotFound, "no backup " + Printable(id) + " in " + Printable(path_) +
                                             ": vdsto backup --list " + Printable(path_) +
                                             " shows what there is");
  if (found.size() > 1 && !id.empty())
    throw ToolError(ExitCode::kNotFound, Counted(found.size(), "backup") + " begin with " +
                                             Printable(id) + ": " + found[0].id + ", " +
                                             found[1].id + "...");
  return found.front();
}

void BackupFolder::Lock(bool is_needed) {
  if (!is_needed && access(path_.c_str(), W_OK) != 0) return;
  try {
    lock_.emplace(path_, kLock);
  } catch (const ToolError& error) {
    throw ToolError(ExitCode::kTarget, error.what());
  }
  if (!lock_->Try())
    throw ToolError(ExitCode::kRefused,
                    "another vdsto works in " + Printable(path_) + ": wait until it has ended");
}

void BackupFolder::Discard() const {
  std::error_code ignored;
  fs::remove_all(Joined(path_, kUnfinished), ignored);
}

void BackupFolder::Publish(const Generation& generation) {
  std::error_code error;
  fs::create_directories(Joined(path_, kGenerations), error);
  const FileDescriptor folder(path_, O_RDONLY | O_DIRECTORY);
  if (error || !folder.IsOpen() || syncfs(folder.Get()) != 0)
    ThrowBackupError(path_, error ? error.value() : errno);
  WriteBeside(UnfinishedPath("manifest"), ManifestPath(generation.id), ManifestOf(generation));
}

bool BackupFolder::IsWhole(const Generation& generation) const {
  return std::ranges::all_of(generation.files, [&](const BackedUpFile& file) {
    for (size_t i = 0; i < file.pieces.size(); ++i)
      if (!pieces_.IsThere(file.pieces[i], file.SizeOfPiece(i))) return false;
    return true;
  });
}

size_t BackupFolder::Keep(size_t count) {
  size_t kept = 0, deleted = 0;
  bool has_whole = false;
  for (const Generation& generation : Generations()) {
    const bool is_whole = !has_whole && IsWhole(generation);
    if (kept < count || is_whole) {
      ++kept;
      has_whole = has_whole || is_whole;
    } else if (has_whole && unlink(ManifestPath(generation.id).c_str()) == 0) {
      ++deleted;
    }
  }
  SyncFolder(Joined(path_, kGenerations));
  Sweep();
  return deleted;
}

void BackupFolder::Sweep() {
  DigestSet named;
  for (const Generation& generation : Generations())
    for (const BackedUpFile& file : generation.files)
      named.insert(file.pieces.begin(), file.pieces.end());
  if (unreadable_.empty()) pieces_.Sweep(named);
}

}  // namespace vdsto
