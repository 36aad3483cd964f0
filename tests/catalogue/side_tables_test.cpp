#include "operation_table.h"

namespace vdstomgr {
namespace {

#define PATHS_OF(kind)                                                                         \
  {                                                                                            \
    "Photo" #kind,                                                                             \
        {"INSERT INTO Photo" #kind " (szGUID, szPathName) values ('a', 'p')",                  \
         "INSERT INTO Photo" #kind " (szGUID) values ('b')",                                   \
         "INSERT INTO Photo" #kind " (szGUID, szPathName) values ('c', 'r')"},                 \
        [](OpenCatalogue& catalogue) {                                                         \
          return Answers{catalogue.Is##kind("a"),          catalogue.Is##kind("b"),            \
                         catalogue.Is##kind("x"),          catalogue.Get##kind("a"),           \
                         catalogue.Get##kind("x"),         catalogue.Add##kind("a", "q"),      \
                         catalogue.Add##kind("d", "it's"), catalogue.Set##kind("b", "it's 2"), \
                         catalogue.Set##kind("x", "q"),    catalogue.Del##kind("c")};          \
        },                                                                                     \
        "1|0|0|p||0|1|1|1|1", "SELECT * FROM Photo" #kind " ORDER BY szGUID", {                \
      "a|p", "b|it's 2", "d|it's"                                                              \
    }                                                                                          \
  }

#define NAMES_OF(kind, table)                                                   \
  {                                                                             \
    table, {"INSERT INTO " table " (szName) values ('b')"},                     \
        [](OpenCatalogue& catalogue) {                                          \
          CStringArray names{"first"};                                          \
          return Answers{catalogue.Add##kind("it's"), catalogue.Add##kind("B"), \
                         catalogue.Get##kind(names), Listed(names)};            \
        },                                                                      \
        "1|0|2|first,b,it's", "SELECT * FROM " table " ORDER BY szName", {      \
      "b", "it's"                                                               \
    }                                                                           \
  }

TEST_F(OperationTest, SideTables) {
  Check({PATHS_OF(RP), PATHS_OF(OP), NAMES_OF(Model, "CameraModel"), NAMES_OF(Lens, "CameraLens"),
         NAMES_OF(MyModel, "MyCameraModel"), NAMES_OF(MyLens, "MyCameraLens")});
}

}  // namespace
}  // namespace vdstomgr
