#include "tools/vdsto/upload/uploader.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/upload/file_upload.h"

namespace vdsto {
namespace {

/// How often the progress is drawn and noted results are written.
constexpr std::chrono::milliseconds kTick{250};
constexpr std::chrono::milliseconds kFirstPause{250};
constexpr std::chrono::seconds kLongestPause{60};

class Run {
 public:
  Run(UploadQueue& queue, UploadTarget& target, const UploadOptions& options)
      : queue_(queue),
        target_(target),
        options_(options),
        limiter_(options.bytes_per_second),
        ready_(queue.Ready()),
        progress_(ready_.files, ready_.bytes, options.quiet) {}

  UploadSummary Do() {
    const auto start = std::chrono::steady_clock::now();
    try {
      WorkUntilDone();
      target_.Settle();
    } catch (const UploadError& error) {
      summary_.stopped_by = error.what();
    }
    progress_.Clear();
    Attempt([&] { queue_.Release(); });
    if (failure_) std::rethrow_exception(failure_);
    summary_.bytes = progress_.Sent();
    summary_.left = queue_.Ready().files;
    summary_.interrupted = IsInterrupted();
    summary_.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return std::move(summary_);
  }

 private:
  void WorkUntilDone() {
    const auto files = std::max<uint64_t>(1, ready_.files);
    workers_left_ = static_cast<int>(std::min<uint64_t>(files, options_.threads));
    std::vector<std::jthread> workers;
    for (int i = workers_left_; i > 0; --i) workers.emplace_back([this] { Work(); });
    std::unique_lock lock(mutex_);
    while (!done_.wait_for(lock, kTick, [&] { return workers_left_ == 0; })) {
      lock.unlock();
      Attempt([&] { queue_.Write(); });
      progress_.Draw();
      lock.lock();
    }
  }

  /// A thread's work.
  void Work() {
    Attempt([&] {
      const std::unique_ptr<UploadTarget> target = target_.Another();
      while (!is_stopping_ && !IsInterrupted()) {
        const auto job = queue_.Claim();
        if (!job) break;
        Upload(*job, *target);
      }
    });
    const std::lock_guard lock(mutex_);
    if (--workers_left_ == 0) done_.notify_one();
  }

  /// What fails here ends the whole run.
  template <class Body>
  void Attempt(Body body) {
    try {
      body();
    } catch (...) {
      const std::lock_guard lock(mutex_);
      if (!failure_) failure_ = std::current_exception();
      is_stopping_ = true;
    }
  }

  void Upload(const QueuedFile& job, UploadTarget& target) {
    FileUpload upload({queue_, folders_, limiter_, progress_}, job);
    progress_.Begin(job.name);
    auto pause = kFirstPause;
    for (int attempt = 0;; ++attempt) {
      try {
        return NoteDone(job, upload.Try(target));
      } catch (const UploadStopped&) {
        return NotePart(job, target);
      } catch (const UploadError& error) {
        NotePart(job, target);
        const bool is_final = !IsWorthRetrying(error.Fault()) || attempt == options_.retries;
        if (is_final || is_stopping_) return NoteFailed(job, error);
      }
      folders_.Forget(job.folder);
      if (!SleepUnlessInterrupted(pause)) return;
      pause = std::min<std::chrono::milliseconds>(2 * pause, kLongestPause);
    }
  }

  /// What the target has let go of has to be sent again.
  void NotePart(const QueuedFile& job, const UploadTarget& target) {
    if (!target.KeepsParts()) queue_.NoteSent(job.guid, 0);
  }

  void NoteDone(const QueuedFile& job, const Uploaded& uploaded) {
    queue_.NoteFinished(job.guid, uploaded.size);
    progress_.AddFile();
    const std::lock_guard lock(mutex_);
    ++(uploaded.was_there ? summary_.already_there : summary_.uploaded);
    if (!uploaded.name.ends_with(job.name) && !uploaded.was_there)
      summary_.renamed.push_back({job.path, uploaded.name});
  }

  void NoteFailed(const QueuedFile& job, const UploadError& error) {
    queue_.NoteFailed(job.guid, error.Fault());
    const std::lock_guard lock(mutex_);
    summary_.failures.push_back({job.path, error.Fault(), error.what()});
    if (!ConcernsAllFiles(error.Fault())) return;
    is_stopping_ = true;
    if (summary_.stopped_by.empty()) summary_.stopped_by = error.what();
  }

  UploadQueue& queue_;
  UploadTarget& target_;
  const UploadOptions& options_;
  RateLimiter limiter_;
  TargetFolders folders_;
  const UploadQueue::Sum ready_;
  UploadProgress progress_;
  std::atomic<bool> is_stopping_{false};

  std::mutex mutex_;  // guards:
  std::condition_variable done_;
  int workers_left_ = 0;
  std::exception_ptr failure_;
  UploadSummary summary_;
};

}  // namespace

UploadSummary RunUploads(UploadQueue& queue, UploadTarget& target, const UploadOptions& options) {
  const InterruptionGuard guard;
  return Run(queue, target, options).Do();
}

}  // namespace vdsto
