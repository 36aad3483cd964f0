#include "vdstomgr/platform/dao/sqlite/text_search.h"

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/sqlite/connection.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/text_index.h"

namespace vdstomgr::sqlite {
namespace {

constexpr std::int64_t kFirstPause = 1024;  // rows looked at
constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

// Starts of pieces are slow to ask for: the walk goes on for longer before.
constexpr std::int64_t kFirstPauseForStarts = 16 * kFirstPause;

// A row that is fetched by its key costs as much as the walk takes for this many.
constexpr std::int64_t kRowsPerCandidate = 12;
// How many rows a search is expected to be asked for.
constexpr std::int64_t kUsualRows = 100;

// Of many grams the rarest are asked for; the others find hardly fewer rows, and cost time. How
// rare a gram is shows in its first few rows.
constexpr size_t kMostGrams = 12;
constexpr size_t kAskedGrams = 2;
constexpr int kSampleRows = 64;

}  // namespace

TextSearch::TextSearch(Connection& connection, std::shared_ptr<const Plan> plan,
                       std::span<const jet::Literal> literals)
    : connection_(connection),
      plan_(std::move(plan)),
      literals_(literals.begin(), literals.end()),
      test_(MakeTest(plan_->text_query->test)),
      next_pause_(kFirstPause) {}

TextSearch::~TextSearch() = default;

// A test that stands beside its equal is left out, and one that is alone stands for its group.
TextSearch::Test TextSearch::MakeTest(const TextTest& test) {
  Test made{test.kind, 0, {}};
  if (test.kind == TextTest::Kind::Like) {
    const std::string& pattern = literals_[static_cast<size_t>(test.literal)].text;
    const auto known = std::ranges::find(pattern_texts_, pattern);
    made.pattern = static_cast<size_t>(known - pattern_texts_.begin());
    if (known == pattern_texts_.end()) pattern_texts_.push_back(pattern);
    return made;
  }
  for (const TextTest& part : test.parts) {
    Test another = MakeTest(part);
    if (std::ranges::find(made.parts, another) == made.parts.end()) {
      made.parts.push_back(std::move(another));
    }
  }
  return made.parts.size() == 1 ? Test(made.parts.front()) : made;
}

void TextSearch::Bind(sqlite3_stmt* statement) {
  connection_.Bind(statement, literals_);
  const int place = plan_->text_query->parameter;
  Check(connection_.Handle(),
        sqlite3_bind_pointer(statement, place, this, kTextSearchPointer, nullptr), "");
}

// A text that a row must have as a whole, or else all its words: the words are enough.
void TextSearch::MakePatterns() {
  for (const std::string& pattern : pattern_texts_) patterns_.emplace_back(pattern);
  if (test_.kind != TextTest::Kind::Any) return;
  std::vector<Test>& parts = test_.parts;
  const auto is_needless = [&](const Test& part) {
    return part.kind == TextTest::Kind::Like && std::ranges::any_of(parts, [&](const Test& other) {
             return other != part && IsImplied(other, patterns_[part.pattern]);
           });
  };
  const auto needless = std::ranges::find_if(parts, is_needless);
  if (needless != parts.end()) parts.erase(needless);
  if (parts.size() == 1) test_ = Test(parts.front());
}

bool TextSearch::IsImplied(const Test& test, const jet::LikePattern& pattern) const {
  if (test.kind == TextTest::Kind::Like) return pattern.Implies(patterns_[test.pattern]);
  return test.kind == TextTest::Kind::All && std::ranges::all_of(test.parts, [&](const Test& part) {
           return IsImplied(part, pattern);
         });
}

bool TextSearch::Passes(std::string_view text) {
  if (patterns_.empty()) MakePatterns();
  ++looked_at_;
  if (Passes(test_, text)) return true;
  pauses_ = looked_at_ >= next_pause_;
  return pauses_;
}

bool TextSearch::Passes(const Test& test, std::string_view text) const {
  const auto passes = [&](const Test& part) { return Passes(part, text); };
  switch (test.kind) {
    case TextTest::Kind::Like:
      return patterns_[test.pattern].Matches(text);
    case TextTest::Kind::All:
      return std::ranges::all_of(test.parts, passes);
    case TextTest::Kind::Any:
      return std::ranges::any_of(test.parts, passes);
  }
  return false;
}

std::string TextSearch::MatchFor(const Test& test) {
  if (test.kind == TextTest::Kind::Like) return MatchFor(patterns_[test.pattern]);
  const bool is_all = test.kind == TextTest::Kind::All;
  std::string match;
  for (const Test& part : test.parts) {
    const std::string one = MatchFor(part);
    if (one.empty() && !is_all) return {};  // it can be any row
    if (one.empty()) continue;
    match += (match.empty() ? "(" : is_all ? " AND (" : " OR (") + one + ")";
  }
  return match;
}

std::string TextSearch::MatchFor(const jet::LikePattern& pattern) {
  std::vector<jet::Gram> grams = pattern.RequiredGrams(kMostGrams);
  if (grams.empty()) return {};
  asks_for_starts_ = asks_for_starts_ || grams.front().is_start;
  if (grams.size() > kAskedGrams && !grams.front().is_start) {
    std::vector<std::pair<double, size_t>> rarity;
    for (size_t i = 0; i < grams.size(); ++i) rarity.emplace_back(Frequency(grams[i]), i);
    std::ranges::partial_sort(rarity, rarity.begin() + kAskedGrams);
    std::vector<jet::Gram> rarest;
    for (size_t i = 0; i < kAskedGrams; ++i) rarest.push_back(grams[rarity[i].second]);
    grams = std::move(rarest);
  }
  return MatchAll(grams);
}

// The part of the rows that have it, as far as the first ones show; none at all is rarest.
double TextSearch::Frequency(const jet::Gram& gram) {
  const auto rows = Ask(plan_->text_query->matches_sql, MatchAll({gram}));
  std::int64_t first = 0, last = 0;
  for (int row = 0; row < kSampleRows; ++row) {
    const int code = sqlite3_step(rows->Handle());
    if (code == SQLITE_DONE) return row * 1e-9;
    if (code != SQLITE_ROW) ThrowEngineError(connection_.Handle(), code, "");
    last = sqlite3_column_int64(rows->Handle(), 0);
    if (row == 0) first = last;
  }
  return double{kSampleRows} / static_cast<double>(last - first + 1);
}

std::unique_ptr<Statement> TextSearch::Ask(const std::string& sql, const std::string& match) {
  auto statement = connection_.PrepareOwn(sql);
  Check(connection_.Handle(),
        sqlite3_bind_text(statement->Handle(), 1, match.c_str(), -1, SQLITE_TRANSIENT), "");
  return statement;
}

std::unique_ptr<Statement> TextSearch::AskIndex() {
  next_pause_ = kNever;
  try {
    if (match_.empty()) match_ = MatchFor(test_);
    if (match_.empty()) return nullptr;
    const bool too_early = asks_for_starts_ && looked_at_ < kFirstPauseForStarts;
    if (too_early || !HasFewCandidates()) {
      next_pause_ = 2 * looked_at_;
      return nullptr;
    }
    return TakeCandidates();
  } catch (const CDaoException&) {
    connection_.DoubtTextIndexes();  // the walk knows all that the index does
    return nullptr;
  }
}

std::unique_ptr<Statement> TextSearch::TakeCandidates() {
  auto statement = connection_.PrepareOwn(plan_->text_query->listed_sql);
  Bind(statement->Handle());
  Check(connection_.Handle(),
        sqlite3_carray_bind(statement->Handle(), plan_->text_query->parameter + 1, keys_.data(),
                            static_cast<int>(keys_.size()), SQLITE_CARRAY_INT64, SQLITE_STATIC),
        "");
  candidates_.reset();
  is_walk_ = false;
  return statement;
}

void TextSearch::LetGo() {
  candidates_.reset();
  if (is_walk_) keys_.clear();
}

std::unique_ptr<Statement> TextSearch::StartWalk() {
  LetGo();
  looked_at_ = 0;
  next_pause_ = kFirstPause;
  is_walk_ = true;
  auto statement = connection_.PrepareOwn(plan_->text_query->walk_sql);
  Bind(statement->Handle());
  return statement;
}

// Few are those that cost no more than half of what the walk has cost so far, or than it is likely
// to cost until it has found the usual number of rows among all: n candidates cost as much as n *
// kRowsPerCandidate rows of the walk, which finds one of them in every rows / n.
bool TextSearch::HasFewCandidates() {
  if (!candidates_) {
    keys_.clear();
    candidates_ = Ask(plan_->text_query->candidates_sql, match_);
    const auto last_row = connection_.PrepareOwn(plan_->text_query->last_row_sql);
    const bool is_known = sqlite3_step(last_row->Handle()) == SQLITE_ROW;
    const double rows = is_known ? sqlite3_column_double(last_row->Handle(), 0) : 0;
    few_ =
        static_cast<std::int64_t>(std::sqrt(kUsualRows * std::max(rows, 0.0) / kRowsPerCandidate));
  }
  const std::int64_t most = std::max(few_, looked_at_ / kRowsPerCandidate / 2);
  while (std::ssize(keys_) <= most) {
    const int code = sqlite3_step(candidates_->Handle());
    if (code == SQLITE_DONE) return true;
    if (code != SQLITE_ROW) ThrowEngineError(connection_.Handle(), code, "");
    keys_.push_back(sqlite3_column_int64(candidates_->Handle(), 0));
  }
  return false;
}

}  // namespace vdstomgr::sqlite
