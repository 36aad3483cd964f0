#include "tools/vdsto/import/photo_writer.h"

#include "tools/vdsto/import/photo_record.h"
#include "tools/vdsto/import/probed_facts.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr size_t kBatchRows = 256;
constexpr std::chrono::milliseconds kBatchAge{500};

}  // namespace

PhotoWriter::PhotoWriter(Library& library, ImageStore& images, FolderMirror& mirror,
                         ImportSummary& summary)
    : library_(library), images_(images), mirror_(mirror), summary_(summary), cameras_(library) {}

void PhotoWriter::Write(const ImportJob& job, const PictureFacts& facts) {
  if (!facts.IsPicture()) {
    ++summary_.not_pictures;
    return;
  }
  Remember(job, facts);
  cameras_.Remember(facts.exif);
  job.known_guid.empty() ? Add(job, facts) : Update(job, facts);
}

void PhotoWriter::Remember(const ImportJob& job, const PictureFacts& facts) {
  if (facts.state == PictureState::kBroken) summary_.broken.push_back({job.path, facts.problem});
  if (facts.state == PictureState::kDamaged) summary_.damaged.push_back({job.path, facts.problem});
  if (LocationOf(job.path).empty())
    summary_.long_paths.push_back({job.path, "found again by folder and name"});
}

void PhotoWriter::Add(const ImportJob& job, const PictureFacts& facts) {
  const FolderId folder = mirror_.Ensure(ParentOf(job.path), job.import_root);
  const int32_t now = library_.Call([](auto& catalogue) { return catalogue.GetTime(); });
  const PHOTOINFO photo = NewPhotoRecord(job.path, facts, folder, now);
  StoreImage(photo, facts);
  batch_.Add(photo);
  batch_paths_.push_back(job.path);
  Collect(FactsOfPicture(photo.szGUID, job.path, facts));
}

void PhotoWriter::Collect(PhotoFacts facts) {
  if (facts_.empty()) flush_time_ = Clock::now() + kBatchAge;
  facts_.push_back(std::move(facts));
  if (facts_.size() >= kBatchRows) Flush();
}

void PhotoWriter::Update(const ImportJob& job, const PictureFacts& facts) {
  auto found = library_.Photo(job.known_guid);
  if (!found) return Add(job, facts);
  PHOTOINFO& photo = *found;
  const std::string old_key = ImageKeyOf(photo.GetLTBURL());
  RefreshPhotoRecord(facts, photo);
  StoreImage(photo, facts);
  if (!Store(photo, job.path, false)) return;
  ++summary_.updated;
  Collect(FactsOfPicture(photo.szGUID, job.path, facts));
  if (!old_key.empty() && old_key != ImageKeyOf(photo.GetLTBURL())) images_.Remove(old_key);
}

/// When the store fails, the rows that wait for their batch have their images already.
void PhotoWriter::StoreImage(const PHOTOINFO& photo, const PictureFacts& facts) {
  if (facts.thumbnail.empty()) return;
  try {
    images_.Put(ImageKeyOf(photo.GetLTBURL()), facts.thumbnail);
  } catch (const ToolError&) {
    Flush();
    throw;
  }
}

void PhotoWriter::Flush() {
  flush_time_ = Clock::time_point::max();
  FlushRows();
  FlushFacts();
  cameras_.Write();
}

void PhotoWriter::FlushFacts() {
  if (!facts_.empty()) library_.FactsOfPhotos().Put(facts_);
  facts_.clear();
}

void PhotoWriter::FlushRows() {
  if (batch_.IsEmpty()) return;
  if (StoreBatch()) {
    summary_.added += batch_paths_.size();
    library_.CallSearch([&](auto& copy) { copy.PhotosAdded(batch_); });
  } else {
    WriteOneByOne();
  }
  batch_.RemoveAll();
  batch_paths_.clear();
}

bool PhotoWriter::StoreBatch() {
  try {
    return library_.Call([&](auto& catalogue) { return catalogue.AddPhotoInfo(batch_); });
  } catch (const ToolError&) {
    return false;
  }
}

/// The batch stopped at some row: those before it are in, those after it were not tried.
void PhotoWriter::WriteOneByOne() {
  for (int i = 0; i < batch_.GetSize(); ++i) {
    if (Store(batch_[i], batch_paths_[static_cast<size_t>(i)], true)) {
      ++summary_.added;
      continue;
    }
    std::erase_if(facts_, [&](const auto& facts) { return facts.guid == batch_[i].szGUID; });
    if (const std::string key = ImageKeyOf(batch_[i].GetLTBURL()); !key.empty())
      images_.Remove(key);
  }
}

/// A row that the catalogue refuses is the row's trouble as long as the catalogue takes others; a
/// full disk and the like end the import.
bool PhotoWriter::Store(const PHOTOINFO& photo, const std::string& path, bool is_new) {
  try {
    const bool stored = library_.Call([&](auto& catalogue) {
      return is_new ? catalogue.AddPhotoInfo(photo, true) : catalogue.SetPhotoInfo(photo, false);
    });
    library_.CallSearch([&](auto& copy) { copy.PhotosChanged({photo.szGUID}); });
    return stored;
  } catch (const ToolError& error) {
    if (!error.ConcernsValue()) throw;
    summary_.not_stored.push_back({path, error.what()});
    return false;
  }
}

}  // namespace vdsto
