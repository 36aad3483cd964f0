#include <chrono>
#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <random>
#include <thread>
#include <tuple>

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
  static constexpr unsigned kRounds = 150;

  /// Adds, removes and compacts until it is killed.
  [[noreturn]] void WorkOn(unsigned seed) {
    std::mt19937 random(seed);
    std::ignore = Follow();
    if (!storage_.LoadStorageFile(path_.c_str(), 2, 3)) std::_Exit(3);
    if (random() % 4 == 0) storage_.GetClusterArray();
    for (;;) {
      const int key = static_cast<int>(random() % kKeys);
      const bool is_there = live_.count(key) != 0;
      Step step{random() % 40 == 0 ? Step::compact
                : is_there         ? Step::remove
                                   : Step::add,
                key, seed * 100000 + static_cast<unsigned>(random() % 100000), false};
      Say(step);
      if (!Change(step, random)) std::_Exit(4);
      step.is_done = true;
      Say(step);
      Apply(step);
    }
  }
  void Say(const Step& step) {
    std::ofstream steps(steps_, std::ios::binary | std::ios::app);
    if (!steps.write(reinterpret_cast<const char*>(&step), sizeof step).flush()) std::_Exit(2);
  }
  /// Takes over what was said since the last call; answers with what was begun last and not done.
  std::optional<Step> Follow() {
    std::ifstream steps(steps_, std::ios::binary);
    steps.seekg(followed_);
    Step step{};
    std::optional<Step> pending;
    for (; steps.read(reinterpret_cast<char*>(&step), sizeof step); followed_ += sizeof step) {
      if (step.is_done) Apply(step);
      pending = step.is_done ? std::nullopt : std::optional(step);
    }
    return pending;
  }
  /// Kills a process that works here, at any instant once it has begun.
  void KillOne(const std::string& order, std::chrono::microseconds after) {
    ChildProcess process(order);
    const auto begun = [&] {
      return std::filesystem::file_size(steps_) > std::uintmax_t(followed_);
    };
    for (int i = 0; i < 60'000 && !begun(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    std::this_thread::sleep_for(after);
    ASSERT_TRUE(process.Kill()) << "the process ended by itself";
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
  void Recover(const std::optional<Step>& pending) {
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
      ASSERT_TRUE(pending && pending->key == key) << key;
      ASSERT_EQ(found, pending->kind == Step::add ? DataOf(*pending) : "-");
      Step step = *pending;
      step.is_done = true;
      Say(step);
    }
    std::ignore = Follow();
    storage_.FreeStorageFile();
  }

  std::string steps_ = Path("steps");  ///< what the processes said
  std::streamoff followed_ = 0;        ///< as far as it was taken over
  std::map<int, Step> live_;
  int repairs_ = 0;
};

TEST_F(Crash, LosesNothingThatWasAcknowledged) {
  if (ChildProcess::Order() != nullptr)
    WorkOn(static_cast<unsigned>(std::stoul(ChildProcess::Order())));
  Make(kText, 12);
  storage_.FreeStorageFile();
  Write("steps", "");
  std::mt19937 random(5);
  int compactions = 0;
  for (unsigned round = 0; round < kRounds && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    KillOne(std::to_string(round), std::chrono::microseconds(random() % 60000));
    const auto pending = Follow();
    compactions += pending && pending->kind == Step::compact;
    Recover(pending);
  }
  EXPECT_GT(compactions, static_cast<int>(kRounds / 30));
  RecordProperty("killed_in_compactions", compactions);
  RecordProperty("repairs", repairs_);
}

}  // namespace
