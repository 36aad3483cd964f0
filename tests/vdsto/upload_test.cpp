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

TEST_F(UploadCommandTest, WhatIsFoundIsQueuedWithItsTagsAndAlbums) {
  Vdsto({"room", "create", "집"});
  Vdsto({"album", "create", "집/제주"});
  Vdsto({"tag", "add", "바다", "a.png"});
  const auto gifts = [&] {
    std::string text;
    for (const json& row : Upload({"ls"}).Json())
      text += std::string(row["name"]) + row["tags"].dump() + row["albums"].dump() + " ";
    return text;
  };
  const std::string both = R"(["바다","여행"])", album = R"(["집/제주"] )";
  const struct {
    std::vector<std::string> words;
    int code;
    std::string queue;
  } cases[] = {
      {{"add"}, 2, ""},
      {{"add", "a.png", "--rating", "5"}, 2, ""},
      {{"add", "--find", "png", "--rating", "5"}, 6, ""},
      {{"add", "--find", "png", "--tag", "a,b"}, 2, ""},
      {{"add", "--find", "png", "--album", "집"}, 2, ""},
      {{"add", "--find", "png", "--find", "d", "--tag", "바다"}, 0, R"(c d.png["바다"][] )"},
      {{"add", "c d.png", "--tag", "여행", "--tag", "바다", "--album", "집/제주"},
       0,
       "c d.png" + both + album},
      {{"add", "e.png", "--find", "c d", "--since", "2000"},
       0,
       "c d.png" + both + album + "e.png[][] "},
      {{"rm", "c d.png"}, 0, "e.png[][] "},
      {{"add", "c d.png"}, 0, "e.png[][] c d.png[][] "},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Upload(c.words).code, c.code) << testing::PrintToString(c.words);
    EXPECT_EQ(gifts(), c.queue) << testing::PrintToString(c.words);
  }
}

TEST_F(UploadCommandTest, ASynchronisationHasAQueueOfItsOwn) {
  const auto list = [&](std::vector<std::string> words) {
    words.insert(words.begin(), "synclist");
    return Vdsto(words);
  };
  const auto queue = [&] {
    std::string text;
    for (const json& row : list({"ls"}).Json())
      text +=
          std::string(row["name"]) + ":" + std::string(row["status"]) + row["error"].dump() + " ";
    return text;
  };
  EXPECT_EQ(list({"next"}).code, 6);
  EXPECT_EQ(list({"add", "e.png", "a.png", "--once", "--tell-end"}).Json()["changed"], 2);
  EXPECT_EQ(list({"add", "c d.png", "e.png"}).Json()["unchanged"], 1);
  EXPECT_EQ(list({"ls", "--from", "2", "--count", "1"}).Json()[0]["original"], Pictures("c d.png"))
      << "every process counts places anew, on purpose";
  const json next = list({"next"}).Json();
  EXPECT_EQ(next["name"].dump() + next["once"].dump() + next["tell_end"].dump(),
            "\"e.png\"truetrue");
  EXPECT_EQ(list({"next"}).Json()["name"], "c d.png");
  EXPECT_EQ(list({"done", "e.png"}).code, 0);
  EXPECT_EQ(list({"done", "a.png", "--error", "-7103"}).code, 0);
  EXPECT_EQ(list({"done", "b|b.png"}).code, 6);
  EXPECT_EQ(queue(), "e.png:donenull c d.png:sendingnull a.png:failed-7103 ");
  const json stat = list({"stat"}).Json();
  EXPECT_EQ(stat["waiting"].dump() + stat["sending"].dump() + stat["done"].dump() +
                stat["failed"].dump() + stat["uploads"].dump(),
            "01113");
  EXPECT_EQ(list({"retry"}).Json()["changed"], 1);
  EXPECT_EQ(list({"add", "e.png"}).Json()["changed"], 1) << "again, without the marks";
  EXPECT_EQ(list({"next"}).Json()["once"], false);
  EXPECT_EQ(queue(), "e.png:sendingnull c d.png:sendingnull a.png:waitingnull ");
  EXPECT_EQ(list({"retry", "--all"}).Json()["changed"], 2);
  EXPECT_EQ(list({"clear"}).Json()["changed"], 3);
  EXPECT_EQ(queue() + Queue(false), "") << "the other queue is not touched";
}

}  // namespace
