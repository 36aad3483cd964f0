#include "bench/storage_workload.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <numeric>
#include <random>

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kReads = 100'000;
constexpr int kRemovals = 2'000;
constexpr double kLongestPut = 600e6;  // us

/// What a workload puts: the keys in the order of their coming, and a blob for each.
class Records {
 public:
  explicit Records(const Workload& workload)
      : workload_(workload),
        blob_bytes_(std::size_t(workload.blob_bytes)),
        noise_(kNoiseBytes + blob_bytes_) {
    std::mt19937_64 random(1);
    for (unsigned char& byte : noise_) byte = static_cast<unsigned char>(random());
    for (int i = 0; i < workload.records; ++i) keys_.push_back(RandomKey(random));
    for (int i = 0; i < kReads; ++i) missing_.push_back(RandomKey(random));
  }

  const Workload& Kind() const { return workload_; }
  StorageClock Clock() const { return workload_.clock; }
  int Count() const { return int(keys_.size()); }
  const char* KeyAt(int i) const { return keys_[std::size_t(i)].data(); }
  const char* MissingKeyAt(int i) const { return missing_[std::size_t(i)].data(); }
  Blob BlobAt(int i) const { return {noise_.data() + std::size_t(i) % kNoiseBytes, blob_bytes_}; }

  /// The records in a random order, or by descending keys.
  std::vector<int> Shuffled() const {
    std::vector<int> order = InOrder();
    std::shuffle(order.begin(), order.end(), std::mt19937_64(2));
    return order;
  }
  std::vector<int> Descending() const {
    std::vector<int> order = InOrder();
    std::sort(order.begin(), order.end(),
              [this](int left, int right) { return std::strcmp(KeyAt(left), KeyAt(right)) > 0; });
    return order;
  }

 private:
  static constexpr std::size_t kNoiseBytes = 1 << 18;
  using Text = std::array<char, kKeyLength + 1>;

  static Text RandomKey(std::mt19937_64& random) {
    Text key;
    for (int i = 0; i < kKeyLength; ++i) {
      key[std::size_t(i)] = "0123456789ABCDEF"[random() >> 60];
    }
    key.back() = '\0';
    return key;
  }

  std::vector<int> InOrder() const {
    std::vector<int> order(keys_.size());
    std::iota(order.begin(), order.end(), 0);
    return order;
  }

  Workload workload_;
  std::size_t blob_bytes_;
  std::vector<unsigned char> noise_;
  std::vector<Text> keys_;
  std::vector<Text> missing_;
};

/// Counts microseconds from its making on.
class Stopwatch {
 public:
  explicit Stopwatch(StorageClock clock)
      : clock_(clock == StorageClock::elapsed ? CLOCK_MONOTONIC : CLOCK_PROCESS_CPUTIME_ID),
        start_(Now()) {}

  double Elapsed() const { return Now() - start_; }

 private:
  double Now() const {
    timespec now = {};
    ::clock_gettime(clock_, &now);
    return double(now.tv_sec) * 1e6 + double(now.tv_nsec) / 1e3;
  }

  clockid_t clock_;
  double start_;
};

/// Microseconds for each of `count` calls.
template <class Operation>
double TimeEach(StorageClock clock, int count, Operation operation) {
  const Stopwatch watch(clock);
  for (int i = 0; i < count; ++i) operation(i);
  return watch.Elapsed() / count;
}

/// A number of one of the system's status files, which have KiB.
double MibOf(const char* file, const std::string& name) {
  std::ifstream status(file);
  std::string word;
  double kib = 0;
  while (status >> word) {
    if (word == name) status >> kib;
  }
  return kib / 1024;
}

/// Nobody must pay for what earlier work has left to write, nor for memory that a virtual machine
/// has returned to its host, which makes a put up to ten times slower: as much as a subject is
/// about to fill files with is taken and given back. It does not count as the subject's.
void Settle(const Workload& workload, StorageFigures& figures) {
  constexpr double kTimes = 1.5;
  constexpr double kLeastMib = 256;
  ::sync();
  figures.peak_mib = std::max(figures.peak_mib, MibOf("/proc/self/status", "VmHWM:"));
  const double files = double(workload.records) * workload.blob_bytes / (1 << 20);
  const double most = MibOf("/proc/meminfo", "MemAvailable:") / 2;
  const double mib = std::min(files * kTimes + kLeastMib, most);
  const auto size = std::size_t(mib) << 20;
  void* const memory =
      ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  Require(memory != MAP_FAILED, "mmap");
  std::memset(memory, 1, size);
  ::munmap(memory, size);
  std::ofstream("/proc/self/clear_refs") << 5;  // the peak is counted anew
}

/// Puts one by one until the time is up, which is a result too; the rest comes in bulk.
void Put(BlobStore& store, const Records& records, StorageFigures& figures) {
  const Stopwatch watch(records.Clock());
  int done = 0;
  while (done < records.Count() && (done % 256 != 0 || watch.Elapsed() < kLongestPut)) {
    store.Put(records.KeyAt(done), records.BlobAt(done));
    ++done;
  }
  figures.us[kPut] = watch.Elapsed() / done;
  figures.put_records = done;
  for (; done < records.Count(); ++done) store.BulkPut(records.KeyAt(done), records.BlobAt(done));
  store.FinishBulk();
}

void Read(BlobStore& store, const Records& records, StorageFigures& figures) {
  const std::vector<int> order = records.Shuffled();
  const int count = records.Count();
  figures.us[kFirstGet] = TimeEach(records.Clock(), count, [&](int i) {
    figures.sum += store.Get(records.KeyAt(order[std::size_t(i)]));
  });
  std::mt19937_64 random(3);
  std::uint64_t found = 0;
  figures.us[kGet] = TimeEach(records.Clock(), kReads, [&](int) {
    found += store.Get(records.KeyAt(int(random() % std::uint64_t(count)))) != 0;
  });
  figures.us[kGetMissing] = TimeEach(
      records.Clock(), kReads, [&](int i) { found += store.Get(records.MissingKeyAt(i)) != 0; });
  Require(found == kReads, "reading");
}

/// Measured on random records; then the highest keys go, untimed, until half of the records are
/// left. (The highest first, because that is the cheap end of a sorted array. Records lie in the
/// order of their random keys' arrival, so the files have their gaps everywhere.)
int Remove(BlobStore& store, const Records& records, StorageFigures& figures) {
  const std::vector<int> order = records.Shuffled();
  std::vector<bool> removed(order.size());
  const auto remove = [&](int record) {
    store.Remove(records.KeyAt(record));
    removed[std::size_t(record)] = true;
  };
  const int measured = std::min(kRemovals, records.Count() / 10);
  figures.us[kRemove] =
      TimeEach(records.Clock(), measured, [&](int i) { remove(order[std::size_t(i)]); });
  int live = records.Count() - measured;
  for (const int record : records.Descending()) {
    if (live <= records.Count() / 2) break;
    if (removed[std::size_t(record)]) continue;
    remove(record);
    --live;
  }
  return live;
}

void LiveThrough(const Records& records, const Subject& subject, const fs::path& folder,
                 StorageFigures& figures) {
  Settle(records.Kind(), figures);
  std::unique_ptr<BlobStore> store = subject.open(folder);
  Put(*store, records, figures);
  store.reset();
  Settle(records.Kind(), figures);
  store = subject.open(folder);
  Read(*store, records, figures);
  figures.private_mib = MibOf("/proc/self/status", "RssAnon:");
  const int live = Remove(*store, records, figures);
  Settle(records.Kind(), figures);
  const Stopwatch watch(records.Clock());
  if (store->Compact()) figures.us[kCompact] = watch.Elapsed() / live;
  int found = 0;
  for (int i = 0; i < records.Count(); ++i) found += store->Get(records.KeyAt(i)) != 0;
  Require(found == live, "reading after the compaction");
}

void PutInBulk(const Records& records, const Subject& subject, const fs::path& folder,
               StorageFigures& figures) {
  Settle(records.Kind(), figures);
  const std::unique_ptr<BlobStore> store = subject.open(folder);
  const Stopwatch watch(records.Clock());
  for (int i = 0; i < records.Count(); ++i) store->BulkPut(records.KeyAt(i), records.BlobAt(i));
  store->FinishBulk();
  figures.us[kBulkPut] = watch.Elapsed() / records.Count();
}

using Part = void (*)(const Records&, const Subject&, const fs::path&, StorageFigures&);

/// Runs a part of the workload in a child, whose memory is then the subject's and nobody else's.
void RunInChild(Part part, const Workload& workload, const Subject& subject, const fs::path& folder,
                StorageFigures& figures) {
  fs::remove_all(folder);
  fs::create_directories(folder);
  int channel[2];
  Require(::pipe(channel) == 0, "pipe");
  const pid_t child = ::fork();
  Require(child >= 0, "fork");
  if (child == 0) {
    part(Records(workload), subject, folder, figures);
    figures.peak_mib = std::max(figures.peak_mib, MibOf("/proc/self/status", "VmHWM:"));
    const bool told = ::write(channel[1], &figures, sizeof figures) == sizeof figures;
    ::_exit(told ? 0 : 1);
  }
  ::close(channel[1]);
  const bool heard = ::read(channel[0], &figures, sizeof figures) == sizeof figures;
  ::close(channel[0]);
  int status = 0;
  Require(::waitpid(child, &status, 0) == child && status == 0 && heard, subject.name.c_str());
  fs::remove_all(folder);
}

}  // namespace

StorageFigures Measure(const Workload& workload, const Subject& subject, const fs::path& folder) {
  StorageFigures figures;
  RunInChild(LiveThrough, workload, subject, folder, figures);
  RunInChild(PutInBulk, workload, subject, folder, figures);
  return figures;
}

}  // namespace bench
