#include "tools/vdsto/upload/upload_queue.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "tools/vdsto/library/upload_gifts.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/upload/upload_names.h"

namespace vdsto {
namespace {

constexpr int kFinished = 2;
/// Rows are claimed ahead as far as they are used up in this time.
constexpr std::chrono::milliseconds kMoment{100};
constexpr size_t kMostAhead = 512;

}  // namespace

UploadQueue::UploadQueue(Library& library) : library_(library), paths_(library) {
  library_.Call([](auto& catalogue) {
    catalogue.ResetUploadTransStatus();
    return true;
  });
}

UploadQueue::Sum UploadQueue::Ready() {
  uint64_t bytes[3] = {};
  int files[3] = {};
  library_.Call([&](auto& catalogue) {
    return catalogue.ResetUploadInfoStats(bytes[0], files[0], bytes[1], files[1], bytes[2],
                                          files[2]);
  });
  return {static_cast<uint64_t>(files[0] - files[1] - files[2]), bytes[0] - bytes[1] - bytes[2]};
}

std::optional<QueuedFile> UploadQueue::Claim() {
  std::unique_lock lock(claiming_);
  claims_changed_.wait(lock, [&] { return !claimed_.empty() || !is_claiming_; });
  if (!is_claiming_ && claimed_.size() <= (is_short_ ? 0 : ahead_ / 2)) ClaimMore(lock);
  if (claimed_.empty()) return std::nullopt;
  QueuedFile file = std::move(claimed_.front());
  claimed_.pop_front();
  return file;
}

void UploadQueue::ClaimMore(std::unique_lock<std::mutex>& lock) {
  const auto now = Clock::now();
  const auto took = std::max<Clock::duration>(now - std::exchange(last_claim_, now), kMoment / 2);
  ahead_ =
      std::clamp<size_t>(ahead_ * Clock::duration(kMoment).count() / took.count(), 1, kMostAhead);
  const size_t wanted = ahead_;
  is_claiming_ = true;
  lock.unlock();
  const struct End {
    UploadQueue& queue;
    std::unique_lock<std::mutex>& lock;
    ~End() {
      if (!lock.owns_lock()) lock.lock();
      queue.is_claiming_ = false;
      queue.claims_changed_.notify_all();
    }
  } end{*this, lock};
  auto files = ClaimSome(wanted);
  lock.lock();
  is_short_ = files.size() < wanted;
  std::ranges::move(files, std::back_inserter(claimed_));
}

std::deque<QueuedFile> UploadQueue::ClaimSome(size_t count) {
  const std::lock_guard lock(writing_);
  std::vector<UPLOADLIST> rows;
  library_.Call([&](auto& catalogue) {
    return catalogue.InOneCommit([&] {
      WriteNotes(catalogue);
      UPLOADLIST row;
      while (rows.size() < count && catalogue.GetNextUploadList(row)) rows.push_back(row);
    });
  });
  std::deque<QueuedFile> files;
  for (const UPLOADLIST& row : rows) files.push_back(Described(row));
  return files;
}

QueuedFile UploadQueue::Described(const UPLOADLIST& row) {
  const std::string folder =
      row.szServerPath[0] != '\0' ? row.szServerPath : CatalogueFolderOf(row.szGUID);
  return {row.szGUID, PathOf(row.szOPPath), SafeFolder(folder), SafeName(row.szFileName),
          row.dxFileSize};
}

std::string UploadQueue::CatalogueFolderOf(const std::string& guid) {
  const uint32_t folder =
      library_.Call([&](auto& catalogue) { return catalogue.GetFolderID(guid.c_str()); });
  if (folder == vdstomgr::kPersonalRoot || folder == vdstomgr::kNoFolder) return {};
  const auto known = folder_names_.find(folder);
  if (known != folder_names_.end()) return known->second;
  return folder_names_[folder] = paths_.NameOf(folder);
}

void UploadQueue::NoteSent(const std::string& guid, uint64_t bytes) {
  const std::lock_guard lock(noting_);
  notes_.sent[guid] = bytes;
}

void UploadQueue::NoteFinished(const std::string& guid, uint64_t bytes) {
  const std::lock_guard lock(noting_);
  notes_.sent[guid] = bytes;
  notes_.results.emplace_back(guid, kFinished);
}

void UploadQueue::NoteFailed(const std::string& guid, UploadFault fault) {
  const std::lock_guard lock(noting_);
  notes_.results.emplace_back(guid, static_cast<int>(fault));
}

void UploadQueue::Write() {
  const std::lock_guard lock(writing_);
  library_.Call(
      [&](auto& catalogue) { return catalogue.InOneCommit([&] { WriteNotes(catalogue); }); });
}

void UploadQueue::Release() {
  const std::lock_guard lock(writing_);
  library_.Call([&](auto& catalogue) {
    return catalogue.InOneCommit([&] {
      WriteNotes(catalogue);
      catalogue.ResetUploadTransStatus();
    });
  });
}

/// Rows that somebody has deleted meanwhile are not there to be changed.
void UploadQueue::WriteNotes(CRkPhotoDBManager& catalogue) {
  Notes notes;
  {
    const std::lock_guard lock(noting_);
    std::swap(notes, notes_);
  }
  for (const auto& [guid, bytes] : notes.sent)
    catalogue.UpdateSentBytesInUploadInfo(guid.c_str(), bytes);
  for (const auto& [guid, status] : notes.results) {
    // Before the row is finished, so that a killed run does it again rather than never.
    if (status == kFinished) GiveGifts(catalogue, guid.c_str());
    catalogue.SetUploadListStatus(guid.c_str(), status);
  }
}

}  // namespace vdsto
