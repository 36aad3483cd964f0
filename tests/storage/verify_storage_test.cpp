#include "vdstomgr/storage/verify_storage.h"

#include <set>

#include "tests/storage/record_test.h"
#include "vdstomgr/storage/repair_storage.h"

namespace {

using vdstomgr::RepairStorage;
using vdstomgr::VerifyStorage;

/// The faults of a report by name, each once.
std::string Faults(const vdstomgr::StorageReport& report) {
  std::set<std::string> names;
  for (const auto& finding : report.findings) names.insert(NameOf(finding.fault));
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
  return text;
}

/// A storage of the records a (at offset 0 among the records), b (21), c (42, removed) and d (65),
/// and the clusters a (at 32 in the index file), b (54) and d (76), without slack.
class Damage : public Records {
 protected:
  Damage() {
    Make(kText, 4);
    for (const char* key : {"a", "b", "c", "d"}) EXPECT_TRUE(Put(key, DataOf(key)));
    EXPECT_TRUE(storage_.RemoveAt(2));
    storage_.FreeStorageFile();
    data_ = Read(path_).substr(0, 284 + 86);
    index_bytes_ = Read(index_).substr(0, 32 + 3 * 22);
  }
  static std::string DataOf(const std::string& key) {
    return key == "c" ? "three" : "<" + key + ">";
  }
  /// The keys whose records can be read; "-" when the files are refused.
  std::string Survivors() {
    const bool loaded = storage_.LoadStorageFile(path_.c_str(), 2, 3);
    std::string keys = loaded ? "" : "-";
    for (const char* key : {"a", "b", "c", "d"}) {
      if (loaded && Find(key) == DataOf(key)) keys += key;
    }
    storage_.FreeStorageFile();
    TakeBoxes();
    return keys;
  }

  std::string data_;
  std::string index_bytes_;
};

struct Case {
  char file;  ///< 'd' or 'i'
  std::size_t offset;
  std::string bytes;  ///< what stands there instead; empty: the file ends there
  const char* faults;
  const char* survivors;
  const char* repaired;
};

const Case kCases[] = {
    {'d', 0, "\xFE", "data_signature", "-", "abd"},
    {'d', 8, "1", "data_version", "abd", "abd"},
    {'d', 12, "\x08", "index_header record_without_cluster", "-", "abd"},
    {'d', 16, "\x08", "", "abd", "abd"},
    {'d', 20, "X", "data_key_kind", "a", "a"},  // four bytes may be a number; searches answer 0
    {'d', 22, "\x05", "index_header record_checksum record_without_cluster", "-", "abd"},
    {'d', 24, "\xFF", "data_length", "-", "abd"},
    {'d', 31, "\x80", "data_length", "-", "abd"},
    {'d', 24, std::string("\x3C\0", 2), "cluster_outside record_tail_short", "ab", "abd"},
    {'d', 40, "\x08", "", "abd", "abd"},
    {'d', 284, "\xFE", "cluster_mismatch record_damaged", "bd", "bd"},
    {'d', 285, "\x33", "cluster_mismatch record_damaged", "bd", "bd"},
    {'d', 285, "\x22", "cluster_of_removed", "bd", "bd"},
    {'d', 286, "\x16", "cluster_mismatch record_damaged", "bd", "bd"},
    {'d', 289, "\xFF", "cluster_mismatch record_damaged", "bd", "bd"},
    {'d', 290, "\x01", "cluster_mismatch record_checksum record_without_cluster", "bd", "bd"},
    {'d', 294, "x", "cluster_mismatch record_without_cluster", "abd", "bd"},
    {'d', 298, "x", "", "abd", "abd"},
    {'d', 301, "x", "record_checksum", "bd", "bd"},
    {'d', 304, "\xFE", "cluster_mismatch record_damaged", "bd", "bd"},
    {'d', 284 + 42 + 18, "x", "", "abd", "abd"},
    {'d', 284 + 70, "", "cluster_outside data_length record_tail_short", "-", "ab"},
    {'d', 284 + 66, "", "cluster_outside data_length record_tail_short", "-", "ab"},
    {'d', 100, "", "data_header_short", "-", "-"},
    {'d', 0, "", "data_header_short", "-", "-"},
    {'i', 0, "\xFE", "index_header record_without_cluster", "abd", "abd"},
    {'i', 12, "\x08", "index_header record_without_cluster", "-", "abd"},
    {'i', 16, "\x17", "index_header record_without_cluster", "-", "abd"},
    {'i', 24, "\x58", "index_length record_without_cluster", "-", "abd"},
    {'i', 24, "\x2C", "record_without_cluster", "ab", "abd"},
    {'i', 27, "\xFF", "index_length record_without_cluster", "-", "abd"},
    {'i', 32, "x", "cluster_mismatch cluster_order record_without_cluster", "bd", "abd"},
    {'i', 38, "x", "cluster_mismatch record_without_cluster", "bd", "abd"},
    {'i', 42, "\x15", "cluster_double cluster_mismatch record_without_cluster", "bd", "abd"},
    {'i', 42, "\x01", "cluster_mismatch cluster_overlap record_without_cluster", "bd", "abd"},
    {'i', 45, "\x80", "cluster_outside record_without_cluster", "bd", "abd"},
    {'i', 49, "\x80", "cluster_outside record_without_cluster", "bd", "abd"},
    {'i', 50, std::string(1, '\0'), "cluster_free record_without_cluster", "bd", "abd"},
    {'i', 50, "\x01", "cluster_outside record_without_cluster", "bd", "abd"},
    {'i', 50, "\x17", "cluster_mismatch cluster_overlap record_without_cluster", "bd", "abd"},
    {'i', 53, "\xFF", "cluster_outside record_without_cluster", "bd", "abd"},
    {'i', 60, "", "index_length record_without_cluster", "-", "abd"},
    {'i', 0, "", "index_header record_without_cluster", "-", "abd"},
};

TEST_F(Damage, IsNamedAndLosesNoMoreThanItsRecord) {
  ASSERT_EQ(VerifyStorage(path_.c_str()).finding_count, 0U);
  for (const Case& damage : kCases) {
    SCOPED_TRACE(std::string(1, damage.file) + std::to_string(damage.offset) + " " +
                 Hex(damage.bytes));
    std::string data = data_;
    std::string index = index_bytes_;
    std::string& file = damage.file == 'd' ? data : index;
    if (damage.bytes.empty()) file.resize(damage.offset);
    file.replace(damage.offset, damage.bytes.size(), damage.bytes);
    Write("r.pdb", data);
    Write("r.pdx", index);
    const auto report = VerifyStorage(path_.c_str());
    EXPECT_EQ(Faults(report), damage.faults);
    EXPECT_EQ(Read(path_) + Read(index_), data + index);
    EXPECT_EQ(Survivors(), damage.survivors);
    Write("r.pdb", data);
    Write("r.pdx", index);
    const auto repair = RepairStorage(path_.c_str());
    EXPECT_EQ(Survivors(), damage.repaired);
    EXPECT_EQ(repair.good_records, repair.repaired ? VerifyStorage(path_.c_str()).clusters : 0);
    EXPECT_EQ(repair.kept_index.empty(), !repair.repaired || repair.was_sound);
    if (!repair.kept_index.empty()) {
      EXPECT_EQ(Read(repair.kept_index), index);
      std::filesystem::remove(repair.kept_index);
    }
  }
}

/// The cluster or the record lies about checksum or length: a removal counts all the same.
TEST_F(Damage, DoesNotBringBackWhatWasRemoved) {
  const Case cases[] = {{'d', 290, "\x01", "", "", ""},
                        {'i', 38, "x", "", "", ""},
                        {'i', 50, "\x14", "", "", ""},
                        {'i', 50, "\x17", "", "", ""}};
  for (const Case& damage : cases) {
    SCOPED_TRACE(damage.offset);
    std::string data = data_;
    std::string index = index_bytes_;
    (damage.file == 'd' ? data : index).replace(damage.offset, 1, damage.bytes);
    Write("r.pdb", data);
    Write("r.pdx", index);
    ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
    EXPECT_TRUE(storage_.RemoveAt(storage_.FindString("a", true)));
    storage_.FreeStorageFile();
    EXPECT_EQ(Read(path_)[285], '\x22');
    EXPECT_TRUE(RepairStorage(path_.c_str()).repaired);
    EXPECT_EQ(Survivors(), "bd");
  }
}

TEST_F(Damage, OfAMissingIndexOrAStrangersIsRepaired) {
  std::filesystem::remove(index_);
  EXPECT_EQ(Faults(VerifyStorage(path_.c_str())), "index_file_unreadable record_without_cluster");
  EXPECT_TRUE(RepairStorage(path_.c_str()).kept_index.empty());
  EXPECT_EQ(Survivors(), "abd");
  Write("r.pdx.old", "taken");
  Write("r.pdx", "damaged");
  EXPECT_EQ(RepairStorage(path_.c_str()).kept_index, index_ + ".old.2");
  ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
  EXPECT_FALSE(RepairStorage(path_.c_str()).repaired);  // in use
  EXPECT_FALSE(RepairStorage(Path("none.pdb").c_str()).repaired);
  EXPECT_FALSE(RepairStorage(nullptr).repaired);
  EXPECT_EQ(Faults(VerifyStorage(nullptr)), "data_file_unreadable");
}

TEST_F(Damage, OfACompactionCutOffWhileRenamingIsRepaired) {
  const auto name = [&](int file) {
    return (std::vector<std::string>{path_, index_, path_ + ".compacting.pdb",
                                     path_ + ".compacting.pdx"})[static_cast<std::size_t>(file)];
  };
  for (int renamed = 1; renamed <= 4; ++renamed) {
    for (int file = 0; file < 4; ++file) {
      std::filesystem::remove(name(file % 2) + ".bak");
      Write(std::filesystem::path(name(file)).filename().string(),
            file % 2 == 0 ? data_ : index_bytes_);
    }
    for (int file = 0; file < renamed; ++file) {
      std::filesystem::rename(name(file), file < 2 ? name(file) + ".bak" : name(file - 2));
    }
    EXPECT_TRUE(RepairStorage(path_.c_str()).repaired) << renamed;
    EXPECT_EQ(Survivors(), "abd") << renamed;
  }
}

}  // namespace
