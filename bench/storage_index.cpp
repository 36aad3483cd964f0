#include "bench/storage_index.h"

#include <benchmark/benchmark.h>
#include <strings.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <random>

#include "bench/storage_peers.h"

namespace bench {
namespace {

using Pointers = std::vector<const IndexedUnit*>;
using IndexType = CRkFileArrayIndex::INDEX_TYPE;

/// For each kind of key: how ours is told of it, and how one writes it by hand.
struct NumberKey {
  static constexpr const char* kName = "number";
  static constexpr IndexType kType = CRkFileArrayIndex::INDEX_DWORD;
  static constexpr int kLength = sizeof(DWORD);
  static constexpr int kOffset = offsetof(IndexedUnit, number);
  static int Compare(const IndexedUnit& left, const IndexedUnit& right) {
    return static_cast<int>(left.number - right.number);
  }
  static int Find(CRkFileArrayIndex& index, const IndexedUnit& unit) {
    return index.FindDWORD(unit.number);
  }
};

struct TextKey {
  static constexpr const char* kName = "text";
  static constexpr IndexType kType = CRkFileArrayIndex::INDEX_STRING;
  static constexpr int kLength = IndexedUnit::kTextLength;
  static constexpr int kOffset = offsetof(IndexedUnit, text);
  static int Compare(const IndexedUnit& left, const IndexedUnit& right) {
    return ::strncasecmp(left.text, right.text, IndexedUnit::kTextLength);
  }
  static int Find(CRkFileArrayIndex& index, const IndexedUnit& unit) {
    return index.FindString(unit.text);
  }
};

struct BytesKey {
  static constexpr const char* kName = "bytes";
  static constexpr IndexType kType = CRkFileArrayIndex::INDEX_BINARY;
  static constexpr int kLength = IndexedUnit::kBytesLength;
  static constexpr int kOffset = offsetof(IndexedUnit, bytes);
  static int Compare(const IndexedUnit& left, const IndexedUnit& right) {
    return std::memcmp(left.bytes, right.bytes, IndexedUnit::kBytesLength);
  }
  static int Find(CRkFileArrayIndex& index, const IndexedUnit& unit) {
    return index.FindBinary(unit.bytes);
  }
};

template <class Key>
bool Precedes(const IndexedUnit* left, const IndexedUnit* right) {
  return Key::Compare(*left, *right) < 0;
}

template <class Key>
Pointers SortByHand(IndexedArray& array) {
  const IndexedUnit* data = array.Data();
  Pointers pointers(static_cast<std::size_t>(array.Size()));
  for (std::size_t i = 0; i < pointers.size(); ++i) pointers[i] = data + i;
  std::sort(pointers.begin(), pointers.end(), Precedes<Key>);
  return pointers;
}

template <class Key>
int FindByHand(const Pointers& pointers, const IndexedUnit& unit) {
  const auto found = std::lower_bound(pointers.begin(), pointers.end(), &unit, Precedes<Key>);
  if (found == pointers.end() || Key::Compare(**found, unit) != 0) return -1;
  return static_cast<int>(found - pointers.begin());
}

void Register(const std::string& name, IndexedArray& array,
              std::function<void(benchmark::State&)> run) {
  benchmark::RegisterBenchmark((name + "/" + std::to_string(array.Size())).c_str(), run)
      ->Unit(benchmark::kMicrosecond)
      ->UseRealTime();
}

template <class Key>
void RegisterRebuild(IndexedArray& array, std::shared_ptr<CRkFileArrayIndex> index) {
  const std::string name = std::string("rebuild, ") + Key::kName;
  Register(name + "/ours", array, [index](benchmark::State& state) {
    for (auto _ : state) {
      index->UpdateLastModified();
      index->GenerateIndex();
    }
  });
  Register(name + "/peer", array, [&array](benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(SortByHand<Key>(array).data());
  });
}

/// Finds a random unit's key each time, the same ones on both sides.
template <class Key>
void RegisterFind(IndexedArray& array, std::shared_ptr<CRkFileArrayIndex> index) {
  const std::string name = std::string("find, ") + Key::kName;
  const auto run = [&array](benchmark::State& state, auto find) {
    std::mt19937_64 random(5);
    for (auto _ : state) {
      const IndexedUnit& unit = array.Data()[random() % static_cast<unsigned>(array.Size())];
      if (find(unit) == -1) state.SkipWithError("not found");
    }
  };
  Register(name + "/ours", array, [run, index](benchmark::State& state) {
    run(state, [&index](const IndexedUnit& unit) { return Key::Find(*index, unit); });
  });
  Register(name + "/peer", array,
           [run, pointers = SortByHand<Key>(array)](benchmark::State& state) {
             run(state, [&](const IndexedUnit& unit) { return FindByHand<Key>(pointers, unit); });
           });
}

template <class Key>
void RegisterKind(IndexedArray& array) {
  const auto index = std::make_shared<CRkFileArrayIndex>();
  index->CreateFileArrayIndex(&array.Units(), Key::kType, Key::kLength, Key::kOffset);
  RegisterRebuild<Key>(array, index);
  RegisterFind<Key>(array, index);
}

IndexedUnit RandomUnit(std::mt19937_64& random) {
  IndexedUnit unit;
  unit.number = static_cast<DWORD>(random() >> 33);
  for (char& letter : unit.text) letter = "0123456789ABCDEF"[random() >> 60];
  for (unsigned char& byte : unit.bytes) byte = static_cast<unsigned char>(random());
  return unit;
}

}  // namespace

IndexedArray::IndexedArray(const std::filesystem::path& path, int units) : path_(path.string()) {
  std::filesystem::remove(path_);
  constexpr int kUnitSize = sizeof(IndexedUnit);
  Require(CRkFileArrayManager::CreateFileArray(path_.c_str(), 1, kUnitSize), "CreateFileArray");
  Require(units_.OpenFile(path_.c_str(), kUnitSize) && units_.SetSize(units), "OpenFile");
  std::mt19937_64 random(4);
  auto* unit = static_cast<IndexedUnit*>(units_.GetArray());
  std::generate_n(unit, units, [&random] { return RandomUnit(random); });
  units_.ReleaseArray(true);
}

IndexedArray::~IndexedArray() {
  units_.CloseFile();
  std::filesystem::remove(path_);
}

void RegisterIndexBenchmarks(IndexedArray& array) {
  RegisterKind<NumberKey>(array);
  RegisterKind<TextKey>(array);
  RegisterKind<BytesKey>(array);
}

}  // namespace bench
