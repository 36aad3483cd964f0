#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <vector>

#include "bench/storage_peers.h"

namespace bench {

using Key = std::array<char, kKeyLength>;

inline Key KeyOf(const char* text) {
  Key key;
  std::memcpy(key.data(), text, kKeyLength);
  return key;
}

/// Where a record lies in the limit's data file.
struct Entry {
  Key key;
  std::uint32_t length;
  std::uint64_t offset;
};

inline bool operator<(const Entry& left, const Entry& right) {
  return std::memcmp(left.key.data(), right.key.data(), kKeyLength) < 0;
}
inline bool operator<(const Entry& entry, const Key& key) {
  return std::memcmp(entry.key.data(), key.data(), kKeyLength) < 0;
}

/// One sorted array: a binary search, and an insertion moves half of the entries.
class FlatOrder {
 public:
  void Assign(std::vector<Entry> sorted) { entries_ = std::move(sorted); }
  void Insert(const Entry& entry) {
    entries_.insert(std::lower_bound(entries_.begin(), entries_.end(), entry), entry);
  }
  Entry* Find(const Key& key) {
    const auto found = std::lower_bound(entries_.begin(), entries_.end(), key);
    return found == entries_.end() || found->key != key ? nullptr : &*found;
  }
  void Erase(Entry* entry) { entries_.erase(entries_.begin() + (entry - entries_.data())); }
  /// Adds all entries to `list`.
  void Collect(std::vector<Entry*>& list) {
    for (Entry& entry : entries_) list.push_back(&entry);
  }

 private:
  std::vector<Entry> entries_;
};

/// A sorted array cut into pages of up to 256 entries: a binary search over the pages and one
/// inside a page, and an insertion moves half of a page, however many entries there are.
class PagedOrder {
 public:
  void Assign(const std::vector<Entry>& sorted) {
    pages_.clear();
    for (std::size_t i = 0; i < sorted.size(); i += kFill) {
      const std::size_t end = std::min(i + kFill, sorted.size());
      Page& page = AddPage(pages_.size());
      page.end = std::copy(sorted.data() + i, sorted.data() + end, page.entries.data());
      pages_.back().first = page.entries[0].key;
    }
  }

  void Insert(const Entry& entry) {
    if (pages_.empty()) AddPage(0);
    std::size_t number = PageOf(entry.key);
    if (pages_[number].page->IsFull()) {
      Split(number);
      number = PageOf(entry.key);
    }
    Page& page = *pages_[number].page;
    Entry* place = std::lower_bound(page.entries.data(), page.end, entry);
    std::move_backward(place, page.end, page.end + 1);
    *place = entry;
    ++page.end;
    if (place == page.entries.data()) pages_[number].first = entry.key;
  }

  Entry* Find(const Key& key) {
    if (pages_.empty()) return nullptr;
    Page& page = *pages_[PageOf(key)].page;
    Entry* found = std::lower_bound(page.entries.data(), page.end, key);
    return found == page.end || found->key != key ? nullptr : found;
  }

  void Erase(Entry* entry) {
    const std::size_t number = PageOf(entry->key);
    Page& page = *pages_[number].page;
    std::move(entry + 1, page.end, entry);
    if (--page.end == page.entries.data()) pages_.erase(pages_.begin() + std::ptrdiff_t(number));
  }

  void Collect(std::vector<Entry*>& list) {
    for (PageEntry& at : pages_) {
      for (Entry* entry = at.page->entries.data(); entry != at.page->end; ++entry) {
        list.push_back(entry);
      }
    }
  }

 private:
  static constexpr std::size_t kCapacity = 256;
  static constexpr std::size_t kFill = 192;

  struct Page {
    bool IsFull() const { return end == entries.data() + kCapacity; }

    Entry* end = entries.data();
    std::array<Entry, kCapacity> entries;
  };
  struct PageEntry {
    Key first;  ///< at most the first key in the page
    std::unique_ptr<Page> page;
  };

  /// The page that holds the key if any does.
  std::size_t PageOf(const Key& key) const {
    const auto above = std::upper_bound(
        pages_.begin() + 1, pages_.end(), key, [](const Key& left, const PageEntry& right) {
          return std::memcmp(left.data(), right.first.data(), kKeyLength) < 0;
        });
    return std::size_t(above - pages_.begin()) - 1;
  }

  Page& AddPage(std::size_t number) {
    return *pages_
                .insert(pages_.begin() + std::ptrdiff_t(number), {Key{}, std::make_unique<Page>()})
                ->page;
  }

  void Split(std::size_t number) {
    Page& upper = AddPage(number + 1);
    Page& lower = *pages_[number].page;
    Entry* middle = lower.entries.data() + kCapacity / 2;
    upper.end = std::copy(middle, lower.end, upper.entries.data());
    lower.end = middle;
    pages_[number + 1].first = upper.entries[0].key;
  }

  std::vector<PageEntry> pages_;
};

}  // namespace bench
