#include "operation_table.h"

namespace vdstomgr {
namespace {

TEST_F(OperationTest, Tags) {
  Check({
      {"a tag is known by its name, case disregarded",
       {"INSERT INTO TagInfo (dwTagID, szTagName) values (7, 'it''s')"},
       [](OpenCatalogue& catalogue) {
         return Joined(catalogue.IsTag("IT'S"), catalogue.IsTag("it"), catalogue.IsTag(7u),
                       catalogue.IsTag(8u));
       },
       "1|0|1|0"},
  });
}

}  // namespace
}  // namespace vdstomgr
