#include <fstream>
#include <functional>
#include <random>

#include "upload_test.h"

namespace vdstomgr {
namespace {

enum { kTop, kUp, kDown, kBottom };
constexpr int (CRkPhotoDBManager::*kCommands[])(CDWordArray&) = {
    &CRkPhotoDBManager::SetUploadReorder_TOP, &CRkPhotoDBManager::SetUploadReorder_UP,
    &CRkPhotoDBManager::SetUploadReorder_DOWN, &CRkPhotoDBManager::SetUploadReorder_BOTTOM};

/// The queue as a plain list, and what the four commands do to it.
struct QueueModel {
  struct Row {
    std::string guid;
    int status;
  };
  std::vector<Row> rows;

  int FirstReady() const {
    return static_cast<int>(std::ranges::find(rows, 0, &Row::status) - rows.begin());
  }

  /// Takes the selected rows out and puts them back in together; answers where.
  int Apply(int command, const std::vector<int>& selected) {
    const int first_ready = FirstReady();
    std::vector<int> moved;
    std::ranges::copy_if(selected, std::back_inserter(moved),
                         [&](int position) { return position >= first_ready; });
    if (moved.empty()) return -1;
    std::vector<Row> taken;
    for (const int position : moved) taken.push_back(rows[static_cast<size_t>(position)]);
    for (auto position = moved.rbegin(); position != moved.rend(); ++position)
      rows.erase(rows.begin() + *position);
    const int size = static_cast<int>(moved.size()), left = static_cast<int>(rows.size());
    const int target = command == kTop    ? first_ready
                       : command == kUp   ? std::max(moved.front() - 1, first_ready)
                       : command == kDown ? std::min(moved.back() + 2 - size, left)
                                          : left;
    rows.insert(rows.begin() + target, taken.begin(), taken.end());
    return target;
  }

  std::string Text() const {
    std::string text;
    for (const Row& row : rows) text += " " + row.guid + ":" + std::to_string(row.status);
    return text.empty() ? text : text.substr(1);
  }
};

class UploadOrderTest : public UploadTest {
 protected:
  /// The queue row by row, through what is kept of them.
  std::string Shown(int count) {
    std::string shown;
    for (int i = 0; i < count; ++i) {
      UPLOADLIST row;
      EXPECT_EQ(catalogue_.GetUploadInfoByIndex(row, i), 1);
      shown += (i ? " " : "") + std::string(row.szGUID) + ":" + std::to_string(row.nStatus);
    }
    return shown;
  }
};

TEST_F(UploadOrderTest, ReorderingIsThatOfAList) {
  std::mt19937 random(20261121);
  const auto below = [&](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  constexpr int kStatuses[] = {0, 0, 0, 2, 3, -500, 1};
  for (int round = 0; round < 8; ++round) {
    QueueModel model;
    for (int i = 0; i < 5 + 4 * round; ++i)
      model.rows.push_back({"g" + std::to_string(i), kStatuses[below(7)]});
    Fill(model.Text());
    const int count = static_cast<int>(model.rows.size());
    for (int step = 0; step < 40; ++step) {
      std::vector<int> selected;
      for (int i = 0; i < count; ++i)
        if (below(count) < 3) selected.push_back(i);
      CDWordArray selection;
      for (const int position : selected) selection.Add(static_cast<DWORD>(position));
      const int command = below(4);
      const int first_ready = model.FirstReady();
      SCOPED_TRACE(Joined(round, step, command, Listed(selection)));
      ASSERT_EQ((catalogue_.*kCommands[command])(selection), model.Apply(command, selected));
      ASSERT_EQ(Queue(), model.Text());
      ASSERT_EQ(Shown(count), model.Text());
      std::erase_if(selected, [&](int position) { return position < first_ready; });
      ASSERT_EQ(Listed(selection), Listed(selected)) << "those that may not move are taken out";
      QueueModel::Row& changed = model.rows[static_cast<size_t>(below(count))];
      changed.status = kStatuses[below(7)];
      ASSERT_TRUE(catalogue_.SetUploadListStatus(changed.guid.c_str(), changed.status));
    }
    ASSERT_EQ(Ask("SELECT MIN(nDispOrder), MAX(nDispOrder) FROM UploadList")[0], Joined(1, count));
  }
}

TEST_F(UploadOrderTest, RangesAreNumberedFromTheirFirst) {
  Fill("a:0 b:0 c:0 d:0 e:0");
  RunBeside("UPDATE UploadList SET nDispOrder = nDispOrder * 10");
  CDWordArray middle{3}, wide{0, 4, 9}, beyond{5}, none, nowhere{0xFFFFFFFF};
  EXPECT_TRUE(catalogue_.cRangedSelectionSorting(1, 3, true, middle));
  EXPECT_EQ(Queue(), "a:0 d:0 b:0 c:0 e:0");
  EXPECT_TRUE(catalogue_.cRangedSelectionSorting(0, 4, false, wide));
  EXPECT_TRUE(catalogue_.cRangedSelectionSorting(5, 7, true, beyond));
  EXPECT_TRUE(catalogue_.cRangedSelectionSorting(3, 2, true, beyond));
  EXPECT_THAT(Ask("SELECT nDispOrder, szGUID FROM UploadList ORDER BY nDispOrder, szGUID"),
              testing::ElementsAre("10|d", "11|b", "12|a", "12|c", "13|e"));
  EXPECT_EQ(Joined(Listed(middle), Listed(wide), Listed(beyond)), "|9|5");
  EXPECT_EQ(catalogue_.SetUploadReorder_TOP(none), -1);
  EXPECT_EQ(catalogue_.SetUploadReorder_DOWN(nowhere), -1);
  CDWordArray from_before{0xFFFFFFFF, 1};
  Fill("a:0 b:0 c:0 d:0");
  EXPECT_TRUE(catalogue_.cRangedSelectionSorting(-1, 1, true, from_before));
  EXPECT_EQ(Queue(), "a:0 c:0 b:0 d:0") << "-1 is the first row then";
}

TEST_F(UploadOrderTest, PositionsAreReadInPages) {
  std::string queue;
  for (int i = 0; i < 120; ++i) queue += "g" + std::to_string(i) + ":0 ";
  Fill(queue);
  const auto at = [&](int index) {
    UPLOADLIST row = Upload("unchanged");
    EXPECT_EQ(catalogue_.GetUploadInfoByIndex(row, index), 1);
    return std::string(row.szGUID);
  };
  EXPECT_EQ(at(100), "g100");
  RunBeside("UPDATE UploadList SET szGUID = 'new'");
  EXPECT_EQ((Answers{at(70), at(119), at(69)}), "g70|g119|new") << "70 to 119 were kept";
  EXPECT_EQ(Joined(at(120), at(-1), at(2147483647)), "unchanged|unchanged|unchanged");
  UploadListArray rows{Upload("before")};
  EXPECT_EQ(catalogue_.cGetUploadListByIndex(rows, 3, 118), 2);
  EXPECT_EQ(catalogue_.cGetUploadListByIndex(rows, -3, -3), 0);
  EXPECT_EQ(catalogue_.cGetUploadListByIndex(rows, 1, -3), 1);
}

/// Each row is changed behind the catalogue's back; a change through it must show that.
TEST_F(UploadOrderTest, NoChangeLeavesAStaleRow) {
  using Change = std::function<void(CRkPhotoDBManager&)>;
  UPLOADLIST row = Upload("new");
  CDWordArray first{0}, folders;
  const std::string saved = Path("saved");
  const std::pair<const char*, Change> changes[] = {
      {"add", [&](auto& c) { c.AddUploadList(row); }},
      {"add several", [&](auto& c) { c.AddUploadList(UploadListArray{row}); }},
      {"set", [&](auto& c) { c.SetUploadList(Upload("b")); }},
      {"status", [](auto& c) { c.SetUploadListStatus("b", 0); }},
      {"both statuses", [](auto& c) { c.SetUploadListStatus("b", 0, 0); }},
      {"sent bytes", [](auto& c) { c.UpdateSentBytesInUploadInfo("b", 5); }},
      {"GUID", [](auto& c) { c.UpdateGUIDInUploadInfo("b", "b"); }},
      {"GUID by id", [](auto& c) { c.UpdateGUIDInUploadInfo(1, "b"); }},
      {"claim", [&](auto& c) { c.GetNextUploadList(row); }},
      {"claim 2", [&](auto& c) { c.GetNextUploadListWithThumbNotTrans(row); }},
      {"claim 3", [&](auto& c) { c.GetNextUploadListForSmallUpload(row, 0, 0); }},
      {"claim 4", [&](auto& c) { c.GetNextUploadListForCreateLTB(row); }},
      {"login", [](auto& c) { c.Login_InitUploadList(); }},
      {"reset", [](auto& c) { c.ResetUploadTransStatus(); }},
      {"retry", [](auto& c) { c.RetryUploadListErrored(); }},
      {"retry some", [](auto& c) { c.RetryUploadListErroredOfIndexed(); }},
      {"delete", [](auto& c) { c.DelUploadList("none"); }},
      {"delete several", [](auto& c) { c.DelUploadList(CStringArray{"none"}); }},
      {"delete finished", [](auto& c) { c.DelUploadListCompleted(); }},
      {"top", [&](auto& c) { c.SetUploadReorder_TOP(first); }},
      {"up", [&](auto& c) { c.SetUploadReorder_UP(first); }},
      {"down", [&](auto& c) { c.SetUploadReorder_DOWN(first); }},
      {"bottom", [&](auto& c) { c.SetUploadReorder_BOTTOM(first); }},
      {"range", [&](auto& c) { c.cRangedSelectionSorting(0, 0, true, first); }},
      {"folders", [&](auto& c) { c.GetUploadFolderForGUID(CStringArray(), folders); }},
      {"load", [&](auto& c) { c.LoadUploadList(saved.c_str(), nullptr); }},
      {"other file", [](auto& c) { c.RefreshDB(); }},
  };
  std::ofstream(saved) << "";
  for (const auto& [what, change] : changes) {
    SCOPED_TRACE(what);
    Fill("a:0 b:0 c:0");
    first = {0};
    Shown(3);
    RunBeside("UPDATE UploadList SET szGUID = 'z' WHERE szGUID = 'a'");
    EXPECT_EQ(Shown(3), "a:0 b:0 c:0") << "is kept";
    change(catalogue_);
    EXPECT_TRUE(Queue().starts_with(Shown(3))) << Queue() << " is shown as " << Shown(3);
  }
  catalogue_.DelUploadListAll();
  EXPECT_EQ(Shown(1), ":0");
}

}  // namespace
}  // namespace vdstomgr
