#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "search_test.h"
#include "vdstomgr/platform/text/utf8.h"
#include "vdstomgr/search/search_schema.h"

namespace vdstomgr {
namespace {

using Random = std::mt19937;

/// Characters of every kind that names are made of, and those that mean something to the builder,
/// to a pattern or to a statement.
std::u32string Alphabet() {
  std::u32string all = U"ㄱㅈㄳㅏㅢ가각갛제젲주줒도돈힣一龥ÀàßẞKkKkſsS①😀😁Ａａｚ０　é";
  for (char32_t c = U' '; c < 0x7F; ++c) all += c;
  return all;
}

/// The case that the text order gives a character, for those of the alphabet; not the library's.
char32_t Lower(char32_t c) {
  if ((c >= U'A' && c <= U'Z') || (c >= U'Ａ' && c <= U'Ｚ') ||
      (c >= 0xC0 && c <= 0xDE && c != 0xD7))
    return c + 32;
  switch (c) {
    case U'ẞ':
      return U'ß';
    case 0x212A:
      return U'k';
    case U'ſ':
      return U's';
    default:
      return c;
  }
}

std::u32string Lower(std::u32string text) {
  std::ranges::transform(text, text.begin(), [](char32_t c) { return Lower(c); });
  return text;
}

std::string Utf8(const std::u32string& text) {
  std::string bytes;
  for (const char32_t c : text) AppendCharacter(c, bytes);
  return bytes;
}

/// Text as the builder is known to make something else of it: "[" finds "[]" only, "\" two of them.
std::u32string AsBuilt(const std::u32string& text) {
  std::u32string built;
  for (const char32_t c : text)
    built += c == U'[' ? U"[]" : c == U'\\' ? U"\\\\" : std::u32string(1, c);
  return built;
}

std::vector<std::u32string> WordsOf(const std::u32string& text) {
  std::vector<std::u32string> words(1);
  for (const char32_t c : text) {
    if (c != U' ') words.back() += c;
    if (c == U' ' && !words.back().empty()) words.emplace_back();
  }
  if (words.back().empty()) words.pop_back();
  return words;
}

bool Holds(const std::u32string& name, const std::u32string& text) {
  const auto words = WordsOf(AsBuilt(Lower(text)));
  return std::ranges::all_of(words, [&](const auto& w) { return name.find(w) != name.npos; });
}

class SubstringTest : public SearchTest {
 protected:
  std::u32string Text(std::size_t most) {
    std::u32string text;
    for (std::size_t left = 1 + random_() % most; left > 0; --left)
      text += alphabet_[random_() % alphabet_.size()];
    return text;
  }
  /// A piece of a name in any case, a piece of two, or anything.
  std::u32string Query() {
    if (random_() % 4 == 0) return Text(3);
    const std::u32string& name = std::next(names_.begin(), random_() % names_.size())->second;
    std::u32string piece = name.substr(random_() % name.size(), 1 + random_() % 6);
    for (char32_t& c : piece)
      if (c < 0x80 && std::isalpha(int(c)) && random_() % 2) c ^= 32;
    return random_() % 4 == 0 ? piece + U" " + name.substr(name.size() / 2, 2) : piece;
  }
  void Add(int count) {
    PhotoArray photos;
    for (int i = 0; i < count; ++i) {
      const std::string guid = "g" + std::to_string(next_++);
      names_[guid] = Text(random_() % 100 == 0 ? 400 : 14);
      photos.Add(Photo(guid, Utf8(names_[guid])));
    }
    EXPECT_TRUE(search_.AddPhotoInfo(photos));
  }
  void Rename(int count) {
    for (int i = 0; i < count; ++i) {
      const auto photo = std::next(names_.begin(), random_() % names_.size());
      photo->second = Text(14);
      EXPECT_TRUE(search_.SetPhotoInfo(Photo(photo->first, Utf8(photo->second))));
    }
  }
  void Delete(int count) {
    for (int i = 0; i < count; ++i) {
      const auto photo = std::next(names_.begin(), random_() % names_.size());
      EXPECT_TRUE(search_.DeletePhoto(photo->first.c_str()));
      names_.erase(photo);
    }
  }
  std::set<std::string> Expected(const std::u32string& text) {
    std::set<std::string> guids;
    for (const auto& [guid, name] : names_)
      if (Holds(Lower(name), text)) guids.insert(guid);
    return guids;
  }
  void Compare(const std::u32string& text) {
    const std::string query = Utf8(text);
    PhotoArray photos;
    EXPECT_EQ(search_.SearchFileName(query.c_str(), photos, 1'000'000), 1) << query;
    std::set<std::string> found;
    for (const PHOTOINFO& photo : photos) found.insert(photo.szGUID);
    EXPECT_EQ(found, Expected(text)) << query;
    EXPECT_EQ(std::size_t(photos.GetSize()), found.size()) << query;
  }

  const std::u32string alphabet_ = Alphabet();
  Random random_{20140501};
  std::map<std::string, std::u32string> names_;
  int next_ = 0;
};

TEST_F(SubstringTest, AHundredThousandPairsAreFoundAsByLooking) {
  Run({"CREATE TABLE Plain (szGUID CHAR(36) PRIMARY KEY, szFileName MEMO)"});
  Add(3000);
  for (int round = 0; round < 4; ++round) {
    for (const char32_t c : alphabet_)
      if (c > U' ' && round == 0) Compare(std::u32string(1, c));
    for (int i = 0; i < 60; ++i) Compare(Query());
    Add(round * 100);
    Rename(50);
    Delete(100);
  }
  Compare(names_.begin()->second.substr(0, 300));
  Compare(U"가 나 " + Text(300));
  // The same without an index.
  for (const auto& [guid, name] : names_)
    search_.m_db->Execute("INSERT INTO Plain (szGUID, szFileName) values ('%s', '%s')", guid,
                          Utf8(name));
  for (int i = 0; i < 60; ++i) {
    const std::u32string text = Query();
    const auto rows = Ask(BuildSearchQuery("Plain", "szFileName", Utf8(text).c_str()).Str());
    std::set<std::string> found;
    for (const std::string& row : rows) found.insert(row.substr(0, row.find('|')));
    EXPECT_EQ(found, Expected(text)) << Utf8(text);
  }
}

/// Names of many heads: a word is in all of some, in few of others, or in none.
class OrderTest : public SearchTest {
 protected:
  void Add(const std::vector<std::u32string>& names) {
    PhotoArray photos;
    for (const std::u32string& name : names) {
      names_.push_back(Utf8(name));
      photos.Add(Photo("g" + std::to_string(names_.size()), names_.back()));
    }
    EXPECT_TRUE(search_.AddPhotoInfo(photos));
  }
  /// The order of these bytes is the text order.
  std::string Expected(const std::vector<std::string>& words, int most) {
    CStringArray found;
    std::ranges::sort(names_);
    for (const std::string& name : names_)
      if (found.GetSize() < most && std::ranges::all_of(words, [&](const std::string& word) {
            return name.find(word) != name.npos;
          }))
        found.Add(name.c_str());
    return Listed(found);
  }
  void Compare() {
    for (const int most : {1, 100, 100'000}) {
      for (const char* word : {"제주", "어디나", "하나뿐", "디나", "없다", "z"})
        EXPECT_EQ(Found(word, most), Expected({word}, most)) << word << most;
      EXPECT_EQ(Found("하나뿐 제주", most), Expected({"하나뿐", "제주"}, most)) << most;
    }
  }

  std::vector<std::string> names_;
};

TEST_F(OrderTest, WordsAreFoundInTheOrderOfTexts) {
  std::mt19937 random(7);
  std::vector<std::u32string> names;
  for (const char32_t head : U"2dgx가각나다라마바사아자찬차카타파하\xFF21") {
    for (char32_t i = 0; head != 0 && i < 250; ++i) {
      std::u32string name = {head, U"갸냐댜랴먀"[random() % 5], U'거' + i};
      if (random() % 50 == 0) name += U"어디나";
      if (head > U'사' ? random() % 3 == 0 : head == U'x' && i == 9) name += U"제주";
      if (head == U'각' || head == U'마' || random() % 300 == 0) name += U"하나뿐";
      names.push_back(name + U'z');
    }
  }
  Add(names);
  Compare();
  Add({U"d제주z", U"가제주 하나뿐", U"힣제주"});  // too few for the index
  Compare();
}

class IndexTest : public SearchTest {
 protected:
  /// Names of which "needle" is so rare that the index finds it.
  void AddHay(int count = 3000) {
    PhotoArray photos;
    for (int i = 0; i < count; ++i)
      photos.Add(Photo("h" + std::to_string(i), "hay " + std::to_string(i)));
    photos.Add(Photo("n", "x needle"));
    EXPECT_TRUE(search_.AddPhotoInfo(photos));
  }
  /// Runs SQL of the engine itself on the file, which anybody can.
  void Tamper(const std::string& sql) {
    sqlite3* db = nullptr;
    sqlite3_open(file_.c_str(), &db);
    EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(db);
    sqlite3_close(db);
  }
};

TEST_F(IndexTest, AFileWithoutIndexesGetsThem) {
  search_.CloseDB();
  std::filesystem::remove(file_);
  CRkDaoDatabase old;
  old.Create(file_.c_str());
  for (const char* statement : kCreateSearchStatements) old.ExecuteOrThrow(statement);
  old.ExecuteOrThrow("INSERT INTO SearchPhotoMaster (szGUID, szFileName) values ('old', '제주')");
  old.Close();
  EXPECT_TRUE(search_.OpenDB(file_.c_str(), ""));
  EXPECT_EQ(search_.CheckVersion(), 1);
  EXPECT_EQ(Found("제"), "제주");
  AddHay();
  EXPECT_EQ(Found("제") + Found("needle"), "제주x needle");
  EXPECT_EQ(Ask("SELECT 1 FROM [vdsto.SearchPhotoMaster.szFileName]"), std::vector<std::string>());
  EXPECT_EQ(std::exchange(reports_, {}), std::vector{3078});  // the dialect does not see it
}

TEST_F(IndexTest, OneThatDoesNotMatchIsMadeAnew) {
  AddHay();
  const std::string name = "vdsto.SearchPhotoMaster.szFileName";
  const std::string changes[] = {
      "DROP TRIGGER \"" + name + ".update\"",
      "UPDATE \"" + name + "_data\" SET block = zeroblob(8) WHERE id > 10",
      "DELETE FROM \"" + name + "_data\" WHERE id > 10",
      "DELETE FROM \"" + name + "_idx\"",
      "DROP TABLE \"" + name + ".changes\"",
  };
  for (const std::string& change : changes) {
    search_.CloseDB();
    Tamper(change);
    EXPECT_TRUE(search_.OpenDB(file_.c_str(), "")) << change;
    EXPECT_EQ(Found("needle"), "x needle") << change;
    Run({"UPDATE SearchPhotoMaster SET szFileName = 'x Needle' WHERE szGUID = 'n'",
         "UPDATE SearchPhotoMaster SET szFileName = 'x needle' WHERE szGUID = 'n'"});
  }
  // Rows that came while nothing noted them.
  search_.CloseDB();
  Tamper("DROP TRIGGER \"" + name + ".insert\"");
  EXPECT_TRUE(search_.OpenDB(file_.c_str(), ""));
  EXPECT_EQ(Found("needle"), "x needle");
}

TEST_F(IndexTest, DamageThatShowsInASearchIsMended) {
  AddHay();
  Tamper("UPDATE \"vdsto.SearchPhotoMaster.szFileName_data\" SET block = x'00' WHERE id > 10");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Found("needle"), "x needle");
  EXPECT_TRUE(search_.AddPhotoInfo(Photo("m", "another needle")));
  EXPECT_EQ(Found("needle"), "another needle,x needle");
}

}  // namespace
}  // namespace vdstomgr
