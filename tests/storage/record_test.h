#pragma once

#include <gmock/gmock.h>

#include <string>

#include "tests/storage/storage_test.h"
#include "vdstomgr/storage/record_storage.h"

/// A test with a record storage.
class Records : public StorageTest {
 protected:
  static constexpr WORD kNumber = 0x44;
  static constexpr WORD kText = 0x53;
  static constexpr BYTE kBytes[] = {1, 2, 3};

  /// A new, empty, open storage.
  void Make(WORD key_type, WORD key_length) {
    storage_.FreeStorageFile();
    ASSERT_TRUE(CRkStorageManager::CreateStorageFile(path_.c_str(), 7, key_type, key_length));
    ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
  }
  bool Put(const std::string& key, const std::string& data, bool sort = true) {
    return storage_.Add(key.c_str(), reinterpret_cast<const BYTE*>(data.data()),
                        static_cast<int>(data.size()), sort);
  }
  /// The data of a record; "-" when there is none.
  std::string Take(int position) {
    int length = 0;
    const auto* data = reinterpret_cast<const char*>(storage_.GetBuffer(position, length));
    const std::string bytes =
        data == nullptr ? "-" : std::string(data, static_cast<std::size_t>(length));
    storage_.ReleaseBuffer();
    return bytes;
  }
  std::string Find(const std::string& key) { return Take(storage_.FindString(key.c_str(), true)); }

  static std::string Bytes(const std::string& hex) {
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
      bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    }
    return bytes;
  }
  static std::string Hex(const std::string& bytes) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string hex;
    for (const char c : bytes) {
      hex += {kDigits[static_cast<unsigned char>(c) >> 4], kDigits[c & 15]};
    }
    return hex;
  }

  std::string path_ = Path("r.pdb");
  std::string index_ = Path("r.pdx");
  CRkStorageManager storage_;
};
