#pragma once

#include <functional>
#include <initializer_list>
#include <unordered_map>
#include <utility>

/// Where a walk through a CMap stands; null at the end.
using POSITION = const void*;

/// The framework's hash map: a thin class over std::unordered_map. `ARG_KEY` and `ARG_VALUE` only
/// spell the classic type name. A walk may remove the items it has already been handed.
template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
class CMap {
  using Items = std::unordered_map<KEY, VALUE>;

 public:
  using value_type = typename Items::value_type;

  CMap() = default;
  CMap(std::initializer_list<value_type> items) : items_(items) {}

  int GetCount() const { return static_cast<int>(items_.size()); }
  int GetSize() const { return GetCount(); }
  bool IsEmpty() const { return items_.empty(); }

  /// False, and `value` unchanged, when there is no such key.
  bool Lookup(const KEY& key, VALUE& value) const {
    const auto found = items_.find(key);
    if (found == items_.end()) return false;
    value = found->second;
    return true;
  }
  /// The value in place, or null.
  VALUE* Find(const KEY& key) {
    const auto found = items_.find(key);
    return found == items_.end() ? nullptr : &found->second;
  }
  const VALUE* Find(const KEY& key) const { return const_cast<CMap*>(this)->Find(key); }

  /// The value of a key, added as VALUE() when it is missing.
  VALUE& operator[](const KEY& key) { return items_[key]; }
  void SetAt(const KEY& key, VALUE value) { items_.insert_or_assign(key, std::move(value)); }
  /// False when there is no such key.
  bool RemoveKey(const KEY& key) { return items_.erase(key) > 0; }
  void RemoveAll() { items_.clear(); }

  POSITION GetStartPosition() const { return PositionOf(items_.begin()); }
  /// Hands out the item at `position`, which must not be null, and moves on to the next.
  void GetNextAssoc(POSITION& position, KEY& key, VALUE& value) const {
    const auto& item = *static_cast<const value_type*>(position);
    position = PositionOf(std::next(items_.find(item.first)));
    key = item.first;
    value = item.second;
  }

  auto begin() { return items_.begin(); }
  auto end() { return items_.end(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  POSITION PositionOf(typename Items::const_iterator item) const {
    return item == items_.end() ? nullptr : &*item;
  }

  Items items_;
};
