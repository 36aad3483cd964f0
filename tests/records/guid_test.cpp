#include "vdstomgr/records/guid.h"

#include <gtest/gtest.h>

namespace {

TEST(Guid, IsToldByItsForm) {
  for (const char* guid :
       {"3F2504E0-4F89-41D3-9A0C-0305E82C3301", "3f2504e0-4f89-41d3-9a0c-0305e82c3301"})
    EXPECT_TRUE(vdstomgr::IsGuid(guid)) << guid;
  for (const char* other :
       {"", "3F2504E0-4F89-41D3-9A0C-0305E82C330", "3F2504E0-4F89-41D3-9A0C-0305E82C33011",
        "3F2504E0-4F89-41D3-9A0C-0305E82C330'", "3F2504E04-F89-41D3-9A0C-0305E82C3301",
        "' OR 'a' = 'a' OR 'a' = 'aaaaaaaaaaa", "GF2504E0-4F89-41D3-9A0C-0305E82C3301"})
    EXPECT_FALSE(vdstomgr::IsGuid(other)) << other;
}

}  // namespace
