#include "vdstomgr/platform/dao/sqlite/statement_cache.h"

#include <sqlite3.h>

#include <algorithm>
#include <cassert>

namespace vdstomgr::sqlite {
namespace {

constexpr size_t kMostShapes = 512;
constexpr size_t kMostIdlePerShape = 8;

}  // namespace

void StatementDeleter::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

Statement::~Statement() {
  if (!handle_) return;
  sqlite3_reset(handle_.get());
  const auto home = home_.lock();
  if (home && home->size() < kMostIdlePerShape) home->push_back(std::move(handle_));
}

std::unique_ptr<Statement> StatementCache::Take(std::string_view key) {
  const auto found = shapes_.find(key);
  if (found == shapes_.end() || found->second.idle->empty()) return nullptr;
  Shape& shape = found->second;
  shape.last_use = ++use_count_;
  auto statement = std::make_unique<Statement>(shape.plan, std::move(shape.idle->back()));
  shape.idle->pop_back();
  statement->home_ = shape.idle;
  return statement;
}

std::shared_ptr<const Plan> StatementCache::FindPlan(std::string_view key) const {
  const auto found = shapes_.find(key);
  return found == shapes_.end() ? nullptr : found->second.plan;
}

void StatementCache::Adopt(std::string_view key, Statement& statement) {
  assert(statement.home_.expired());
  if (shapes_.size() >= kMostShapes) EvictOldest();
  auto place = shapes_.find(key);
  if (place == shapes_.end()) {  // a shape is whole before the cache knows it
    Shape shape{statement.plan_, std::make_shared<std::vector<StatementHandle>>()};
    shape.idle->reserve(kMostIdlePerShape);
    place = shapes_.emplace(std::string(key), std::move(shape)).first;
  }
  place->second.last_use = ++use_count_;
  statement.home_ = place->second.idle;
}

// Drops the older half at once, so that the search for the oldest is paid for rarely.
void StatementCache::EvictOldest() {
  std::vector<std::uint64_t> uses;
  uses.reserve(shapes_.size());
  for (const auto& [key, shape] : shapes_) uses.push_back(shape.last_use);
  const auto middle = uses.begin() + static_cast<std::ptrdiff_t>(uses.size() / 2);
  std::nth_element(uses.begin(), middle, uses.end());
  std::erase_if(shapes_,
                [limit = *middle](const auto& entry) { return entry.second.last_use < limit; });
}

}  // namespace vdstomgr::sqlite
