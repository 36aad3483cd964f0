#pragma once
#include <optional>
#include <string>
#include <vector>

#include "tools/vdsto/backup/generation.h"
#include "tools/vdsto/backup/piece_store.h"
#include "tools/vdsto/library/lock_file.h"

namespace vdsto {

/// A folder of backups: a marker file, a manifest for each generation, and the pieces that they
/// share. docs/backup.md has its form.
class BackupFolder {
 public:
  /// Throws ToolError unless `path` is a folder of backups.
  explicit BackupFolder(const std::string& path);
  /// For a backup of the library in `library_folder`, locked: an empty folder becomes one of
  /// backups, and a missing one is made where its parent folder is. Refuses a folder that lies in
  /// the library or has it inside.
  BackupFolder(const std::string& path, const std::string& library_folder);

  const std::string& Path() const { return path_; }
  PieceStore& Pieces() { return pieces_; }

  /// The newest first. Manifests that cannot be read are left out and named in Unreadable.
  std::vector<Generation> Generations();
  /// Paths of manifests, after Generations.
  const std::vector<std::string>& Unreadable() const { return unreadable_; }
  /// The generation whose id begins so, or the newest for an empty text. Throws ToolError.
  Generation Find(const std::string& id);

  /// Keeps other backups out as long as this object lives. Throws ToolError when one is at work,
  /// and, unless `is_needed`, does without where the folder cannot be written.
  void Lock(bool is_needed = true);
  /// Deletes what is unfinished, of this backup or of one that was killed. Under the lock.
  void Discard() const;
  /// A name for a file that lives no longer than this process.
  std::string UnfinishedPath(const std::string& name) const;
  /// Brings everything to the device and makes the generation visible, last of all. Under the lock.
  void Publish(const Generation& generation);
  /// Deletes all but the newest `count` generations, never the newest that is whole, and the pieces
  /// that no generation names. Answers how many generations went. Under the lock.
  size_t Keep(size_t count);
  /// Deletes the pieces that no generation names; leaves all while a manifest cannot be read. Under
  /// the lock.
  void Sweep();
  /// Are all pieces there, as far as their lengths tell?
  bool IsWhole(const Generation& generation) const;

 private:
  void Mark() const;
  std::string ManifestPath(const std::string& id) const;

  std::string path_;
  PieceStore pieces_;
  std::optional<LockFile> lock_;
  std::vector<std::string> unreadable_;
};

}  // namespace vdsto
