#include "operation_table.h"

namespace vdstomgr {
namespace {

TEST_F(OperationTest, PhotosAreDeletedWithWhatHangsOnThem) {
  const std::vector<const char*> before = {"INSERT INTO PhotoMaster (szGUID) values ('a')",
                                           "INSERT INTO PhotoMaster (szGUID) values ('b')",
                                           "INSERT INTO PhotoTag values ('a', 1)",
                                           "INSERT INTO PhotoTag values ('b', 1)",
                                           "INSERT INTO PhotoAlbum values ('a', 1, 1)",
                                           "INSERT INTO PhotoAlbum values ('b', 1, 1)",
                                           "INSERT INTO PhotoRP values ('a', 'r')",
                                           "INSERT INTO PhotoRP values ('b', 'r')",
                                           "INSERT INTO PhotoOP values ('a', 'o')",
                                           "INSERT INTO PhotoOP values ('b', 'o')"};
  CStringArray told;
  const CRkCallback progress = [&](DWORD done, DWORD total, const char* text, bool flag) {
    told.Add(Joined(done, total, text == nullptr, flag));
  };
  const auto some = [&](OpenCatalogue& catalogue) {
    told.RemoveAll();
    const bool none = catalogue.DeletePhotosAndRelations(CStringArray(), progress);
    const bool deleted = catalogue.DeletePhotosAndRelations(CStringArray{"x", "a"}, progress);
    return Joined(none, deleted, Listed(told));
  };
  const auto one = [&](OpenCatalogue& catalogue) {
    told.RemoveAll();
    const bool deleted = catalogue.DeletePhotosAndRelations("b", progress);
    return Joined(deleted, Listed(told));
  };
  for (const char* table : {"PhotoMaster", "PhotoTag", "PhotoAlbum", "PhotoRP", "PhotoOP"}) {
    const std::string query = std::string("SELECT szGUID FROM ") + table;
    Check({{table, before, some, "1|1|0|2|1|0,1|2|1|0", query.c_str(), Split("b")},
           {table, before, one, "1|0|1|1|0", query.c_str(), Split("a")}});
  }
}

}  // namespace
}  // namespace vdstomgr
