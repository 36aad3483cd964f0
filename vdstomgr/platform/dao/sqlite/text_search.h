#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vdstomgr/platform/dao/jet/like.h"
#include "vdstomgr/platform/dao/jet/literal.h"
#include "vdstomgr/platform/dao/sqlite/statement_cache.h"

namespace vdstomgr::sqlite {

class Connection;

/// One search for texts under way: the LIKE tests of a query on a column that has a text index.
///
/// The query begins as a walk through the rows in their order, which is the fastest way to the
/// first rows of a common text. From time to time, when the walk has looked at many rows and found
/// few, it pauses, and the index is asked how many rows can match at all. When these are few enough
/// they take the walk's place. When they are not, but the rows stand in the order of the texts,
/// they do so as far as they are few: for the texts of some heads, behind which the walk goes on.
class TextSearch {
 public:
  TextSearch(Connection& connection, std::shared_ptr<const Plan> plan,
             std::span<const jet::Literal> literals);
  ~TextSearch();

  /// Gives a statement of the query the values it runs with; this object among them, which must
  /// live as long as the statement is stepped.
  void Bind(sqlite3_stmt* statement);

  /// Does a row's text pass the tests? True also for one that does not when the walk is to pause.
  /// Throws InvalidPattern.
  bool Passes(std::string_view text);
  /// Is the row that the walk has come to not one of its rows but a pause?
  bool TakePause() { return std::exchange(pauses_, false); }

  /// Are its rows found by the first walk still? By any walk?
  bool IsFirstWalk() const { return way_ == Way::FirstWalk; }
  bool IsWalk() const { return way_ != Way::List; }
  /// Lets go of what holds this state of the file; to be called when the query ends.
  void LetGo();

  /// At a pause: the statement that shows the next rows of the query, and maybe some that walks
  /// have shown, by way of the index. Null when the walk had better go on.
  std::unique_ptr<Statement> AskIndex();
  /// At the end of a statement: the one that shows the rows behind it. Null when there are none.
  std::unique_ptr<Statement> GoOn();
  /// The statement to begin anew with.
  std::unique_ptr<Statement> StartWalk();

 private:
  struct Test {  // TextTest, with the place of its pattern
    TextTest::Kind kind = TextTest::Kind::Like;
    size_t pattern = 0;
    std::vector<Test> parts;

    bool operator==(const Test&) const = default;
  };

  Test MakeTest(const TextTest& test);
  void MakePatterns();
  bool IsImplied(const Test& test, const jet::LikePattern& pattern) const;
  bool Passes(const Test& test, std::string_view text) const;

  using Heads = std::optional<char32_t>;  // those of all texts, or one
  std::string MatchFor(const Test& test, Heads heads = {});
  const std::vector<jet::Gram>& GramsOf(size_t pattern);
  std::vector<jet::Gram> ChooseGrams(const jet::LikePattern& pattern);
  bool TellsHeadsApart(const Test& test);
  double Frequency(const jet::Gram& gram);

  std::unique_ptr<Statement> Ask(const std::string& sql, const std::string& match);
  void BindText(Statement& statement, int parameter, const std::string& text);
  bool TakeKeys(Statement& keys, std::vector<std::int64_t>& taken, std::int64_t most);
  bool HasFewCandidates();
  std::unique_ptr<Statement> ListHeads();
  bool TakeHead(char32_t head, std::int64_t most);
  char32_t NextHead(char32_t head);
  std::unique_ptr<Statement> List(std::vector<std::int64_t>& keys);

  Connection& connection_;
  std::shared_ptr<const Plan> plan_;
  std::vector<jet::Literal> literals_;
  std::vector<std::string> pattern_texts_;
  std::vector<jet::LikePattern> patterns_;
  std::vector<std::optional<std::vector<jet::Gram>>> grams_;  // of each pattern, once asked for
  Test test_;
  enum class Way { FirstWalk, List, LaterWalk } way_ = Way::FirstWalk;

  std::unique_ptr<Statement> candidates_;  // being listed
  std::vector<std::int64_t> keys_;         // of the candidates so far
  std::string match_;
  std::int64_t few_ = 0;
  std::int64_t looked_at_ = 0;
  std::int64_t next_pause_;
  bool asks_for_starts_ = false;
  bool pauses_ = false;

  char32_t head_ = 0;                           // where the walk has paused
  char32_t first_head_ = 0, end_of_heads_ = 0;  // of the list
  std::vector<std::int64_t> head_keys_;         // of the list
  std::unique_ptr<Statement> matches_, nexts_;  // kept to be asked again
};

/// The kind of pointer by which a statement is given its search.
inline constexpr const char* kTextSearchPointer = "vdsto_text_search";

}  // namespace vdstomgr::sqlite
