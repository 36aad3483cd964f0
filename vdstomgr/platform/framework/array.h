#pragma once

#include <algorithm>
#include <initializer_list>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/framework/types.h"

/// The framework's array: a thin class over std::vector. `ARG` only spells the classic type name;
/// values and references are accepted alike. An index outside the array throws std::out_of_range.
template <class T, class ARG = const T&>
class CArray {
  static_assert(!std::is_same_v<T, bool>, "use BOOL");

 public:
  CArray() = default;
  CArray(std::initializer_list<T> items) : items_(items) {}
  CArray(std::vector<T> items) noexcept : items_(std::move(items)) {}

  operator const std::vector<T>&() const { return items_; }
  /// Hands the items out and leaves the array empty.
  std::vector<T> Take() { return std::exchange(items_, {}); }

  int GetSize() const { return static_cast<int>(items_.size()); }
  int GetCount() const { return GetSize(); }
  int GetUpperBound() const { return GetSize() - 1; }
  bool IsEmpty() const { return items_.empty(); }
  T* GetData() { return items_.data(); }
  const T* GetData() const { return items_.data(); }

  T& ElementAt(int index) { return items_[Checked(index)]; }
  const T& ElementAt(int index) const { return items_[Checked(index)]; }
  const T& GetAt(int index) const { return ElementAt(index); }
  T& GetAt(int index) { return ElementAt(index); }
  T& operator[](int index) { return ElementAt(index); }
  const T& operator[](int index) const { return ElementAt(index); }
  void SetAt(int index, T item) { ElementAt(index) = std::move(item); }
  /// As SetAt, but grows an array that is too short.
  void SetAtGrow(int index, T item) {
    if (index >= GetSize()) SetSize(index + 1);
    SetAt(index, std::move(item));
  }

  /// Grows with default values or cuts off the end. `grow_by` is accepted and not used.
  void SetSize(int size, [[maybe_unused]] int grow_by = -1) { items_.resize(Natural(size)); }
  void Reserve(int size) { items_.reserve(Natural(size)); }
  void RemoveAll() { items_.clear(); }
  void FreeExtra() { items_.shrink_to_fit(); }

  /// Adds at the end and answers the new item's index.
  int Add(const T& item) {
    items_.push_back(item);
    return GetUpperBound();
  }
  int Add(T&& item) {
    items_.push_back(std::move(item));
    return GetUpperBound();
  }
  /// Adds all items of another array (which may be this one) and answers the index of the first.
  template <class OTHER_ARG>
  int Append(const CArray<T, OTHER_ARG>& other) {
    const int first = GetSize();
    const std::size_t count = static_cast<std::size_t>(other.GetSize());
    items_.reserve(items_.size() + count);
    std::copy_n(other.GetData(), count, std::back_inserter(items_));
    return first;
  }
  template <class OTHER_ARG>
  void Copy(const CArray<T, OTHER_ARG>& other) {
    items_ = static_cast<const std::vector<T>&>(other);
  }

  /// Inserts `count` times the item before the index, growing an array that is too short.
  void InsertAt(int index, T item, int count = 1) {
    if (index > GetSize()) SetSize(index);
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(Natural(index)), Natural(count),
                  item);
  }
  void RemoveAt(int index, int count = 1) {
    if (count == 0) return;
    if (count < 0 || count > GetSize()) throw std::out_of_range("CArray::RemoveAt");
    const auto first = items_.begin() + static_cast<std::ptrdiff_t>(Checked(index));
    Checked(index + (count - 1));
    items_.erase(first, first + count);
  }

  auto begin() { return items_.begin(); }
  auto end() { return items_.end(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

  friend bool operator==(const CArray& left, const CArray& right) requires requires(const T& item) {
    item == item;
  }
  { return left.items_ == right.items_; }

 private:
  static std::size_t Natural(int count) {
    if (count < 0) throw std::out_of_range("CArray: negative count or index");
    return static_cast<std::size_t>(count);
  }
  std::size_t Checked(int index) const {
    if (index < 0 || index >= GetSize()) throw std::out_of_range("CArray: index");
    return static_cast<std::size_t>(index);
  }

  std::vector<T> items_;
};

using CStringArray = CArray<CString, const CString&>;
using CDWordArray = CArray<DWORD, DWORD>;
using CPtrArray = CArray<void*, void*>;
