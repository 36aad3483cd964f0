#include "vdstomgr/storage/array_file.h"

#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <random>
#include <thread>

#include "tests/storage/faulty_environment.h"
#include "tests/storage/storage_test.h"
#include "vdstomgr/platform/text/code_page.h"

namespace {

using Unit = std::array<BYTE, 24>;

Unit UnitOf(DWORD number) {
  Unit unit{};
  std::memcpy(unit.data(), &number, sizeof number);
  unit.back() = static_cast<BYTE>(number * 7);
  return unit;
}

class ArrayFile : public StorageTest {
 protected:
  std::string Create(const std::string& name, int count = 0) {
    EXPECT_TRUE(CRkFileArrayManager::CreateFileArray(Path(name).c_str(), 7, sizeof(Unit)));
    CRkFileArrayManager array;
    EXPECT_TRUE(array.OpenFile(Path(name).c_str(), sizeof(Unit)));
    for (int i = 0; i < count; ++i) EXPECT_TRUE(array.Add(UnitOf(static_cast<DWORD>(i)).data()));
    return Path(name);
  }

  static std::vector<Unit> UnitsOf(CRkFileArrayManager& array) {
    std::vector<Unit> units(static_cast<std::size_t>(array.GetSize()));
    if (!units.empty()) std::memcpy(units.data(), array.GetArrayPtr(), units.size() * sizeof(Unit));
    return units;
  }
};

TEST_F(ArrayFile, ANewFileIsItsHeader) {
  const std::string path = Path("a");
  ASSERT_TRUE(CRkFileArrayManager::CreateFileArray(path.c_str(), 0x04030201, 300));
  const char header[] =
      "\xFB\0ARRAY\0"
      "0100"
      "\1\2\3\4"
      "\x2C\1\0\0"
      "\0\0\0\0\0\0\0\0\0\0\0";
  EXPECT_EQ(Read(path), std::string(header, 32));
  EXPECT_FALSE(CRkFileArrayManager::CreateFileArray(path.c_str(), 1, 300));
  EXPECT_EQ(TakeTraces().at(0).rfind("CRkFileArrayManager::CreateFileArray((File)" + path +
                                         ", (ID)1, (Unit)300) > return false for CreateFile Fail "
                                         "(Error:",
                                     0),
            0u);
  EXPECT_FALSE(CRkFileArrayManager::CreateFileArray(Path("b").c_str(), 1, 0));
  EXPECT_FALSE(CRkFileArrayManager::CreateFileArray(Path("b").c_str(), 1, -300));
  EXPECT_FALSE(std::filesystem::exists(Path("b")));
  CRkFileArrayManager array;
  ASSERT_TRUE(array.OpenFile(path.c_str(), 300));
  EXPECT_EQ(array.GetSize(), 0);
  EXPECT_EQ(array.GetArrayID(), 0x04030201u);
  const std::array<BYTE, 300> unit{9};
  EXPECT_TRUE(array.Add(unit.data()));
  EXPECT_EQ(std::filesystem::file_size(path), 10485760u);
  EXPECT_TRUE(array.SetSize(34952));  // fills 10,485,632 bytes
  EXPECT_EQ(std::filesystem::file_size(path), 10485760u);
  EXPECT_TRUE(array.SetSize(34953));
  EXPECT_EQ(std::filesystem::file_size(path), 20971520u);
  array.RemoveAll();
  EXPECT_EQ(std::filesystem::file_size(path), 20971520u);
  EXPECT_EQ(Read(path).substr(24, 9), std::string("\0\0\0\0\0\0\0\0\x9", 9));
  EXPECT_FALSE(array.SetSize(-1) || array.SetSize(14316558));  // 4 GiB
  EXPECT_EQ(std::filesystem::file_size(path), 20971520u);
}

TEST_F(ArrayFile, RefusalsSayWhy) {
  const std::string good = Create("good");
  const std::string not_initialised = "파일 초기화가 되어 있지 않은 파일임";
  const std::string dismatch =
      "Array Unit Size Dismatch between Requested and File Header Information";
  const std::string locked = "파일 자체가 외부에서 Lock이 걸려 열지 못하는 상태임";
  const auto expect = [&](const std::string& path, const std::string& box,
                          const std::string& trace) {
    CRkFileArrayManager array;
    TakeTraces();
    EXPECT_FALSE(array.OpenFile(path.c_str(), 25));
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(vdstomgr::ToUtf8(TakeBoxes().back()), "OpenFile >> " + box);
    EXPECT_EQ(vdstomgr::ToUtf8(TakeTraces().back()), "CRkFileArrayManager::" + trace);
  };
  const auto return_for = [](const std::string& path, const std::string& reason) {
    return "OpenFile((File)" + path + ", (Unit)25) > return for " + reason;
  };
  expect(Path("none"), locked, "OpenFile >> " + locked);
  expect(good, "return for " + dismatch, return_for(good, dismatch));
  const std::string empty = Write("empty", "");
  expect(empty, "return for " + not_initialised, return_for(empty, not_initialised));
  expect(Write("short", "0123456789"), "RefreshArrayDHF false",
         "RefreshArrayDHF() > return false for Invalid Header (File Size Dismatch)");
}

TEST_F(ArrayFile, HeadersThatLieAreRefused) {
  struct Case {
    DWORD unit_size, data_bytes;
    std::size_t file_size;
    int count;  ///< -1: refused
  };
  const Case cases[] = {{24, 48, 80, 2},
                        {24, 49, 80, -1},
                        {24, 47, 80, 1},
                        {24, 0xFFFFFFFF, 80, -1},
                        {0, 0, 80, -1},
                        {0xFFFFFFFF, 0, 80, -1},
                        {0x80000000, 0x80000000, 80, -1},
                        {0x7FFFFFFF, 0, 80, 0},
                        {1, 48, 80, 48},
                        {24, 0xFFFFFFE0, 32, -1},
                        {24, 0, 31, -1},
                        {24, 0, 1, -1}};
  for (const auto& [unit_size, data_bytes, file_size, count] : cases) {
    std::string bytes(std::max<std::size_t>(file_size, 32), '\1');
    std::memcpy(bytes.data() + 16, &unit_size, 4);
    std::memcpy(bytes.data() + 24, &data_bytes, 4);
    CRkFileArrayManager array;
    const bool opened = array.OpenFile(Write("a", bytes.substr(0, file_size)).c_str());
    EXPECT_EQ(opened, count >= 0) << unit_size << " " << data_bytes;
    EXPECT_EQ(array.GetSize(), std::max(count, 0));
    EXPECT_EQ(array.GetBuffer(count), nullptr);
    array.ReleaseBuffer(false);
    TakeBoxes();
  }
}

/// Random operations, wrong indices among them, against a vector.
TEST_F(ArrayFile, BehavesLikeAVector) {
  const std::string path = Create("a");
  std::vector<Unit> model;
  CRkFileArrayManager array;
  ASSERT_TRUE(array.OpenFile(path.c_str(), sizeof(Unit)));
  std::mt19937 random(20240601);
  const auto below = [&](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  const auto remove_many = [&] {
    CDWordArray indices;
    for (int i = below(12); i > 0; --i) indices.Add(static_cast<DWORD>(below(60) - 5));
    for (int i = static_cast<int>(model.size()) - 1; i >= 0; --i) {
      const bool listed = std::count(indices.begin(), indices.end(), static_cast<DWORD>(i)) > 0;
      if (listed) model.erase(model.begin() + i);
    }
    array.RemoveAt(indices);
  };
  for (int step = 0; step < 30000; ++step) {
    const Unit unit = UnitOf(static_cast<DWORD>(step));
    const int size = static_cast<int>(model.size());
    const int index = below(size + 4) - 2;
    const bool is_inside = index >= 0 && index < size;
    switch (below(size > 200 ? 9 : 7)) {
      case 0:
        EXPECT_EQ(array.InsertAt(index, unit.data()), is_inside || index == size);
        if (is_inside || index == size) model.insert(model.begin() + index, unit);
        break;
      case 1:
        array.RemoveAt(index);
        if (is_inside) model.erase(model.begin() + index);
        break;
      case 2:
        if (void* const at = array.GetBuffer(index)) {
          model[static_cast<std::size_t>(index)] = unit;
          std::memcpy(at, unit.data(), unit.size());
        }
        array.ReleaseBuffer(true);
        break;
      case 3:
        if (below(200) == 0) array = CRkFileArrayManager(array);
        if (below(200) == 0) {
          array.CloseFile();
          ASSERT_TRUE(array.OpenFile(path.c_str(), -1));
        }
        if (is_inside) {
          EXPECT_TRUE(array.Add(array.GetBuffer(index)));  // a unit of its own
          array.ReleaseBuffer(false);
          model.push_back(model[static_cast<std::size_t>(index)]);
        }
        break;
      case 7:
        remove_many();
        break;
      case 8:
        EXPECT_TRUE(array.SetSize(below(size)) || size == 0);
        model.resize(static_cast<std::size_t>(array.GetSize()));
        break;
      default:
        EXPECT_TRUE(array.Add(unit.data()));
        model.push_back(unit);
    }
    ASSERT_EQ(UnitsOf(array), model) << step;
  }
}

TEST_F(ArrayFile, LocksPairUpWhateverTheAnswer) {
  CRkFileArrayManager array;
  CRkFileArrayManager other;
  EXPECT_EQ(array.GetArray(), nullptr);
  array.ReleaseArray(true);
  ASSERT_TRUE(array.OpenFile(Create("a", 6).c_str()));
  EXPECT_EQ(array.GetArray(-1, true), nullptr);
  EXPECT_EQ(array.GetBuffer(-1), nullptr);
  EXPECT_EQ(array.GetArray(-2), nullptr);
  EXPECT_EQ(array.GetBuffer(6), nullptr);
  EXPECT_NE(array.GetBuffer(6, 7), nullptr);
  for (int i = 0; i < 5; ++i) array.ReleaseArray(false);
  CDWordArray indices{3, 1};
  array.SetSize(6);
  array.RemoveAt(indices);
  EXPECT_EQ(UnitsOf(array), (std::vector{UnitOf(0), UnitOf(2), UnitOf(4), UnitOf(5)}));
  other = array;
  other.RemoveAt(0);
  EXPECT_EQ(array.GetSize(), 3);
  std::thread([&] { EXPECT_EQ(array.GetSize(), 3); }).join();  // the lock is free
  array.CloseFile();
  EXPECT_EQ(other.GetArrayPtr(), nullptr);
}

/// Whatever call fails, once or from then on: the answer is false and the units stay.
TEST_F(ArrayFile, AFailedCallLosesNothing) {
  const std::vector<std::function<bool(CRkFileArrayManager&)>> operations = {
      [](auto& array) { return array.Add(UnitOf(99).data()); },
      [](auto& array) { return array.InsertAt(1, UnitOf(99).data()); },
      [](auto& array) { return array.SetSize(3000000); },
      [](auto& array) { return vdstomgr::SyncArray(array); },
  };
  int name = 0;
  for (const auto& operation : operations) {
    for (const bool from_then_on : {false, true}) {
      bool failed = true;
      for (int call = 1; failed; ++call) {
        FaultyFiles files;
        const std::string path = Create(std::to_string(++name), 3);
        std::filesystem::resize_file(path, 32 + 3 * sizeof(Unit));  // so that it has to grow
        CRkFileArrayManager array;
        ASSERT_TRUE(array.OpenFile(path.c_str()));
        const auto before = UnitsOf(array);
        files.FailAt(call, from_then_on);
        const bool answer = operation(array);
        failed = files.HasFailed();
        files.Heal();
        EXPECT_TRUE(answer || failed);
        EXPECT_TRUE(answer || UnitsOf(array) == before) << call;
        EXPECT_TRUE(array.Add(UnitOf(5).data()));
        EXPECT_EQ(UnitsOf(array).back(), UnitOf(5));
        EXPECT_EQ(UnitsOf(array)[0], UnitOf(0));
        array.CloseFile();
        std::filesystem::remove(path);
        ASSERT_LT(call, 50);
      }
    }
  }
}

TEST_F(ArrayFile, OpeningAndCreatingFailCleanly) {
  for (int call = 1; call < 14; ++call) {
    FaultyFiles files;
    files.FailAt(call, true);
    const bool created = CRkFileArrayManager::CreateFileArray(Path("a").c_str(), 7, 24);
    CRkFileArrayManager array;
    const bool opened = created && array.OpenFile(Path("a").c_str());
    EXPECT_EQ(opened, !files.HasFailed());
    files.Heal();
    array.CloseFile();
    EXPECT_EQ(created, array.OpenFile(Path("a").c_str(), 24));
    array.CloseFile();  // on Windows what is open cannot be removed
    std::filesystem::remove(Path("a"));
  }
}

TEST_F(ArrayFile, WhatWasSyncedSurvivesAPowerCut) {
  FaultyFiles files;
  const std::string path = Create("a");
  {
    CRkFileArrayManager array;
    ASSERT_TRUE(array.OpenFile(path.c_str()));
    array.Add(UnitOf(1).data());
    EXPECT_TRUE(vdstomgr::SyncArray(array));
    array.Add(UnitOf(2).data());
  }
  files.LoseUnsynced();
  CRkFileArrayManager array;
  EXPECT_FALSE(vdstomgr::SyncArray(array));
  ASSERT_TRUE(array.OpenFile(path.c_str()));
  EXPECT_EQ(UnitsOf(array), std::vector{UnitOf(1)});
}

TEST_F(ArrayFile, ThreadsShareAnArray) {
  CRkFileArrayManager shared;
  ASSERT_TRUE(shared.OpenFile(Create("shared").c_str()));
  const std::string own_paths[] = {Create("0"), Create("1")};
  const auto work = [&](int thread) {
    CRkFileArrayManager own;
    CRkFileArrayManager copy(shared);
    EXPECT_TRUE(own.OpenFile(own_paths[thread].c_str()));
    for (DWORD i = 0; i < 2000; ++i) {
      EXPECT_TRUE(copy.Add(UnitOf(i).data()) && own.Add(UnitOf(i).data()));
      if (i % 3 == 1) copy.RemoveAt(0);
      EXPECT_NE(copy.GetBuffer(0), nullptr);
      copy.ReleaseBuffer(i % 2 == 0);
    }
    EXPECT_EQ(own.GetSize(), 2000);
  };
  std::thread first(work, 0);
  work(1);
  first.join();
  EXPECT_EQ(shared.GetSize(), 2 * (2000 - 667));
}

}  // namespace
