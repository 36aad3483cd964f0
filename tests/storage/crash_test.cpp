#if !defined(_WIN32)
#include <signal.h>

#include <chrono>
#include <map>
#include <random>
#include <thread>

#include "tests/storage/record_test.h"
#include "vdstomgr/storage/repair_storage.h"
#include "vdstomgr/storage/verify_storage.h"

namespace {

/// What a process says before (`is_done` false) and after it changes a record, or compacts.
struct Step {
  enum Kind : int { add, remove, compact } kind;
  int key;
  unsigned version;
  bool is_done;
};

std::string KeyOf(int key) {
  return "key " + std::to_string(key * 7919 % 1000);
}

std::string DataOf(const Step& step) {
  std::mt19937 random(step.version);
  return std::string(random() % 20000, static_cast<char>(step.version)) + KeyOf(step.key);
}

class Crash : public Records {
 protected:
  static constexpr int kKeys = 300;

  /// Adds, removes and compacts until it is killed.
  [[noreturn]] void WorkOn(unsigned seed, int pipe) {
    std::mt19937 random(seed);
    const auto say = [&](Step& step, bool is_done) {
      step.is_done = is_done;
      if (write(pipe, &step, sizeof step) != sizeof step) _exit(2);
    };
    if (!storage_.LoadStorageFile(path_.c_str(), 2, 3)) _exit(3);
    if (random() % 4 == 0) storage_.GetClusterArray();
    for (;;) {
      const int key = static_cast<int>(random() % kKeys);
      const bool is_there = live_.count(key) != 0;
      Step step{random() % 40 == 0 ? Step::compact
                : is_there         ? Step::remove
                                   : Step::add,
                key, seed * 100000 + static_cast<unsigned>(random() % 100000), false};
      say(step, false);
      if (!Change(step, random)) _exit(4);
      say(step, true);
      Apply(step);
    }
  }
  bool Change(const Step& step, std::mt19937& random) {
    if (step.kind == Step::add) return Put(KeyOf(step.key), DataOf(step), random() % 3 != 0);
    if (step.kind == Step::remove) {
      return storage_.RemoveAt(storage_.FindString(KeyOf(step.key).c_str(), true));
    }
    if (random() % 2 == 0) return storage_.CompactStorageFileOnline(path_.c_str(), 0);
    storage_.FreeStorageFile();
    return CRkStorageManager::CompactStorageFile(path_.c_str()) && DeleteBackups() &&
           storage_.LoadStorageFile(path_.c_str(), 2, 3);
  }
  bool DeleteBackups() const {
    for (const std::string& file : {path_, index_}) std::filesystem::remove(file + ".bak");
    return true;
  }
  void Apply(const Step& step) {
    if (step.kind == Step::add) live_[step.key] = step;
    if (step.kind == Step::remove) live_.erase(step.key);
  }

  /// Opens what a killed process has left; what it was doing may be done or not.
  void Recover(const Step* pending) {
    const auto is_there = [](const std::string& file) { return std::filesystem::exists(file); };
    if (!is_there(path_) || !is_there(index_)) {
      ASSERT_TRUE(vdstomgr::RepairStorage(path_.c_str()).repaired);
      ++repairs_;
    }
    DeleteBackups();
    ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
    for (const auto& finding : vdstomgr::VerifyStorage(path_.c_str()).findings) {
      ASSERT_EQ(finding.fault, vdstomgr::StorageFault::RecordWithoutCluster) << finding.text;
    }
    for (int key = 0; key < kKeys; ++key) {
      const auto expected = live_.find(key);
      const std::string wanted = expected == live_.end() ? "-" : DataOf(expected->second);
      const std::string found = Find(KeyOf(key));
      if (found == wanted) continue;
      ASSERT_TRUE(pending != nullptr && pending->key == key) << key;
      ASSERT_EQ(found, pending->kind == Step::add ? DataOf(*pending) : "-");
      Apply(*pending);
    }
    storage_.FreeStorageFile();
  }

  std::map<int, Step> live_;
  int repairs_ = 0;
};

TEST_F(Crash, LosesNothingThatWasAcknowledged) {
  Make(kText, 12);
  storage_.FreeStorageFile();
  std::mt19937 random(5);
  int compactions = 0;
  for (unsigned round = 0; round < 150 && !HasFatalFailure(); ++round) {
    SCOPED_TRACE(round);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t process = Start([&]() -> bool { WorkOn(round, ends[1]); });
    close(ends[1]);
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 60000));
    kill(process, SIGKILL);
    Step step{};
    Step last{};
    bool has_pending = false;
    while (read(ends[0], &step, sizeof step) == sizeof step) {
      has_pending = !step.is_done;
      if (step.is_done) Apply(step);
      last = step;
    }
    close(ends[0]);
    int status = 0;
    waitpid(process, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the process ended by itself: " << WEXITSTATUS(status);
    compactions += has_pending && last.kind == Step::compact;
    Recover(has_pending ? &last : nullptr);
  }
  EXPECT_GT(compactions, 5);
  RecordProperty("killed_in_compactions", compactions);
  RecordProperty("repairs", repairs_);
}

}  // namespace
#endif
