#include "vdstomgr/storage/array_file.h"

#include <array>
#include <cstring>
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
  for (const auto& [bad_path, unit_size] : {std::pair(path, 300), {Path("b"), 0}, {"", 1}}) {
    EXPECT_FALSE(CRkFileArrayManager::CreateFileArray(bad_path.c_str(), 1, unit_size));
    const std::string trace = "CRkFileArrayManager::CreateFileArray((File)" + bad_path +
                              ", (ID)1, (Unit)" + std::to_string(unit_size) +
                              ") > return false for CreateFile Fail (Error:";
    EXPECT_EQ(TakeTraces().back().rfind(trace, 0), 0u);
  }
  EXPECT_FALSE(std::filesystem::exists(Path("b")));
  CRkFileArrayManager array;
  ASSERT_TRUE(array.OpenFile(path.c_str(), 300));
  EXPECT_EQ(array.GetArrayID(), 0x04030201u);
  const std::array<BYTE, 300> unit{9};
  EXPECT_TRUE(array.Add(unit.data()));
  const auto expect_size = [&](int count, bool answer, std::uintmax_t file_size) {
    EXPECT_EQ(array.SetSize(count), answer) << count;
    EXPECT_EQ(std::filesystem::file_size(path), file_size) << count;
  };
  expect_size(34952, true, 10485760u);  // fills 10,485,632 bytes
  expect_size(34953, true, 20971520u);
  expect_size(0, true, 20971520u);
  EXPECT_EQ(Read(path).substr(24, 9), std::string("\0\0\0\0\0\0\0\0\x9", 9));
  expect_size(-1, false, 20971520u);
  expect_size(14316558, false, 20971520u);  // 4 GiB
}

TEST_F(ArrayFile, RefusalsSayWhy) {
  const std::string locked = "파일 자체가 외부에서 Lock이 걸려 열지 못하는 상태임";
  const std::string empty = "return for 파일 초기화가 되어 있지 않은 파일임";
  const std::string other =
      "return for Array Unit Size Dismatch between Requested and File Header Information";
  const auto opening = [&](const char* name) {
    return "OpenFile((File)" + Path(name) + ", (Unit)25) > ";
  };
  const std::string cases[][3] = {
      {Path("none"), locked, "OpenFile >> " + locked},
      {Write("empty", ""), empty, opening("empty") + empty},
      {Create("good"), other, opening("good") + other},
      {Write("short", "0123456789"), "RefreshArrayDHF false",
       "RefreshArrayDHF() > return false for Invalid Header (File Size Dismatch)"}};
  for (const auto& [path, box, trace] : cases) {
    CRkFileArrayManager array;
    EXPECT_FALSE(array.OpenFile(path.c_str(), 25));
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(vdstomgr::ToUtf8(TakeBoxes().back()), "OpenFile >> " + box);
    EXPECT_EQ(vdstomgr::ToUtf8(TakeTraces().back()), "CRkFileArrayManager::" + trace);
  }
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
  EXPECT_EQ(array.GetArray(), nullptr);
  array.ReleaseArray(true);
  ASSERT_TRUE(array.OpenFile(Create("a", 6).c_str()));
  EXPECT_EQ(array.GetArray(-1, true), nullptr);
  EXPECT_EQ(array.GetBuffer(-1), nullptr);
  EXPECT_EQ(array.GetArray(-2), nullptr);
  EXPECT_EQ(array.GetBuffer(6), nullptr);
  EXPECT_NE(array.GetBuffer(6, 7), nullptr);
  for (int i = 0; i < 5; ++i) array.ReleaseArray(false);
  CRkFileArrayManager other(array);
  other.RemoveAt(0);
  EXPECT_EQ(array.GetSize(), 6);
  std::thread([&] { EXPECT_EQ(array.GetSize(), 6); }).join();  // the lock is free
  array.CloseFile();
  EXPECT_EQ(other.GetArrayPtr(), nullptr);
}

/// Whatever call fails, once or from then on: the answer is false and the units stay.
TEST_F(ArrayFile, AFailedCallLosesNothing) {
  using Operation = bool (*)(CRkFileArrayManager&);
  const Operation operations[] = {
      [](auto& array) { return array.Add(UnitOf(99).data()); },
      [](auto& array) { return array.InsertAt(1, UnitOf(99).data()); },
      [](auto& array) { return array.SetSize(3000000); },
      [](auto& array) { return vdstomgr::SyncArray(array); },
  };
  int name = 0;
  for (const Operation operation : operations) {
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

}  // namespace
