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
constexpr char32_t kNoHead = std::numeric_limits<char32_t>::max();

// Starts of pieces are slow to ask for: the walk goes on for longer before.
constexpr std::int64_t kFirstPauseForStarts = 16 * kFirstPause;

// A row that is fetched by its key costs as much as the walk takes for this many, and asking for
// those of one head as much as for this many.
constexpr std::int64_t kRowsPerCandidate = 12;
constexpr std::int64_t kRowsPerHead = 100;
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
  grams_.resize(patterns_.size());
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
  if (way_ == Way::List) {
    const char32_t head = jet::HeadOf(text);
    return head >= first_head_ && head < end_of_heads_ && Passes(test_, text);
  }
  ++looked_at_;
  if (Passes(test_, text)) return true;
  pauses_ = looked_at_ >= next_pause_;
  if (pauses_) head_ = jet::HeadOf(text);
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

std::string TextSearch::MatchFor(const Test& test, Heads heads) {
  if (test.kind == TextTest::Kind::Like) return MatchAll(GramsOf(test.pattern), heads);
  const bool is_all = test.kind == TextTest::Kind::All;
  std::string match;
  for (const Test& part : test.parts) {
    const std::string one = MatchFor(part, heads);
    if (one.empty() && !is_all) return {};  // it can be any row
    if (one.empty()) continue;
    match += (match.empty() ? "(" : is_all ? " AND (" : " OR (") + one + ")";
  }
  return match;
}

const std::vector<jet::Gram>& TextSearch::GramsOf(size_t pattern) {
  auto& grams = grams_[pattern];
  if (!grams) grams = ChooseGrams(patterns_[pattern]);
  return *grams;
}

std::vector<jet::Gram> TextSearch::ChooseGrams(const jet::LikePattern& pattern) {
  std::vector<jet::Gram> grams = pattern.RequiredGrams(kMostGrams);
  if (grams.empty()) return grams;
  asks_for_starts_ = asks_for_starts_ || grams.front().is_start;
  if (grams.size() > kAskedGrams && !grams.front().is_start) {
    std::vector<std::pair<double, size_t>> rarity;
    for (size_t i = 0; i < grams.size(); ++i) rarity.emplace_back(Frequency(grams[i]), i);
    std::ranges::partial_sort(rarity, rarity.begin() + kAskedGrams);
    std::vector<jet::Gram> rarest;
    for (size_t i = 0; i < kAskedGrams; ++i) rarest.push_back(grams[rarity[i].second]);
    grams = std::move(rarest);
  }
  return grams;
}

// Are there grams with a head in every match?
bool TextSearch::TellsHeadsApart(const Test& test) {
  const auto tells = [&](const Test& part) { return TellsHeadsApart(part); };
  switch (test.kind) {
    case TextTest::Kind::Like:
      return std::ranges::any_of(GramsOf(test.pattern), &jet::Gram::has_head);
    case TextTest::Kind::All:
      return std::ranges::any_of(test.parts, tells);
    case TextTest::Kind::Any:
      return std::ranges::all_of(test.parts, tells);
  }
  return false;
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
  BindText(*statement, 1, match);
  return statement;
}

void TextSearch::BindText(Statement& statement, int parameter, const std::string& text) {
  Check(connection_.Handle(),
        sqlite3_bind_text(statement.Handle(), parameter, text.data(), static_cast<int>(text.size()),
                          SQLITE_TRANSIENT),
        "");
}

std::unique_ptr<Statement> TextSearch::AskIndex() {
  next_pause_ = kNever;
  try {
    if (match_.empty()) match_ = MatchFor(test_);
    if (match_.empty()) return nullptr;
    next_pause_ = 2 * looked_at_;
    if (asks_for_starts_ && looked_at_ < kFirstPauseForStarts) return nullptr;
    const bool in_text_order = !plan_->text_query->walk_on_sql.empty();
    if (HasFewCandidates()) {
      first_head_ = in_text_order ? head_ : 0;
      end_of_heads_ = kNoHead;
      return List(keys_);
    }
    return in_text_order && TellsHeadsApart(test_) ? ListHeads() : nullptr;
  } catch (const CDaoException&) {
    connection_.DoubtTextIndexes();  // the walk knows all that the index does
    return nullptr;
  }
}

std::unique_ptr<Statement> TextSearch::List(std::vector<std::int64_t>& keys) {
  auto statement = connection_.PrepareOwn(plan_->text_query->listed_sql);
  Bind(statement->Handle());
  Check(connection_.Handle(),
        sqlite3_carray_bind(statement->Handle(), plan_->text_query->parameter + 1, keys.data(),
                            static_cast<int>(keys.size()), SQLITE_CARRAY_INT64, SQLITE_STATIC),
        "");
  way_ = Way::List;
  return statement;
}

// From the head where the walk has paused to one of which many rows can match, as far as that costs
// no more than half of what the walk has cost so far.
std::unique_ptr<Statement> TextSearch::ListHeads() {
  const std::int64_t most = looked_at_ / 2;
  std::int64_t heads = 0;
  const auto left = [&] {
    return (most - ++heads * kRowsPerHead) / kRowsPerCandidate - std::ssize(head_keys_);
  };
  head_keys_.clear();
  first_head_ = end_of_heads_ = head_;
  while (end_of_heads_ != kNoHead && TakeHead(end_of_heads_, left())) {
    end_of_heads_ = NextHead(end_of_heads_);
  }
  if (end_of_heads_ == first_head_) return nullptr;
  const auto changed = connection_.PrepareOwn(plan_->text_query->changed_sql);
  TakeKeys(*changed, head_keys_, kNever);
  return List(head_keys_);
}

std::unique_ptr<Statement> TextSearch::GoOn() {
  if (way_ != Way::List || end_of_heads_ == kNoHead) return nullptr;
  auto statement = connection_.PrepareOwn(plan_->text_query->walk_on_sql);
  Bind(statement->Handle());
  BindText(*statement, plan_->text_query->parameter + 1, jet::FirstTextOf(end_of_heads_));
  way_ = Way::LaterWalk;
  return statement;
}

void TextSearch::LetGo() {
  for (auto* statement : {&candidates_, &matches_, &nexts_}) statement->reset();
  if (way_ != Way::List) keys_.clear();
}

std::unique_ptr<Statement> TextSearch::StartWalk() {
  LetGo();
  looked_at_ = 0;
  next_pause_ = kFirstPause;
  way_ = Way::FirstWalk;
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
  return TakeKeys(*candidates_, keys_, std::max(few_, looked_at_ / kRowsPerCandidate / 2));
}

// False when that would be more than so many keys.
bool TextSearch::TakeKeys(Statement& keys, std::vector<std::int64_t>& taken, std::int64_t most) {
  while (std::ssize(taken) <= most) {
    const int code = sqlite3_step(keys.Handle());
    if (code == SQLITE_DONE) return true;
    if (code != SQLITE_ROW) ThrowEngineError(connection_.Handle(), code, "");
    taken.push_back(sqlite3_column_int64(keys.Handle(), 0));
  }
  return false;
}

// The keys of a head's rows that can match; false, and none, when they are more than so many.
bool TextSearch::TakeHead(char32_t head, std::int64_t most) {
  if (most < 0 || head == 0) return false;  // the engine cannot be asked for 0
  if (!matches_) matches_ = connection_.PrepareOwn(plan_->text_query->matches_sql);
  sqlite3_reset(matches_->Handle());
  BindText(*matches_, 1, MatchFor(test_, head));
  std::vector<std::int64_t> keys;
  if (!TakeKeys(*matches_, keys, most)) return false;
  head_keys_.insert(head_keys_.end(), keys.begin(), keys.end());
  return true;
}

// The head of the first text behind those of a head.
char32_t TextSearch::NextHead(char32_t head) {
  if (!nexts_) nexts_ = connection_.PrepareOwn(plan_->text_query->next_sql);
  sqlite3_reset(nexts_->Handle());
  BindText(*nexts_, 1, jet::FirstTextOf(jet::HeadAfter(head)));
  const int code = sqlite3_step(nexts_->Handle());
  if (code == SQLITE_DONE) return kNoHead;
  if (code != SQLITE_ROW) ThrowEngineError(connection_.Handle(), code, "");
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(nexts_->Handle(), 0));
  return jet::HeadOf({text, static_cast<size_t>(sqlite3_column_bytes(nexts_->Handle(), 0))});
}

}  // namespace vdstomgr::sqlite
