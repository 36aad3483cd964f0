#include "tools/vdsto/import/importer.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <exception>
#include <filesystem>
#include <system_error>
#include <thread>
#include <unordered_set>
#include <variant>

#include "tools/vdsto/import/bounded_queue.h"
#include "tools/vdsto/import/folder_mirror.h"
#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/import/moved_photos.h"
#include "tools/vdsto/import/photo_writer.h"
#include "tools/vdsto/import/progress.h"
#include "tools/vdsto/import/source_walk.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/picture/picture_probe.h"
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

ProbeResult Probe(ImportJob job) {
  try {
    PictureFacts facts = ProbePicture(job.path);
    return {std::move(job), std::move(facts)};
  } catch (const std::system_error& error) {
    return {std::move(job), error.code().message()};
  } catch (const std::bad_alloc&) {
    return {std::move(job), std::string("not enough memory")};
  }
}

class Import {
 public:
  Import(Library& library, std::shared_ptr<const ImageSeal> seal, bool quiet)
      : images_(library.Folder(), std::move(seal)),
        mirror_(library),
        moved_(library),
        writer_(library, images_, mirror_, summary_),
        progress_(quiet),
        walk_([this](auto& root, auto& folder, auto& files) {
          return QueueChanged(root, folder, files);
        }) {
    images_.Open();
    library.FactsOfPhotos().Prepare();
    library.FactsOfPhotos().ForEach([&](const auto& facts) { with_facts_.insert(facts.guid); });
  }

  ImportSummary Run(const ImportRoots& roots) {
    const auto start = std::chrono::steady_clock::now();
    {
      std::jthread walker([&] { Walk(roots.folders); });
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
    Finish(roots);
    summary_.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return std::move(summary_);
  }

 private:
  void Walk(const std::vector<std::string>& roots) {
    try {
      std::all_of(roots.begin(), roots.end(),
                  [&](const std::string& root) { return walk_.Walk(root); });
    } catch (...) {
      walk_error_ = std::current_exception();
    }
    jobs_.Close();
  }

  bool QueueChanged(const std::string& root, const std::string& folder,
                    const std::vector<SourceEntry>& files) {
    const auto id = mirror_.Find(folder);
    const auto rows = id ? mirror_.Rows(*id) : nullptr;
    for (const SourceEntry& file : files) {
      const KnownFile* known = rows ? rows->Find(file.path) : nullptr;
      const auto moved = known ? std::nullopt : moved_.Find(file.path);
      if (moved) known = &moved->file;
      const bool is_in_trash = moved && moved->is_in_trash;
      if (is_in_trash || (known && IsUpToDate(*known, file))) {
        ++(is_in_trash ? in_trash_ : unchanged_);
        continue;
      }
      ++found_;
      if (IsInterrupted() || !jobs_.Push({file.path, root, known ? known->guid : std::string()}))
        return false;
    }
    if (id) mirror_.Release(*id);
    return !IsInterrupted();
  }

  bool IsUpToDate(const KnownFile& known, const SourceEntry& file) {
    return known.stamp == file.stamp && !known.shows_original &&
           (known.image_key.empty() || images_.Has(known.image_key)) &&
           with_facts_.contains(known.guid);
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
    writer_.Flush();
    images_.Sync();
    progress_.Clear();
  }

  void Take(const ProbeResult& result) {
    ++done_;
    progress_.Show(done_, found_, result.job.path);
    if (const auto* facts = std::get_if<PictureFacts>(&result.outcome)) {
      writer_.Write(result.job, *facts);
    } else {
      summary_.unreadable.push_back({result.job.path, std::get<std::string>(result.outcome)});
    }
  }

  void Finish(const ImportRoots& roots) {
    summary_.unchanged = unchanged_;
    summary_.in_trash = in_trash_;
    summary_.hidden = walk_.Hidden();
    for (const auto& remarks : {roots.unreadable, walk_.Unreadable()})
      summary_.unreadable.insert(summary_.unreadable.end(), remarks.begin(), remarks.end());
    summary_.unreadable_roots = roots.unreadable.size() + CountUnreadable(roots.folders);
    summary_.folders_created = mirror_.CreatedFolders();
    summary_.interrupted = IsInterrupted();
  }

  /// Those that went away since they were checked.
  size_t CountUnreadable(const std::vector<std::string>& folders) const {
    return static_cast<size_t>(std::count_if(
        walk_.Unreadable().begin(), walk_.Unreadable().end(), [&](const Remark& remark) {
          return std::find(folders.begin(), folders.end(), remark.path) != folders.end();
        }));
  }

  ImageStore images_;
  FolderMirror mirror_;
  std::unordered_set<std::string> with_facts_;
  MovedPhotos moved_;  // the walker's, until it ends
  ImportSummary summary_;
  PhotoWriter writer_;
  Progress progress_;
  BoundedQueue<ImportJob> jobs_{kJobsAhead};
  BoundedQueue<ProbeResult> results_{kResultsAhead};
  std::atomic<unsigned> probers_left_{0};
  std::atomic<uint64_t> found_{0};
  std::atomic<uint64_t> unchanged_{0};
  std::atomic<uint64_t> in_trash_{0};
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

ImportSummary ImportFolders(Library& library, std::shared_ptr<const ImageSeal> seal,
                            const ImportRoots& roots, bool quiet) {
  const InterruptionGuard guard;
  return Import(library, std::move(seal), quiet).Run(roots);
}

}  // namespace vdsto
