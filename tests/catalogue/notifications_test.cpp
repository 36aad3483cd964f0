#include "operation_table.h"

namespace vdstomgr {
namespace {

std::string Marks(const TrashNotifyArray& marks) {
  CStringArray texts;
  for (const TRASHNOTIFY_INFO& mark : marks) texts.Add(Joined(mark.szGUID, mark.byteType));
  return Listed(texts);
}

TEST_F(OperationTest, TrashNotifications) {
  const char* const rows = "SELECT * FROM NotifyTrash_List ORDER BY szGUID";
  const std::vector<const char*> before = {
      "INSERT INTO NotifyTrash_List (szGUID, byteType) values ('a', 1)"};
  const auto marks_of = [](OpenCatalogue& catalogue) {
    TrashNotifyArray marks{{"z", 9}};
    const bool got = catalogue.GetNotifyTrash_List(marks);
    return Joined(got, Marks(marks));
  };
  Check({{"null is everything", before,
          [&](OpenCatalogue& catalogue) {
            for (int i = 0; i < 2; ++i) catalogue.AddNotifyTrash_List(nullptr, 4);
            catalogue.AddNotifyTrash_List("b", 4);
            return marks_of(catalogue);
          },
          "1||255", rows, Split("|255", ",")},
         {"an empty GUID covers with its own type", before,
          [&](OpenCatalogue& catalogue) {
            catalogue.ResetNotifyTrash_List();
            catalogue.AddNotifyTrash_List("", 4);
            catalogue.AddNotifyTrash_List("b", 1);
            return marks_of(catalogue);
          },
          "1||4", rows, Split("|4", ",")}});
}

}  // namespace
}  // namespace vdstomgr
