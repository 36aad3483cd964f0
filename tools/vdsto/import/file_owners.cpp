#include "tools/vdsto/import/file_owners.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "tools/vdsto/text/source_location.h"

namespace vdsto {
namespace {

/// So many photos with the same contents are looked at for one file.
constexpr size_t kMostCandidates = 64;

/// How many of the last characters of two paths are the same: files of a moved folder keep theirs.
size_t CommonEnd(const std::string& a, const std::string& b) {
  const auto [in_a, in_b] = std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend());
  return static_cast<size_t>(in_a - a.rbegin());
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool LeadToOnePath(const std::string& a, const std::string& b) {
  std::error_code error;
  const auto canonical = std::filesystem::canonical(a, error);
  return !error && canonical == std::filesystem::canonical(b, error) && !error;
}

}  // namespace

PhotoFacts FileOwners::FactsOf(KnownPhotos::Index index) {
  const std::string guid = known_.GuidOf(index);
  if (const auto facts = library_.FactsOfPhotos().Of(guid)) return *facts;
  const auto row = library_.Photo(guid);
  return row ? FactsOfRow(*row) : PhotoFacts();
}

/// What is at the path of a photo whose contents a file at `path` has?
FileOwners::Place FileOwners::Look(const PhotoFacts& photo, KnownPhotos::Index index,
                                   const std::string& path) const {
  struct stat there {};
  struct stat here {};
  if (lstat(photo.path.c_str(), &there) != 0) {
    const bool is_missing = errno == ENOENT || errno == ENOTDIR;
    return is_missing && places_.IsThere(photo) ? Place::kIsGone : Place::kHolds;
  }
  if (stat(photo.path.c_str(), &there) != 0 || stat(path.c_str(), &here) != 0) return Place::kHolds;
  if (!IsSameFile(there, here))
    return StampFrom(there) == photo.stamp ? Place::kHolds : Place::kHasOther;
  if (LeadToOnePath(photo.path, path)) return Place::kIsSame;
  return known_[index].is_imported ? Place::kMayBeSpeltSo : Place::kHolds;
}

FileOwners::Decision FileOwners::Decide(const ImportJob& job, const PictureFacts& picture) {
  const auto own = job.known_guid.empty() ? std::nullopt : known_.Find(job.known_guid);
  std::optional<KnownPhotos::Index> moved, displaced;
  PhotoFacts moved_facts;
  size_t looked_at = 0;
  for (const KnownPhotos::Index index : known_.FindContents(picture)) {
    if (index == own) return {Fate::kAsKnown, {}};
    if (known_[index].is_settled) continue;
    if (looked_at++ == kMostCandidates) break;
    PhotoFacts facts = FactsOf(index);
    if (facts.md5 != picture.md5 || facts.path.empty()) continue;
    const Place place = Look(facts, index, job.path);
    if (place == Place::kIsSame) return {Fate::kSame, std::move(facts)};
    if (place == Place::kHasOther || place == Place::kMayBeSpeltSo) displaced = index;
    const bool is_nearer =
        !moved || CommonEnd(facts.path, job.path) > CommonEnd(moved_facts.path, job.path);
    if (place == Place::kIsGone && is_nearer) moved = index, moved_facts = std::move(facts);
  }
  if (!moved && !displaced) return {Fate::kAsKnown, {}};
  if (moved && !own) {
    known_.MarkSettled(*moved);
    return {Fate::kMoved, std::move(moved_facts)};
  }
  waiting_.push_back({job, picture, own, moved ? moved : displaced});
  waiting_.back().picture.thumbnail = {};
  return {Fate::kWaits, {}};
}

FileOwners::Waiting* FileOwners::TakerOf(KnownPhotos::Index photo) {
  const auto found = takers_.find(photo);
  return found == takers_.end() ? nullptr : &waiting_[found->second];
}

FileOwners::Waiting* FileOwners::FileAt(KnownPhotos::Index photo) {
  const auto found = files_at_.find(photo);
  return found == files_at_.end() ? nullptr : &waiting_[found->second];
}

/// A file takes a photo over when no file is left for it at its old path, or one that takes over
/// another photo; and when the photo of its own path goes on to another file. So a chain of renamed
/// files and a ring of swapped ones keep their photos, and a file that replaced another is an
/// update.
bool FileOwners::IsFounded(const Waiting& file) {
  const PhotoFacts facts = FactsOf(*file.wanted);
  const Place place = Look(facts, *file.wanted, file.job.path);
  const Waiting* other = FileAt(*file.wanted);
  const bool is_left = place == Place::kIsGone ||
                       (place == Place::kMayBeSpeltSo && !known_[*file.wanted].is_seen) ||
                       (place == Place::kHasOther && other && other->wanted);
  return is_left && (!file.own || TakerOf(*file.own));
}

void FileOwners::DropUnfounded() {
  bool has_dropped = true;
  while (std::exchange(has_dropped, false)) {
    for (Waiting& file : waiting_) {
      if (!file.wanted || IsFounded(file)) continue;
      takers_.erase(*file.wanted);
      file.wanted.reset();
      has_dropped = true;
    }
  }
}

std::vector<std::pair<FileOwners::Waiting, std::optional<PhotoFacts>>> FileOwners::Resolve() {
  for (size_t i = 0; i < waiting_.size(); ++i) {
    Waiting& file = waiting_[i];
    if (file.own) files_at_.emplace(*file.own, i);
    const bool is_free =
        !known_[*file.wanted].is_settled && takers_.emplace(*file.wanted, i).second;
    if (!is_free) file.wanted.reset();
  }
  DropUnfounded();
  std::vector<std::pair<Waiting, std::optional<PhotoFacts>>> resolved;
  for (Waiting& file : waiting_) {
    std::optional<PhotoFacts> photo;
    if (file.wanted) photo = FactsOf(*file.wanted), known_.MarkSettled(*file.wanted);
    resolved.emplace_back(std::move(file), std::move(photo));
  }
  return resolved;
}

}  // namespace vdsto
