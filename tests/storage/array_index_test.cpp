#include "vdstomgr/storage/array_index.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <set>
#include <thread>

#include "tests/storage/storage_test.h"
#include "vdstomgr/storage/array_file.h"

namespace {

using Index = CRkFileArrayIndex;

constexpr int kNumberAt = 0;
constexpr int kTextAt = 4;
constexpr int kTextSize = 12;
constexpr int kUnitSize = 40;

struct Unit {
  DWORD number = 0;
  std::string text;
};

std::array<BYTE, kUnitSize> BytesOf(const Unit& unit) {
  std::array<BYTE, kUnitSize> bytes{};
  std::memcpy(bytes.data() + kNumberAt, &unit.number, sizeof(DWORD));
  std::memcpy(bytes.data() + kTextAt, unit.text.data(),
              std::min<std::size_t>(unit.text.size(), kTextSize));
  return bytes;
}

Unit UnitAt(const void* bytes) {
  Unit unit;
  std::memcpy(&unit.number, bytes, sizeof(DWORD));
  const char* const text = static_cast<const char*>(bytes) + kTextAt;
  const void* const end = std::memchr(text, 0, kTextSize);
  unit.text.assign(text, end != nullptr ? static_cast<const char*>(end) : text + kTextSize);
  return unit;
}

std::string Lower(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  return text;
}

/// Numbers downwards.
int CompareDown(const void* left, const void* right) {
  const DWORD a = UnitAt(*static_cast<const void* const*>(left)).number;
  const DWORD b = UnitAt(*static_cast<const void* const*>(right)).number;
  return a == b ? 0 : a > b ? -1 : 1;
}

class ArrayIndex : public StorageTest {
 protected:
  void Open(CRkFileArrayManager& array, const std::vector<Unit>& units, const char* name = "a") {
    ASSERT_TRUE(CRkFileArrayManager::CreateFileArray(Path(name).c_str(), 1, kUnitSize));
    ASSERT_TRUE(array.OpenFile(Path(name).c_str()));
    for (const Unit& unit : units) ASSERT_TRUE(array.Add(BytesOf(unit).data()));
  }

  static std::vector<Unit> Units(Index& index) {
    std::vector<Unit> units;
    const void** const entries = index.GetArray();
    for (int i = 0; entries != nullptr && i < index.GetSize(); ++i)
      units.push_back(UnitAt(entries[i]));
    index.ReleaseArray(false);
    return units;
  }
  static std::vector<DWORD> Numbers(Index& index) {
    std::vector<DWORD> numbers;
    for (const Unit& unit : Units(index)) numbers.push_back(unit.number);
    return numbers;
  }
  static std::string Texts(Index& index) {
    std::string texts;
    for (const Unit& unit : Units(index)) texts += unit.text + " ";
    return texts;
  }
};

TEST_F(ArrayIndex, TextsWithoutCase) {
  CRkFileArrayManager array;
  const std::vector<std::string> texts = {
      "ABC", "b", "abx", "ABy", "abc", "", "[x", "\xB0\xA1", std::string("B\0zz56789", 9)};
  Open(array, {});
  for (DWORD i = 0; i < texts.size(); ++i) array.Add(BytesOf({i + 1, texts[i]}).data());
  Index whole;
  Index two;
  whole.CreateFileArrayIndex(&array, Index::INDEX_STRING, -1, kTextAt);
  two.CreateFileArrayIndex(&array, Index::INDEX_STRING, 2, kTextAt);
  EXPECT_EQ(Numbers(whole), (std::vector<DWORD>{6, 7, 1, 5, 3, 4, 2, 9, 8}));
  const struct {
    Index& index;
    const char* key;
    int position, count;
  } cases[] = {{whole, "aBC", 2, 2},       {whole, "b", 6, 2},  // what follows the 0 does not count
               {whole, "", 0, 1},          {whole, nullptr, 0, 1}, {whole, "ab", -1, 0},
               {whole, "\xB0\x81", -1, 0},  // only ASCII letters have two cases
               {two, "abx", 2, 4}};
  for (const auto& [index, key, position, count] : cases) {
    EXPECT_EQ(index.FindString(key), position) << key;
    EXPECT_EQ(index.GetValueCount(position), count) << key;
  }
  array.RemoveAll();
  for (const char rest : {'z', 'x', 'y'}) {
    array.Add(BytesOf({1, std::string("same\0...........", 11) + rest}).data());
  }
  EXPECT_EQ(whole.FindString("SAME"), 0);
  EXPECT_EQ(whole.GetValueCount(0), 3);
}

TEST_F(ArrayIndex, FiltersKeepTheUnitsTheyName) {
  CRkFileArrayManager array;
  Open(array, {{5, "a"}, {3, "B"}, {1, "d"}, {4, "c"}, {2, "b"}});
  Index texts, filtered, grandchild, binaries;
  CStringArray none;
  CStringArray values{"d", "x", "b", "B", "a "};
  CDWordArray numbers{3, 1};
  texts.CreateFileArrayIndex(&array, Index::INDEX_STRING, kTextSize, kTextAt);
  const auto create = [&](CStringArray& filter, int kind) {
    return filtered.CreateFilteredIndexFormStringIndex(
        &texts, filter, static_cast<Index::INDEX_TYPE>(kind), 4, kNumberAt, CompareDown);
  };
  const auto by_number = [&](Index& index, Index& parent, Index::INDEX_TYPE kind, int key_at) {
    return index.CreateFilteredIndexForDWordIndex(&parent, numbers, kind, -1, key_at);
  };
  EXPECT_EQ(create(none, Index::INDEX_DWORD), 5);
  EXPECT_EQ(by_number(filtered, texts, Index::INDEX_DWORD, 0), 0);  // not the parent's kind
  EXPECT_EQ(filtered.GetSize(), 5);                                 // nothing changed
  EXPECT_EQ(create(values, Index::INDEX_DWORD), 3);
  EXPECT_EQ(Texts(filtered), "d b B ");
  EXPECT_EQ(by_number(grandchild, filtered, Index::INDEX_STRING, kTextAt), 2);
  EXPECT_EQ(Texts(grandchild), "B d ");
  EXPECT_EQ(by_number(texts, grandchild, Index::INDEX_DWORD, 0), 0);  // in a circle
  EXPECT_EQ(create(values, 9), 3);
  EXPECT_EQ(Texts(filtered), "B b d ");  // in the parent's order
  EXPECT_EQ(grandchild.GetSize(), 0);    // its parent has no ranked key any more
  EXPECT_EQ(create(values, Index::INDEX_CUSTOM), 3);
  EXPECT_EQ(Texts(filtered), "B b d ");
  EXPECT_EQ(filtered.FindCustom(BytesOf({2, ""}).data()), 1);
  CStringArray one{"C"};
  EXPECT_EQ(filtered.SetFilter(one), 1);
  array.Add(BytesOf({9, "c"}).data());
  EXPECT_EQ(Numbers(filtered), (std::vector<DWORD>{9, 4}));
  CPtrArray keys;
  keys.Add(const_cast<char*>("\4\0\0\0"));
  const auto make = [&](int key_length) {
    binaries.CreateFileArrayIndex(&array, Index::INDEX_BINARY, key_length, kNumberAt);
    return filtered.CreateFilteredIndexForBinaryIndex(&binaries, keys, Index::INDEX_DWORD, 4, 0);
  };
  EXPECT_EQ(make(4), 1);
  EXPECT_EQ(binaries.FindBinary(reinterpret_cast<const BYTE*>("\5\0\0\0")), 4);
  EXPECT_EQ(filtered.FindDWORD(4), 0);
  binaries.CreateFileArrayIndex(&array, Index::INDEX_BINARY, 6, kNumberAt);
  EXPECT_EQ(filtered.GetSize(), 0);  // the value is shorter than the parent's keys are now
  EXPECT_EQ(make(4), 1);
  array.CloseFile();
  binaries.GenerateIndex();
  EXPECT_EQ(make(4), 0);
}

/// 40 numbers around the end of the signed ones, and their texts; each operation is followed by a
/// look through every index.
TEST_F(ArrayIndex, BehavesLikeASort) {
  constexpr DWORD kFirst = 0x7FFFFFEC;
  CRkFileArrayManager array;
  Open(array, {});
  Index numbers, texts, binaries, custom, filtered;
  CDWordArray odd;
  for (DWORD i = 1; i < 40; i += 2) odd.Add(kFirst + i);
  numbers.CreateFileArrayIndex(&array, Index::INDEX_DWORD, 4, kNumberAt);
  texts.CreateFileArrayIndex(&array, Index::INDEX_STRING, kTextSize, kTextAt);
  binaries.CreateFileArrayIndex(&array, Index::INDEX_BINARY, 16, 0);
  custom.CreateFileArrayIndex(&array, Index::INDEX_CUSTOM, 0, 0, CompareDown);
  filtered.CreateFilteredIndexForDWordIndex(&numbers, odd, Index::INDEX_STRING, kTextSize, kTextAt);
  std::mt19937 random(7);
  std::vector<Unit> model;
  const auto sorted = [&](auto less) {
    auto units = model;
    std::stable_sort(units.begin(), units.end(), less);
    return units;
  };
  const auto by_number = [](const Unit& a, const Unit& b) {
    return static_cast<std::int32_t>(a.number - b.number) < 0;  // past the largest comes the least
  };
  const auto by_text = [](const Unit& a, const Unit& b) { return Lower(a.text) < Lower(b.text); };
  const auto by_bytes = [](const Unit& a, const Unit& b) {
    return std::memcmp(BytesOf(a).data(), BytesOf(b).data(), 16) < 0;
  };
  const auto by_number_down = [](const Unit& a, const Unit& b) { return a.number > b.number; };
  const auto expect = [](Index& index, const std::vector<Unit>& units) {
    const auto found = Units(index);
    ASSERT_EQ(found.size(), units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
      ASSERT_TRUE(found[i].number == units[i].number && found[i].text == units[i].text) << i;
    }
  };
  for (int step = 0; step < 1500; ++step) {
    Unit unit{kFirst + static_cast<DWORD>(random() % 40),
              step % 3 == 0 ? "Common-Start" : "common-"};
    unit.text += std::to_string(unit.number - kFirst);
    unit.text.resize(std::min<std::size_t>(unit.text.size(), kTextSize));
    const int at = static_cast<int>(random() % 50);
    if (at < static_cast<int>(model.size()) && step % 2 == 0) {
      array.RemoveAt(at);
      model.erase(model.begin() + at);
    } else {
      array.Add(BytesOf(unit).data());
      model.push_back(unit);
    }
    expect(numbers, sorted(by_number));
    expect(texts, sorted(by_text));
    expect(binaries, sorted(by_bytes));
    expect(custom, sorted(by_number_down));
    auto wanted = sorted(by_number);
    std::erase_if(wanted, [](const Unit& u) { return u.number % 2 == 0; });
    ASSERT_EQ(filtered.GetSize(), static_cast<int>(wanted.size()));
    const auto order = sorted(by_number);
    const auto [first, last] = std::equal_range(order.begin(), order.end(), unit, by_number);
    const int begin = static_cast<int>(first - order.begin());
    EXPECT_EQ(numbers.FindDWORD(unit.number), first == last ? -1 : begin);
    if (first == last) continue;
    const int end = static_cast<int>(last - order.begin());
    for (int i = begin; i < end; ++i) {
      ASSERT_EQ(numbers.FindValueStartIndex(i), begin);
      ASSERT_EQ(numbers.FindValueEndIndex(i), end - 1);
    }
    EXPECT_EQ(custom.FindCustom(BytesOf(unit).data()), static_cast<int>(order.size()) - end);
    const void* const found = texts.GetBuffer(texts.FindString(Lower(model[0].text).c_str()));
    ASSERT_TRUE(found != nullptr && Lower(UnitAt(found).text) == Lower(model[0].text));
    texts.ReleaseBuffer(false);
  }
}

TEST_F(ArrayIndex, EntriesNeverOutliveTheUnits) {
  CRkFileArrayManager array;
  Index index;
  Index child;
  CDWordArray none;
  EXPECT_EQ(index.GetSize(), 0);
  EXPECT_EQ(index.GetBuffer(0), nullptr);
  index.ReleaseBuffer(true);
  index.UpdateLastModified();
  Open(array, {{3, ""}, {1, ""}, {2, ""}});
  index.CreateFileArrayIndex(&array, Index::INDEX_DWORD, 4, kNumberAt);
  EXPECT_EQ(child.CreateFilteredIndexForDWordIndex(&index, none, Index::INDEX_DWORD, 4, 0), 3);
  TakeTraces();
  index.GenerateIndex();
  EXPECT_TRUE(TakeTraces().empty());
  index.UpdateLastModified();
  index.GenerateIndex();
  EXPECT_EQ(TakeTraces().at(0).rfind("CRkFileArrayIndex::GenerateIndex() : ", 0), 0u);
  array.SetSize(2);
  EXPECT_EQ(index.FindDWORD(2, false), 1);  // not refreshed, units where they were
  EXPECT_EQ(index.FindDWORD(2, true), -1);
  array.SetSize(600000);  // the units move
  EXPECT_EQ(child.FindDWORD(3, false), 599999);
  array.SetSize(2);
  array.CloseFile();
  EXPECT_EQ(index.SetFilter(none), 0);
  for (Index* const each : {&index, &child}) {
    EXPECT_EQ(each->FindDWORD(3, false), -1);
    EXPECT_EQ(each->GetValueCount(0), 0);
    EXPECT_EQ(each->IndexToArray(0), -1);
  }
  ASSERT_TRUE(array.OpenFile(Path("a").c_str()));
  EXPECT_EQ(child.FindDWORD(3, false), 1);
  index.Destroy();
  EXPECT_EQ(index.GetSize(), 2);  // the number stays, the entries do not
  EXPECT_EQ(index.GetArray(), nullptr);
  index.ReleaseArray(false);
  EXPECT_EQ(child.FindDWORD(3), -1);
  EXPECT_EQ(child.GetSize(), 0);
}

TEST_F(ArrayIndex, SurvivesKeysOutsideUnitsAndContradictions) {
  CRkFileArrayManager array;
  Open(array, std::vector<Unit>(300, {7, "0123456789ab"}));
  Index index;
  const BYTE probe[64] = {};
  for (const int kind : {0, 1, 2, 3, 7}) {
    for (const int length : {-1, -7, 0, 4, 1000000000, 60}) {
      for (const int offset : {-1, -1000000, 0, 36, 37, 39, 40, 0x7FFFFFFF}) {
        index.CreateFileArrayIndex(&array, static_cast<Index::INDEX_TYPE>(kind), length, offset);
        index.FindDWORD(1);
        index.FindString("text");
        index.FindBinary(probe);
        EXPECT_EQ(index.GetValueCount(7), 300);  // all are alike
      }
    }
  }
  const auto contradictory = [](const void*, const void*) { return rand() % 3 - 1; };
  index.CreateFileArrayIndex(&array, Index::INDEX_CUSTOM, 4, 0, contradictory);
  index.FindCustom(probe);
  index.FindValueEndIndex(150);
  const void** const entries = index.GetArray();
  EXPECT_EQ(std::set(entries, entries + 300).size(), 300u);  // each unit once
  index.ReleaseArray(false);
}

TEST_F(ArrayIndex, ThreadsShareArraysAndIndexes) {
  CRkFileArrayManager arrays[2];
  Index shared;
  Open(arrays[0], {{1, "a"}}, "0");
  Open(arrays[1], {{1, "a"}}, "1");
  shared.CreateFileArrayIndex(&arrays[0], Index::INDEX_DWORD, 4, kNumberAt);
  const auto work = [&](int thread) {
    CRkFileArrayManager copy(arrays[0]);
    Index own;
    own.CreateFileArrayIndex(&arrays[thread], Index::INDEX_STRING, kTextSize, kTextAt);
    for (DWORD i = 2; i < 300; ++i) {
      EXPECT_TRUE(arrays[thread].Add(BytesOf({i, "x"}).data()));
      EXPECT_TRUE(copy.InsertAt(0, BytesOf({i, "y"}).data()));
      EXPECT_GE(own.FindString("X"), 1);
      EXPECT_GE(shared.FindDWORD(1), 0);
      EXPECT_NE(shared.GetBuffer(0), nullptr);
      shared.ReleaseBuffer(i % 2 == 0);
      copy.RemoveAt(0);
    }
  };
  std::thread other(work, 1);
  work(0);
  other.join();
  EXPECT_EQ(shared.GetSize(), 299);
}

}  // namespace
