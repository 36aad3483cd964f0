#include "import_fixture.h"

namespace {

using namespace vdsto_test;

class UploadCommandTest : public ImportTest {
 protected:
  void SetUp() override {
    for (const char* name : {"a.png", "b|b.png", "c d.png", "e.png"})
      WritePicture(Pictures(name), 8, 8);
    Import();
  }
  Outcome Upload(std::vector<std::string> words) const {
    words.insert(words.begin(), "upload");
    return Vdsto(words);
  }
  std::string Queue(bool with_status) const {
    std::string queue;
    for (const json& row : Upload({"ls"}).Json())
      for (const char* key : {"name", "status"})
        if (with_status || *key == 'n') queue += row[key].get<std::string>() + " ";
    return queue;
  }
  void SetStatus(const std::string& name, int status) const {
    CRkDaoDatabase database;
    database.Open(Catalogue().c_str());
    database.ExecuteOrThrow(("UPDATE UploadList SET nStatus = " + std::to_string(status) +
                             " WHERE szFileName = '" + name + "'")
                                .c_str());
  }
};

TEST_F(UploadCommandTest, TheQueueIsFilledAndOrdered) {
  EXPECT_EQ(Upload({"add", "pictures"}).Json()["changed"], 4);
  EXPECT_EQ(Upload({"add", "a.png"}).Json()["unchanged"], 1);
  const json row = Upload({"ls", "--from", "3", "--count", "1"}).Json()[0];
  EXPECT_EQ(row["original"], Pictures("c d.png"));
  EXPECT_EQ(row["folder"], "pictures");
  EXPECT_EQ(row["position"], 3);
  EXPECT_EQ(row["size"], std::filesystem::file_size(Pictures("c d.png")));
  const struct {
    std::vector<std::string> words;
    int code;
    const char* queue;
  } cases[] = {
      {{"top", "e.png", "b|b.png"}, 0, "b|b.png e.png a.png c d.png "},
      {{"down", "b|b.png", "-n"}, 0, "b|b.png e.png a.png c d.png "},
      {{"down", "b|b.png"}, 0, "e.png b|b.png a.png c d.png "},
      {{"up", row["guid"]}, 0, "e.png b|b.png c d.png a.png "},
      {{"bottom", "e.png"}, 0, "b|b.png c d.png a.png e.png "},
      {{"top", "nope.png"}, 6, "b|b.png c d.png a.png e.png "},
      {{"rm"}, 2, "b|b.png c d.png a.png e.png "},
      {{"rm", "a.png"}, 0, "b|b.png c d.png e.png "},
      {{"up", "a.png"}, 6, "b|b.png c d.png e.png "},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Upload(c.words).code, c.code) << testing::PrintToString(c.words);
    EXPECT_EQ(Queue(false), c.queue);
  }
}

TEST_F(UploadCommandTest, WhatFailedOrIsDoneIsTriedAgainSavedOrTakenOut) {
  const std::string file = temp_ / "queue.txt";
  EXPECT_EQ(Upload({"save", file}).Json()["saved"], 0);
  EXPECT_FALSE(std::filesystem::exists(file));
  Upload({"add", "a.png", "c d.png", "e.png"});
  SetStatus("a.png", 2);
  SetStatus("c d.png", -7103);
  SetStatus("e.png", -7);
  EXPECT_EQ(Upload({"top", "a.png"}).code, 8);
  const json stat = Upload({"stat"}).Json();
  EXPECT_EQ(stat["waiting"].dump() + stat["sending"].dump() + stat["done"].dump() +
                stat["failed"].dump() + stat["retriable"].dump(),
            "00121");
  EXPECT_EQ(Upload({"retry"}).Json()["changed"], 1);
  EXPECT_EQ(Queue(true), "a.png done c d.png waiting e.png failed ");
  EXPECT_EQ(Upload({"retry", "--all"}).Json()["changed"], 1);
  EXPECT_EQ(Upload({"save", file}).Json()["saved"], 2);
  EXPECT_EQ(Upload({"save", file}).code, 8);
  EXPECT_EQ(Upload({"save", Pictures("a.png"), "--force"}).code, 8) << "a picture stays";
  EXPECT_EQ(Upload({"load", file}).code, 8) << "nothing is queued twice";
  EXPECT_EQ(Upload({"load", file + "no"}).code, 6);
  EXPECT_EQ(Upload({"add", "a.png"}).Json()["changed"], 1) << "again";
  SetStatus("e.png", 3);
  EXPECT_EQ(Upload({"rm", "--done"}).Json()["changed"], 1);
  EXPECT_EQ(Queue(true), "c d.png waiting a.png waiting ");
  EXPECT_EQ(Upload({"rm", "--all"}).Json()["changed"], 2);
  EXPECT_EQ(Upload({"load", file}).Json()["loaded"], 2);
  EXPECT_EQ(Queue(true), "c d.png waiting e.png waiting ");
}

}  // namespace
