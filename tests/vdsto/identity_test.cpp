#include <gmock/gmock.h>

#include <random>
#include <set>

#include "import_fixture.h"

namespace {

using namespace vdsto_test;
using nlohmann::json;
namespace fs = std::filesystem;

/// Says how files went between imports: a photo stays with its path while a file is there, and goes
/// with its contents when they are at another path then.
struct IdentityTest : ImportTest {
  using ImportTest::Photos;
  using ImportTest::Pictures;

  void SetUp() override {
    for (int i = 0; i < 40; ++i) WritePicture(Seed(i), 8 + i, 8, i + 1);
  }
  std::string Seed(int i) const { return temp_ / ("seeds/" + std::to_string(i) + ".png"); }

  std::string GuidOf(const std::string& name) const { return Photos().at(Pictures(name))["guid"]; }
  void Sql(const std::string& statement) const {
    CDaoDatabase facts;
    facts.Open((Library() + "/facts.vdb").c_str());
    facts.Execute(statement.c_str());
  }
  std::set<std::string> Missing() const {
    std::set<std::string> originals;
    for (const json& photo : Vdsto({"missing"}).Json()) originals.insert(photo["original"]);
    return originals;
  }
};

/// A disk of pictures that is changed at random, and what is to become of the photos.
class Model {
 public:
  Model(const IdentityTest& test, unsigned seed) : test_(test), random_(seed) {}

  void Step() {
    switch (Random(7)) {
      case 0:
      case 1:
        return Write(FreePath());
      case 2:
        return Rename(FreePath());
      case 3:
        return Rename(Folder() + OtherCase(fs::path(Some()).filename()));
      case 4:
        return Swap();
      case 5:
        return Delete();
      case 6:
        return MoveFolder();
    }
  }

  /// By a picture that nobody has seen: an update, the last thing before an import.
  void Replace() {
    const std::string path = Some();
    if (!IsAtHome(path) || files_[path].empty() || next_seed_ == 40) return;
    fs::copy_file(test_.Seed(next_seed_++), path, fs::copy_options::overwrite_existing);
  }

  /// After an import: the photos of the catalogue are those of the model.
  void Check() {
    const auto photos = test_.Photos();
    std::set<std::string> missing;
    for (const auto& [path, photo] : photos) {
      if (!photo["gone_since"].is_null()) missing.insert(path);
    }
    EXPECT_EQ(missing, gone_);
    std::set<std::string> guids;
    for (const auto& [path, photo] : photos) guids.insert(photo["guid"].get<std::string>());
    EXPECT_EQ(guids.size(), photos.size());
    for (auto& [path, guid] : files_) {
      ASSERT_TRUE(photos.contains(path)) << path;
      if (guid.empty()) guid = photos.at(path)["guid"];
      imported_[guid] = path;
      EXPECT_EQ(photos.at(path)["guid"], guid) << path;
    }
    EXPECT_EQ(photos.size(), files_.size() + gone_.size());
  }

 private:
  int Random(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random_); }
  std::string Folder() {
    static const std::vector<std::string> kNames{"a", "A", "a/하위", "b/c", "b/c/d", ""};
    return test_.Pictures(kNames[static_cast<size_t>(Random(6))] + "/");
  }
  std::string Some() {
    return files_.empty() ? "x.png" : std::next(files_.begin(), Random(int(files_.size())))->first;
  }
  static std::string OtherCase(std::string name) {
    for (char& c : name) c = static_cast<char>(std::isupper(c) ? std::tolower(c) : std::toupper(c));
    return name;
  }
  std::string FreePath() {
    return fs::path(Folder() + "사진 " + std::to_string(Random(1000)) + ".png").lexically_normal();
  }
  bool IsFree(const std::string& path) const {
    return !files_.contains(path) && !gone_.contains(path);
  }

  void Write(const std::string& path) {
    if (!IsFree(path) || next_seed_ == 40) return;
    fs::create_directories(fs::path(path).parent_path());
    fs::copy_file(test_.Seed(next_seed_++), path);
    files_[path] = "";
  }
  void Rename(std::string to) {
    to = fs::path(to).lexically_normal();
    const std::string from = Some();
    if (!files_.contains(from) || !IsFree(to)) return;
    fs::create_directories(fs::path(to).parent_path());
    fs::rename(from, to);
    files_[to] = files_.extract(from).mapped();
  }
  void Swap() {
    const std::string a = Some(), b = Some();
    if (files_.size() < 2 || a == b || files_[a].empty() || files_[b].empty()) return;
    fs::rename(a, a + ".tmp");
    fs::rename(b, a);
    fs::rename(a + ".tmp", b);
    std::swap(files_[a], files_[b]);
  }
  /// A file that is new, or where it was at the last import.
  bool IsAtHome(const std::string& path) {
    return files_.contains(path) && (files_[path].empty() || imported_[files_[path]] == path);
  }
  void Delete() {
    const std::string path = Some();
    if (!IsAtHome(path)) return;
    fs::remove(path);
    if (!files_.extract(path).mapped().empty()) gone_.insert(path);
  }
  void MoveFolder() {
    const std::string from = fs::path(Some()).parent_path();
    const std::string to = test_.Pictures("moved " + std::to_string(Random(1000)));
    if (from == test_.Pictures("").substr(0, from.size()) || fs::exists(to)) return;
    fs::rename(from, to);
    std::map<std::string, std::string> moved;
    for (const auto& [path, guid] : files_) {
      const bool is_below = path.starts_with(from + "/");
      moved[is_below ? to + path.substr(from.size()) : path] = guid;
    }
    files_ = std::move(moved);
  }
  const IdentityTest& test_;
  std::mt19937 random_;
  std::map<std::string, std::string> files_;     // GUIDs by path; empty before the first import
  std::map<std::string, std::string> imported_;  // paths by GUID
  std::set<std::string> gone_;
  int next_seed_ = 0;
};

TEST_F(IdentityTest, PhotosFollowTheirFilesAsTheModelSays) {
  for (const unsigned seed : {1u, 2u, 3u, 4u}) {
    SCOPED_TRACE(seed);
    fs::remove_all(Library());
    fs::remove_all(Pictures());
    fs::create_directories(Pictures());
    Model model(*this, seed);
    for (int round = 0; round < 6; ++round) {
      SCOPED_TRACE(round);
      for (int i = round == 0 ? -12 : 0; i < 4; ++i) model.Step();
      model.Replace();
      Import();
      model.Check();
      if (HasFailure()) return;
    }
  }
}

TEST_F(IdentityTest, FoldersAndWhatTheUserDidFollowAMove) {
  fs::create_directories(Pictures("trip/sub"));
  const std::vector<std::string> names{"trip/1.png", "trip/sub/2.png", "trip/3.png", "4.png"};
  for (int i = 0; i < 4; ++i) fs::copy_file(Seed(i), Pictures(names[static_cast<size_t>(i)]));
  Import();
  const auto before = Photos();
  const auto folder_of = [](const json& photo) { return photo["folder_id"].get<int>(); };
  Vdsto({"rate", "4", Pictures("trip/1.png")});
  Vdsto({"mkdir", "own"});
  ASSERT_EQ(Vdsto({"mv", Pictures("trip/3.png"), "own"}).code, 0);
  fs::rename(Pictures("trip"), Pictures("제주"));
  const json summary = Import();
  EXPECT_EQ(summary["moved"], 3);
  EXPECT_EQ(summary["folders_created"], 0);
  const auto after = Photos();
  const json& first = after.at(Pictures("제주/1.png"));
  EXPECT_EQ(first["guid"], before.at(Pictures("trip/1.png"))["guid"]);
  EXPECT_EQ(first["folder"], "pictures/제주");
  EXPECT_EQ(folder_of(first), folder_of(before.at(Pictures("trip/1.png"))));
  EXPECT_EQ(first["rating"], 4);
  EXPECT_EQ(after.at(Pictures("제주/sub/2.png"))["folder"], "pictures/제주/sub");
  EXPECT_EQ(after.at(Pictures("제주/3.png"))["folder"], "own");

  fs::remove(Library() + "/facts.vdb");
  fs::rename(Pictures("제주/1.png"), Pictures("un.png"));
  fs::copy_file(Pictures("4.png"), Pictures("copy.png"));
  EXPECT_EQ(Counts(Import()), "1 3 0") << "by the rows alone";
  EXPECT_EQ(GuidOf("un.png"), before.at(Pictures("trip/1.png"))["guid"]);
  EXPECT_EQ(Photos().at(Pictures("un.png"))["folder"], "pictures");

  fs::rename(Pictures(), temp_ / "renamed");
  EXPECT_EQ(Import({temp_ / "renamed"})["moved"], 5);
  EXPECT_EQ(Photos().at(temp_ / "renamed/un.png")["folder"], "renamed");
}

TEST_F(IdentityTest, AMissingFileIsToldAndForgottenOnlyWhenTheUserSaysSo) {
  for (int i = 0; i < 3; ++i) fs::copy_file(Seed(i), Pictures(std::to_string(i) + ".png"));
  Import();
  const auto before = Photos();
  for (int i = 0; i < 3; ++i) fs::remove(Pictures(std::to_string(i) + ".png"));
  EXPECT_EQ(Import()["newly_gone"], 3);
  EXPECT_EQ(Import()["newly_gone"], 0);
  const Outcome text = RunVdsto({"--library", Library(), "ls", "pictures"});
  EXPECT_THAT(text.out, testing::HasSubstr("0.png  (no longer on disk)"));
  const std::string paths("pictures/0.png\0pictures/1.png\0pictures/2.png\0", 45);
  EXPECT_EQ(Vdsto({"missing", "-0"}).out, paths);

  fs::copy_file(Seed(0), Pictures("0.png"));
  fs::copy_file(Seed(1), Pictures("other.png"));
  EXPECT_EQ(Vdsto({"forget", "--dry-run"}).Json()["changed"], 2) << "one is back already";
  EXPECT_EQ(Import()["gone"], 1);
  EXPECT_EQ(GuidOf("0.png"), before.at(Pictures("0.png"))["guid"]);
  EXPECT_EQ(GuidOf("other.png"), before.at(Pictures("1.png"))["guid"]);
  EXPECT_EQ(Missing(), std::set{Pictures("2.png")});
  EXPECT_EQ(Vdsto({"forget", Pictures("0.png")}).code, 8);
  EXPECT_EQ(Vdsto({"forget"}).Json()["changed"], 1);
  EXPECT_EQ(Missing(), std::set<std::string>());
  EXPECT_EQ(Vdsto({"trash", "ls"}).Json()[0]["guid"], before.at(Pictures("2.png"))["guid"]);
  EXPECT_EQ(Import()["gone"], 0);
}

TEST_F(IdentityTest, WhatCannotBeLookedAtIsNotGone) {
  for (const char* name : {"disk/1.png", "locked/2.png", "3.png"}) {
    fs::create_directories(fs::path(Pictures(name)).parent_path());
    fs::copy_file(Seed(fs::path(name).stem().string()[0] - '0'), Pictures(name));
  }
  const auto roots = [&] { return Import({Pictures("disk"), Pictures("locked"), Pictures()}); };
  roots();
  const auto before = Photos();
  fs::rename(Pictures("disk"), temp_ / "unmounted");
  fs::create_directory(Pictures("disk"));
  Sql("UPDATE ImportPlaces SET szDevice = 'another' WHERE szPath = '" + Pictures("disk") + "'");
  fs::permissions(Pictures("locked"), fs::perms::none);
  const auto import = [&] { return Vdsto({"import", Pictures()}).Json(); };
  const json summary = import();
  EXPECT_EQ(summary["gone"], 0);
  EXPECT_EQ(summary["not_there"][0]["path"], Pictures("disk"));
  fs::copy_file(Seed(1), Pictures("copy.png"));
  EXPECT_EQ(import()["added"], 1) << "a copy of what is on a disk that is not there";
  fs::permissions(Pictures("locked"), fs::perms::owner_all);
  fs::remove(Pictures("disk"));
  fs::rename(temp_ / "unmounted", Pictures("disk"));
  EXPECT_EQ(Counts(roots()), "0 0 4") << "the disk has another name and its known file";
  fs::remove(Pictures("disk/1.png"));
  fs::copy_file(Seed(5), Pictures("disk/5.png"));
  EXPECT_EQ(roots()["gone"], 1);
  EXPECT_EQ(Missing(), std::set{Pictures("disk/1.png")});
}

TEST_F(IdentityTest, NoFileIsListedTwice) {
  WritePicture(Pictures("a/b/1.png"));
  WritePicture(temp_ / "outside/2.png");
  fs::create_symlink(temp_ / "outside", Pictures("a/out"));
  EXPECT_EQ(Counts(Import({Pictures("a"), Pictures("a/b")})), "2 0 0");
  for (const std::string& root :
       {Pictures("a/b"), Pictures(), Pictures("a/out"), temp_ / "outside"})
    EXPECT_EQ(Import({root})["added"], 0) << root;
  EXPECT_EQ(Photos().size(), 2u);
  fs::create_hard_link(Pictures("a/b/1.png"), Pictures("a/b/link.png"));
  EXPECT_EQ(Counts(Import()), "1 0 2");
}

}  // namespace
