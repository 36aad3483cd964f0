#pragma once

#include <cstdint>
#include <memory>
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
/// they take the walk's place.
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

  /// Are its rows still found by the walk?
  bool IsWalk() const { return is_walk_; }
  /// Lets go of what holds this state of the file; to be called when the walk ends.
  void LetGo();

  /// At a pause: the statement that shows all rows of the query, by way of the index. Null when the
  /// walk had better go on.
  std::unique_ptr<Statement> AskIndex();
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
  std::string MatchFor(const Test& test);
  std::string MatchFor(const jet::LikePattern& pattern);
  double Frequency(const jet::Gram& gram);
  std::unique_ptr<Statement> Ask(const std::string& sql, const std::string& match);
  bool HasFewCandidates();
  std::unique_ptr<Statement> TakeCandidates();

  Connection& connection_;
  std::shared_ptr<const Plan> plan_;
  std::vector<jet::Literal> literals_;
  std::vector<std::string> pattern_texts_;
  std::vector<jet::LikePattern> patterns_;
  Test test_;
  std::unique_ptr<Statement> candidates_;  // being listed
  std::vector<std::int64_t> keys_;         // of the candidates so far
  std::string match_;
  std::int64_t few_ = 0;
  std::int64_t looked_at_ = 0;
  std::int64_t next_pause_;
  bool asks_for_starts_ = false;
  bool pauses_ = false;
  bool is_walk_ = true;
};

/// The kind of pointer by which a statement is given its search.
inline constexpr const char* kTextSearchPointer = "vdsto_text_search";

}  // namespace vdstomgr::sqlite
