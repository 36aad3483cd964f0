#include <algorithm>
#include <random>

#include "tests/storage/storage_test.h"
#include "vdstomgr/storage/record_storage.h"
#include "vdstomgr/storage/verify_storage.h"

namespace {

constexpr WORD kNumber = 0x44;
constexpr WORD kText = 0x53;
/// Number keys run over the end of the 32-bit numbers.
constexpr DWORD kFirstNumber = 0xFFFFFF80;

/// What a storage must answer, told by a list: keys are numbers below `keys`, in whatever form the
/// storage has them, and equal ones stand in the order of their adding.
struct Record {
  int key;
  std::string data;
};

class Walk : public StorageTest, public testing::WithParamInterface<std::tuple<WORD, int>> {
 protected:
  WORD type_ = std::get<0>(GetParam());
  int keys_ = std::get<1>(GetParam());
  std::mt19937 random_{static_cast<unsigned>(keys_)};
  std::string path_ = Path("walk.pdb");
  CRkStorageManager storage_;
  std::vector<Record> model_;
  std::size_t sorted_ = 0;      ///< so many are in order
  std::size_t searchable_ = 0;  ///< so many are looked at
  bool needs_sort_ = false;

  int Below(std::size_t limit) { return static_cast<int>(random_() % limit); }
  bool Coin() { return random_() % 2 != 0; }
  static DWORD Number(int key) { return kFirstNumber + static_cast<DWORD>(key); }
  std::string Text(int key) {
    char text[16];
    snprintf(text, sizeof text, Coin() ? "Key_%05d" : "kEY_%05d", key);
    return text;
  }

  bool Add(int key, const std::string& data, bool sort) {
    const BYTE* const bytes = reinterpret_cast<const BYTE*>(data.data());
    const int length = static_cast<int>(data.size());
    return type_ == kNumber ? storage_.Add(Number(key), bytes, length, sort)
                            : storage_.Add(Text(key).c_str(), bytes, length, sort);
  }
  int Find(int key, bool refresh) {
    return type_ == kNumber ? storage_.FindDWORD(Number(key), refresh)
                            : storage_.FindString(Text(key).c_str(), refresh);
  }
  void SortModel() {
    const auto by_key = [](const Record& a, const Record& b) { return a.key < b.key; };
    std::stable_sort(model_.begin() + static_cast<std::ptrdiff_t>(sorted_), model_.end(), by_key);
    std::inplace_merge(model_.begin(), model_.begin() + static_cast<std::ptrdiff_t>(sorted_),
                       model_.end(), by_key);
    sorted_ = searchable_ = model_.size();
  }
  void Refresh(bool refresh = true) {
    if (refresh && needs_sort_) SortModel();
    if (refresh) needs_sort_ = false;
  }

  void StepAdd() {
    const Record record{Below(static_cast<std::size_t>(keys_)),
                        std::string(random_() % 40, static_cast<char>(random_()))};
    const bool sort = random_() % 4 != 0;
    ASSERT_TRUE(Add(record.key, record.data, sort));
    model_.push_back(record);
    if (sort) SortModel();
    needs_sort_ = true;
  }
  void StepRemove() {
    if (model_.empty()) return;
    const auto at = static_cast<std::size_t>(Below(model_.size()));
    ASSERT_TRUE(storage_.RemoveAt(static_cast<int>(at)));
    model_.erase(model_.begin() + static_cast<std::ptrdiff_t>(at));
    if (at < sorted_) --sorted_;
    searchable_ = std::min(searchable_, model_.size());
  }
  void StepFind() {
    const bool refresh = Coin();
    const int key = Below(static_cast<std::size_t>(keys_));
    const int found = Find(key, refresh);
    Refresh(refresh);
    ExpectHit(found, [&](int other) { return other == key; });
  }
  void StepFindPrefix() {
    const bool refresh = Coin();
    const int key = Below(static_cast<std::size_t>(keys_));
    const int unit = random_() % 3 == 0 ? 100 : 10;
    const std::string prefix = Text(key).substr(0, unit == 100 ? 7 : 8);
    const int found = storage_.FindStringAt(prefix.c_str(), refresh);
    if (type_ == kNumber) {
      ASSERT_EQ(found, 0);
      return;
    }
    Refresh(refresh);
    ExpectHit(found, [&](int other) { return other / unit == key / unit; });
  }
  template <class Matches>
  void ExpectHit(int found, const Matches& matches) {
    const auto end = model_.begin() + static_cast<std::ptrdiff_t>(searchable_);
    const bool is_there =
        std::any_of(model_.begin(), end, [&](const Record& record) { return matches(record.key); });
    if (searchable_ == sorted_) {
      ASSERT_EQ(found != -1, is_there);
    }
    if (found != -1) {
      ASSERT_LT(static_cast<std::size_t>(found), searchable_);
      ASSERT_TRUE(matches(model_[static_cast<std::size_t>(found)].key));
    }
  }
  void ExpectRecord(int position) {
    int length = -7;
    const BYTE* const data = storage_.GetBuffer(position, length);
    const std::string bytes(reinterpret_cast<const char*>(data), data == nullptr ? 0U : length);
    storage_.ReleaseBuffer();
    Refresh();
    const Record& expected = model_[static_cast<std::size_t>(position)];
    ASSERT_NE(data, nullptr);
    ASSERT_EQ(bytes, expected.data);
    CString text;
    if (type_ == kNumber) {
      ASSERT_EQ(storage_.GetKeyAtDWORD(position), Number(expected.key));
    } else {
      ASSERT_EQ(storage_.GetKeyAtString(position, text), 12);
      ASSERT_EQ(text.CompareNoCase(Text(expected.key)), 0);
    }
  }
  void StepRead() {
    if (!model_.empty()) ExpectRecord(Below(model_.size()));
  }
  void StepWhole() {
    SortModel();
    switch (random_() % 9) {
      case 0:
        storage_.FreeStorageFile();
        ASSERT_TRUE(CRkStorageManager::CompactStorageFile(path_.c_str()));
        ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str()));
        std::filesystem::remove(path_ + ".bak");
        std::filesystem::remove(Path("walk.pdx.bak"));
        break;
      case 1:
        ASSERT_TRUE(storage_.CompactStorageFileOnline(path_.c_str(), 0));
        break;
      case 2: {
        CRkStorageManager copy(storage_);
        storage_ = CRkStorageManager();
        storage_ = copy;
        ASSERT_TRUE(storage_.SortStorageCluster());
        break;
      }
      case 3:
        if (type_ == kText) {
          ASSERT_TRUE(storage_.RemoveAll());
          model_.clear();
          sorted_ = searchable_ = 0;
        }
        break;
      case 4: {
        ASSERT_EQ(storage_.GetClusterArray()->GetSize(), static_cast<int>(model_.size()));
        storage_.SortStorageCluster();
        break;
      }
      default:
        storage_ = CRkStorageManager();
        ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str()));
    }
    needs_sort_ = false;
    SortModel();
    storage_.SortStorageCluster();
    for (std::size_t i = 0; i < model_.size(); ++i) ExpectRecord(static_cast<int>(i));
    const auto report = vdstomgr::VerifyStorage(path_.c_str());
    ASSERT_TRUE(report.findings.empty()) << report.findings.front().text;
    ASSERT_EQ(report.live_records, model_.size());
  }
};

TEST_P(Walk, AnswersAsTheListDoes) {
  ASSERT_TRUE(
      CRkStorageManager::CreateStorageFile(path_.c_str(), 9, type_, type_ == kNumber ? 4 : 12));
  ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str()));
  const int steps = 100000;
  for (int step = 0; step < steps && !HasFatalFailure(); ++step) {
    SCOPED_TRACE(step);
    const auto dice = random_() % 4000;
    if (dice < 1) {
      StepWhole();
    } else if (dice < (model_.size() < 3U * static_cast<unsigned>(keys_) ? 1400U : 600U)) {
      StepAdd();
    } else if (dice < 2200) {
      StepRemove();
    } else if (dice < 2800) {
      StepFind();
    } else if (dice < 3200) {
      StepFindPrefix();
    } else {
      StepRead();
    }
    ASSERT_EQ(storage_.GetSize(), static_cast<int>(model_.size()));
  }
}

INSTANTIATE_TEST_SUITE_P(Records, Walk,
                         testing::Combine(testing::Values(kNumber, kText),
                                          testing::Values(100, 700)));

}  // namespace
