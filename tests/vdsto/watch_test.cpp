#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <memory>
#include <sstream>
#include <thread>

#include "import_fixture.h"

namespace vdsto_test {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

class WatchTest : public ImportTest {
 protected:
  /// With a picture that is there already.
  void Start(const std::string& folder = "pictures") {
    WritePicture(Pictures("first.jpg"));
    watch_ = std::make_unique<Program>(std::vector<std::string>{
        "--library", Library(), "--json", "watch", "--settle", "1", temp_ / folder});
    ASSERT_TRUE(Await([&] { return Count() == 1; }));
  }

  static bool Await(const std::function<bool()>& is_so) {
    for (int i = 0; i < 300; ++i, std::this_thread::sleep_for(milliseconds(100)))
      if (is_so()) return true;
    return false;
  }

  /// The originals as one statement sees them, whatever the watch is doing.
  json Originals() const {
    return fs::exists(Catalogue()) ? Vdsto({"sql", "SELECT szOPURL FROM PhotoMaster"}).Json()
                                   : json::array();
  }
  size_t Count() const { return Originals().size(); }
  bool Has(std::string_view name) const {
    const json row = {{"szOPURL", Pictures(name)}};
    const json rows = Originals();
    return std::find(rows.begin(), rows.end(), row) != rows.end();
  }
  std::string GuidOf(std::string_view name) const { return Photos().at(Pictures(name))["guid"]; }

  /// The sum of `key` over what the watch has told, an object a line.
  uint64_t Stop(const std::string& key, size_t* rounds = nullptr) {
    watch_->Signal(SIGINT);
    outcome_ = watch_->Wait();
    EXPECT_EQ(outcome_.code, 130) << outcome_.err;
    std::istringstream lines(outcome_.out);
    uint64_t sum = 0;
    for (std::string line; std::getline(lines, line);) {
      const json value = json::parse(line)[key];
      sum += value.is_array() ? value.size() : value.get<uint64_t>();
      if (rounds) ++*rounds;
    }
    return sum;
  }

  std::unique_ptr<Program> watch_;
  Outcome outcome_;
};

TEST_F(WatchTest, TakesUpWhatHappensInTheFolders) {
  Start();
  WritePicture(Pictures("여행/깊은/둘.jpg"), 64, 48, 2);
  ASSERT_TRUE(Await([&] { return Has("여행/깊은/둘.jpg"); }));
  const std::string guid = GuidOf("여행/깊은/둘.jpg");
  ASSERT_EQ(Vdsto({"rate", "4", "둘.jpg"}).code, 0);

  fs::rename(Pictures("여행"), Pictures("trip"));
  ASSERT_TRUE(Await([&] { return Has("trip/깊은/둘.jpg"); }));
  WritePicture(Pictures("trip/깊은/셋.jpg"), 64, 48, 3);
  ASSERT_TRUE(Await([&] { return Has("trip/깊은/셋.jpg"); }));
  fs::rename(Pictures("trip/깊은/둘.jpg"), Pictures("moved.jpg"));
  ASSERT_TRUE(Await([&] { return Has("moved.jpg"); }));
  EXPECT_EQ(GuidOf("moved.jpg"), guid);
  EXPECT_EQ(Photos().at(Pictures("moved.jpg"))["rating"], 4);

  fs::remove(Pictures("trip/깊은/셋.jpg"));
  ASSERT_TRUE(Await([&] { return Vdsto({"missing"}).out.find("셋.jpg") != std::string::npos; }));
  EXPECT_EQ(Count(), 3u);
  size_t rounds = 0;
  EXPECT_EQ(Stop("moved", &rounds), 2u);
  EXPECT_GE(rounds, 5u);
}

/// The library lies in the watched folder, and no import of its own wakes the watch.
TEST_F(WatchTest, WaitsForAFileThatIsStillBeingWritten) {
  WritePicture(temp_ / "slow.jpg", 300, 200);
  const std::string bytes = ReadFile(temp_ / "slow.jpg");
  fs::remove(temp_ / "slow.jpg");
  Start(".");
  std::ofstream slow(Pictures("slow.jpg"), std::ios::binary);
  constexpr size_t kPieces = 15;
  for (size_t i = 0; i < kPieces; ++i, std::this_thread::sleep_for(milliseconds(200))) {
    const size_t from = bytes.size() * i / kPieces;
    slow << bytes.substr(from, bytes.size() * (i + 1) / kPieces - from) << std::flush;
  }
  slow.close();
  ASSERT_TRUE(Await([&] { return Has("slow.jpg"); }));
  std::this_thread::sleep_for(milliseconds(2500));
  size_t rounds = 0;
  EXPECT_EQ(Stop("damaged", &rounds), 0u);
  EXPECT_EQ(rounds, 2u) << outcome_.out;
}

TEST_F(WatchTest, WaitsForALibraryThatIsInUse) {
  Start();
  const int lock = open((Library() + "/import.lock").c_str(), O_RDWR);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  WritePicture(Pictures("second.jpg"), 64, 48, 2);
  std::this_thread::sleep_for(milliseconds(2500));
  EXPECT_EQ(Count(), 1u);
  flock(lock, LOCK_UN);
  EXPECT_TRUE(Await([&] { return Count() == 2; }));
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  WritePicture(Pictures("third.jpg"), 64, 48, 3);
  std::this_thread::sleep_for(milliseconds(2500));
  EXPECT_EQ(Stop("added"), 2u);  // while it waits
  close(lock);
}

/// The library, too, which is not made anew without its photos.
TEST_F(WatchTest, GoesOnWhenAFolderIsBack) {
  Start();
  fs::rename(temp_ / "pictures", temp_ / "elsewhere");
  std::this_thread::sleep_for(milliseconds(2500));
  fs::rename(temp_ / "elsewhere", temp_ / "pictures");
  WritePicture(Pictures("second.jpg"), 64, 48, 2);
  EXPECT_TRUE(Await([&] { return Count() == 2; }));
  fs::rename(temp_ / "library", temp_ / "elsewhere");
  WritePicture(Pictures("third.jpg"), 64, 48, 3);
  std::this_thread::sleep_for(milliseconds(3000));
  EXPECT_FALSE(fs::exists(temp_ / "library/catalogue.vdb"));
  fs::remove_all(temp_ / "library");
  fs::rename(temp_ / "elsewhere", temp_ / "library");
  EXPECT_TRUE(Await([&] { return Count() == 3; }));
  EXPECT_EQ(Stop("newly_gone"), 0u);
  for (const char* text : {"is no longer there", "is there again", "is gone"})
    EXPECT_NE(outcome_.err.find(text), std::string::npos) << outcome_.err;
}

/// More happens than the system keeps count of.
TEST_F(WatchTest, LooksAtEverythingWhenEventsAreLost) {
  Start();
  watch_->Signal(SIGSTOP);
  for (int i = 0; i < 10000; ++i) {
    WriteFile(Pictures("note " + std::to_string(i % 2)), "x");
    fs::remove(Pictures("note " + std::to_string(i % 2)));
  }
  WritePicture(Pictures("late/second.jpg"), 64, 48, 2);
  watch_->Signal(SIGCONT);
  EXPECT_TRUE(Await([&] { return Has("late/second.jpg"); }));
  WritePicture(Pictures("late/third.jpg"), 64, 48, 3);
  EXPECT_TRUE(Await([&] { return Has("late/third.jpg"); }));
  EXPECT_EQ(Stop("added"), 3u);
}

TEST_F(WatchTest, RefusesWhatItCannotWatch) {
  Start();
  EXPECT_EQ(Vdsto({"watch", Library()}).code, 2);
  EXPECT_EQ(Vdsto({"watch", temp_ / "nowhere"}).code, 6);
  EXPECT_EQ(Vdsto({"watch", Pictures(), "--settle", "0"}).code, 2);
  EXPECT_EQ(Stop("added"), 1u);
}

}  // namespace
}  // namespace vdsto_test
