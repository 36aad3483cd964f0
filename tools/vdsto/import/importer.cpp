#include "tools/vdsto/import/importer.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <exception>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>
#include <variant>

#include "tools/vdsto/import/bounded_queue.h"
#include "tools/vdsto/import/file_owners.h"
#include "tools/vdsto/import/folder_mirror.h"
#include "tools/vdsto/import/gone_photos.h"
#include "tools/vdsto/import/import_places.h"
#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/import/known_photos.h"
#include "tools/vdsto/import/photo_writer.h"
#include "tools/vdsto/import/progress.h"
#include "tools/vdsto/import/sidecars.h"
#include "tools/vdsto/import/source_walk.h"
#include "tools/vdsto/library/image_key.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/picture/picture_probe.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr size_t kJobsAhead = 1024;
constexpr size_t kResultsAhead = 256;
constexpr std::chrono::milliseconds kLookUp{200};

struct ProbeResult {
  ImportJob job;
  std::variant<PictureFacts, std::string> outcome;  ///< or why the file could not be read
};

/// Fails when nothing in the folder can be read.
std::string ReadableFolder(const std::string& folder, std::error_code& error) {
  std::string path = std::filesystem::canonical(folder, error).string();
  if (!error) std::filesystem::directory_iterator(path, error);
  if (!error && access(path.c_str(), X_OK) != 0) error.assign(errno, std::generic_category());
  return path;
}

const std::vector<std::string>& Walked(const ImportRoots& roots) {
  return roots.changed.empty() ? roots.folders : roots.changed;
}

/// The folder to import that `path` is or lies below.
const std::string& RootOf(const std::string& path, const ImportRoots& roots) {
  const auto holds = [&](const std::string& root) { return path == root || IsBelow(path, root); };
  const auto root = std::find_if(roots.folders.begin(), roots.folders.end(), holds);
  return root == roots.folders.end() ? path : *root;
}

ProbeResult Probe(ImportJob job) {
  try {
    PictureFacts facts = ProbePicture(job.path, job.sidecar);
    return {std::move(job), std::move(facts)};
  } catch (const std::system_error& error) {
    return {std::move(job), error.code().message()};
  } catch (const std::bad_alloc&) {
    return {std::move(job), std::string("not enough memory")};
  }
}

class Import {
 public:
  Import(Library& library, const ImportRoots& roots, bool quiet)
      : library_(library),
        roots_(roots),
        images_(library.Folder(), SealOf(library)),
        mirror_(library),
        places_(library.FactsOfPhotos().Places(), Walked(roots)),
        known_(library, places_),
        owners_(library, known_, places_),
        writer_(library, images_, mirror_, places_, summary_),
        progress_(quiet),
        walk_([this](auto& root, auto& folder,
                     auto& files) { return QueueChanged(root, folder, files); },
              [this](auto& folder) { places_.Enter(folder); }) {
    images_.Open();
  }

  ImportSummary Run() {
    const auto start = std::chrono::steady_clock::now();
    {
      std::jthread walker([&] { Walk(); });
      const std::vector<std::jthread> probers = StartProbers();
      try {
        WriteResults();
      } catch (...) {
        jobs_.Cancel();
        results_.Cancel();
        throw;
      }
    }
    if (walk_error_) std::rethrow_exception(walk_error_);
    Finish();
    summary_.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return std::move(summary_);
  }

 private:
  void Walk() {
    const std::vector<std::string>& folders = Walked(roots_);
    try {
      std::all_of(folders.begin(), folders.end(), [&](const std::string& folder) {
        return walk_.Walk(RootOf(folder, roots_), folder);
      });
    } catch (...) {
      walk_error_ = std::current_exception();
    }
    jobs_.Close();
  }

  bool QueueChanged(const std::string& root, const std::string& folder,
                    const std::vector<SourceEntry>& files) {
    const auto id = mirror_.Find(folder);
    const auto rows = id ? mirror_.Rows(*id) : nullptr;
    const Sidecars sidecars(files);
    for (const SourceEntry& file : files) {
      if (IsSidecar(file.path)) {
        ++sidecars_;
        continue;
      }
      const SourceEntry* const sidecar = sidecars.Of(file.path);
      const auto known = FindKnown(file.path, rows.get());
      if (known && IsLeftAlone(*known, file, sidecar)) continue;
      if (roots_.unfinished.contains(file.path)) continue;
      ++found_;
      if (IsInterrupted() || !jobs_.Push({file.path, root, known ? known->guid : std::string(),
                                          sidecar ? sidecar->path : std::string()}))
        return false;
    }
    if (id) mirror_.Release(*id);
    return !IsInterrupted();
  }

  /// In the folder that mirrors the file's, or wherever the user has moved it. Without facts, a
  /// file whose path is too long for its row is known by its name.
  std::optional<KnownFile> FindKnown(const std::string& path, const FolderRows* rows) {
    if (const KnownFile* here = rows ? rows->Find(path) : nullptr) return *here;
    if (const auto index = known_.FindPath(path)) {
      if (const auto photo = library_.Photo(known_.GuidOf(*index))) return KnownFileOf(*photo);
    }
    const bool is_long = rows && LocationOf(path).empty();
    const KnownFile* named = is_long ? rows->FindNamed(path) : nullptr;
    const auto index = named ? known_.Find(named->guid) : std::nullopt;
    return index && !known_[*index].has_facts ? std::optional(*named) : std::nullopt;
  }

  bool IsLeftAlone(const KnownFile& known, const SourceEntry& file, const SourceEntry* sidecar) {
    const auto index = known_.Find(known.guid);
    if (!index) return false;
    known_.MarkSeen(*index);
    const bool is_in_trash = IsTrashFolder(known_[*index].folder);
    const bool is_left_alone =
        is_in_trash || (known_[*index].has_facts && !known_[*index].is_gone &&
                        IsUpToDate(known, file) && IsReadFrom(*index, sidecar));
    if (is_left_alone) ++(is_in_trash ? in_trash_ : unchanged_);
    return is_left_alone;
  }

  bool IsUpToDate(const KnownFile& known, const SourceEntry& file) {
    return known.stamp == file.stamp && !known.shows_original &&
           (known.image_key.empty() || images_.Has(known.image_key));
  }

  bool IsReadFrom(KnownPhotos::Index index, const SourceEntry* sidecar) const {
    return known_.SidecarOf(index) == (sidecar ? sidecar->stamp : FileStamp());
  }

  std::vector<std::jthread> StartProbers() {
    std::vector<std::jthread> probers;
    probers_left_ = std::max(1u, std::thread::hardware_concurrency());
    for (unsigned i = probers_left_; i > 0; --i) probers.emplace_back([this] { ProbeJobs(); });
    return probers;
  }

  void ProbeJobs() {
    while (auto job = jobs_.Pop()) {
      if (!results_.Push(Probe(std::move(*job)))) break;
    }
    if (--probers_left_ == 0) results_.Close();
  }

  void WriteResults() {
    bool timed_out = false;
    do {
      const auto now = std::chrono::steady_clock::now();
      const auto result =
          results_.PopUntil(std::min(writer_.FlushTime(), now + kLookUp), timed_out);
      if (IsInterrupted()) jobs_.Cancel();
      if (result) Take(*result);
      if (std::chrono::steady_clock::now() >= writer_.FlushTime()) writer_.Flush();
      if (!result && !timed_out) break;
    } while (true);
    if (!IsInterrupted() && !walk_error_) FinishWalk();
    writer_.Flush();
    images_.Sync();
    progress_.Clear();
  }

  void Take(const ProbeResult& result) {
    ++done_;
    progress_.Show(done_, found_, result.job.path);
    if (const auto* facts = std::get_if<PictureFacts>(&result.outcome)) {
      Write(result.job, *facts);
    } else {
      summary_.unreadable.push_back({result.job.path, std::get<std::string>(result.outcome)});
    }
  }

  void Write(const ImportJob& job, const PictureFacts& facts) {
    if (!facts.IsPicture()) return writer_.Write(job, facts);
    const auto [fate, photo] = owners_.Decide(job, facts);
    switch (fate) {
      case FileOwners::Fate::kAsKnown:
        return writer_.Write(job, facts);
      case FileOwners::Fate::kMoved:
        return writer_.Move(job, facts, photo);
      case FileOwners::Fate::kSame:
        return void(++unchanged_);
      case FileOwners::Fate::kWaits:
        return;
    }
  }

  /// The walker is done with what it shares.
  void FinishWalk() {
    for (const auto& [file, photo] : owners_.Resolve()) {
      if (photo) {
        writer_.Move(file.job, file.picture, *photo);
        continue;
      }
      const ProbeResult again = Probe(file.job);
      if (const auto* facts = std::get_if<PictureFacts>(&again.outcome))
        writer_.Write(file.job, *facts);
    }
    writer_.Flush();
    NoteGonePhotos(library_, known_, places_, summary_);
    if (!known_.Orphans().empty()) library_.FactsOfPhotos().Remove(known_.Orphans());
  }

  void Finish() {
    library_.FactsOfPhotos().SetPlaces(places_.Places());
    summary_.unchanged = unchanged_;
    summary_.in_trash = in_trash_;
    summary_.hidden = walk_.Hidden();
    summary_.special = walk_.Special();
    summary_.sidecars = sidecars_;
    auto& unreadable = summary_.unreadable;
    unreadable.insert(unreadable.end(), walk_.Unreadable().begin(), walk_.Unreadable().end());
    NoteUnreadable();
    unreadable.insert(unreadable.begin(), roots_.unreadable.begin(), roots_.unreadable.end());
    summary_.unreadable_roots = roots_.unreadable.size() + CountUnreadable(roots_.folders);
    summary_.folders_created = mirror_.CreatedFolders();
    summary_.interrupted = IsInterrupted();
  }

  /// What earlier imports could not read stays noted where this one has not looked.
  void NoteUnreadable() {
    auto files = library_.FactsOfPhotos().Unreadable();
    const auto is_out_of_date = [&](const UnreadableFile& file) {
      return !IsInterrupted() && places_.IsImported(file.path);
    };
    const bool had_none = std::erase_if(files, is_out_of_date) == 0 && summary_.unreadable.empty();
    if (had_none) return;
    for (const auto& [path, reason] : summary_.unreadable) {
      std::erase_if(files, [&](const UnreadableFile& file) { return file.path == path; });
      files.push_back({path, reason});
    }
    library_.FactsOfPhotos().SetUnreadable(files);
  }

  /// Those that went away since they were checked.
  size_t CountUnreadable(const std::vector<std::string>& folders) const {
    return static_cast<size_t>(std::count_if(
        walk_.Unreadable().begin(), walk_.Unreadable().end(), [&](const Remark& remark) {
          return std::find(folders.begin(), folders.end(), remark.path) != folders.end();
        }));
  }

  Library& library_;
  const ImportRoots& roots_;
  ImageStore images_;
  FolderMirror mirror_;
  ImportPlaces places_;
  KnownPhotos known_;
  FileOwners owners_;
  ImportSummary summary_;
  PhotoWriter writer_;
  Progress progress_;
  BoundedQueue<ImportJob> jobs_{kJobsAhead};
  BoundedQueue<ProbeResult> results_{kResultsAhead};
  std::atomic<unsigned> probers_left_{0};
  std::atomic<uint64_t> found_{0};
  std::atomic<uint64_t> unchanged_{0};
  std::atomic<uint64_t> in_trash_{0};
  std::atomic<uint64_t> sidecars_{0};
  uint64_t done_ = 0;
  SourceWalk walk_;                // the walker's, until it ends
  std::exception_ptr walk_error_;  // the walker's, until it ends
};

}  // namespace

ImportRoots CheckImportRoots(const std::vector<std::string>& folders) {
  ImportRoots roots;
  for (const std::string& folder : folders) {
    std::error_code error;
    const std::string path = ReadableFolder(folder, error);
    error ? roots.unreadable.push_back({folder, error.message()}) : roots.folders.push_back(path);
  }
  if (!roots.folders.empty()) return roots;
  std::string list;
  for (const auto& [folder, reason] : roots.unreadable)
    list += (list.empty() ? "" : "; ") + Printable(folder) + ": " + reason;
  throw ToolError(ExitCode::kNotFound, list);
}

ImportSummary ImportFolders(Library& library, const ImportRoots& roots, bool quiet) {
  const InterruptionGuard guard;
  library.FactsOfPhotos().Prepare();
  return Import(library, roots, quiet).Run();
}

}  // namespace vdsto
