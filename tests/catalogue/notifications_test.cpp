#include "operation_table.h"

namespace vdstomgr {
namespace {

constexpr DWORD kEverything = 0xFFFFFFFF;

std::string Marks(const NotifyArray& marks) {
  CStringArray texts;
  for (const NOTIFY_INFO& mark : marks) texts.Add(Joined(mark.id, mark.byteType));
  return Listed(texts);
}

std::string Marks(const TrashNotifyArray& marks) {
  CStringArray texts;
  for (const TRASHNOTIFY_INFO& mark : marks) texts.Add(Joined(mark.szGUID, mark.byteType));
  return Listed(texts);
}

/// All operations of one table: bits add up, what was got is appended, a reset empties.
#define NOTIFICATIONS_OF(name, key)                                                    \
  {                                                                                    \
    "Notify" #name, {"INSERT INTO Notify" #name " (" key ", byteType) values (7, 1)"}, \
        [](OpenCatalogue& catalogue) {                                                 \
          NotifyArray marks{{5, 9}};                                                   \
          catalogue.AddNotify##name(CDWordArray{7, 8}, 4);                             \
          catalogue.AddNotify##name(8, 6);                                             \
          const bool got = catalogue.GetNotify##name(marks);                           \
          catalogue.ResetNotify##name();                                               \
          return Joined(got, Marks(marks));                                            \
        },                                                                             \
        "1|5|9,7|5,8|6", "SELECT * FROM Notify" #name, {}                              \
  }

TEST_F(OperationTest, Notifications) {
  Check({NOTIFICATIONS_OF(Folder_Tree, "dwFolderID"), NOTIFICATIONS_OF(Folder_List, "dwFolderID"),
         NOTIFICATIONS_OF(Date_Tree, "dtDateID"), NOTIFICATIONS_OF(Date_List, "dtDateID"),
         NOTIFICATIONS_OF(Tag_Tree, "dwTagID"), NOTIFICATIONS_OF(Tag_List, "dwTagID")});
  Check({{"everything covers the others, which stay, but for those of the tree of folders",
          {"INSERT INTO NotifyTag_List (dwTagID, byteType) values (3, 1)",
           "INSERT INTO NotifyTag_Tree (dwTagID, byteType) values (3, 1)",
           "INSERT INTO NotifyFolder_Tree (dwFolderID, byteType) values (3, 1)"},
          [](OpenCatalogue& catalogue) {
            NotifyArray list{{5, 9}}, tags, folders;
            catalogue.AddNotifyTag_List(kEverything, 2);
            catalogue.AddNotifyTag_List(CDWordArray{4, kEverything}, 2);
            catalogue.GetNotifyTag_List(list);
            catalogue.GetNotifyTag_Tree(tags);
            catalogue.GetNotifyFolder_Tree(folders);
            return Joined(Marks(list), Marks(tags), Marks(folders));
          },
          "4294967295|255|3|1|",
          "SELECT * FROM NotifyTag_List ORDER BY dwTagID",
          Split("-1|255,3|1", ",")}});
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
  Check({{"bits add up", before,
          [&](OpenCatalogue& catalogue) {
            catalogue.AddNotifyTrash_List(CStringArray{"a", "b"}, 4);
            catalogue.AddNotifyTrash_List("b", 6);
            return marks_of(catalogue);
          },
          "1|z|9,a|5,b|6", rows, Split("a|5,b|6", ",")},
         {"null is everything", before,
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
