#include "vdstomgr/records/trash_photo_info.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(TrashPhotoInfo, TextsThatDoNotFitFollowTheirRule) {
  TRASHPHOTOINFO info;
  const auto name_of = [&](const std::string& name) {
    info.SetFileName(name.c_str());
    return std::string(info.szFileName);
  };
  EXPECT_EQ(name_of(std::string(519, 'n')), std::string(519, 'n'));
  EXPECT_EQ(name_of(std::string(596, 'n') + ".jpg"), std::string(512, 'n') + ".jpg");
  // Code page 949: the cut falls into a wide character.
  EXPECT_EQ(name_of(std::string(511, 'n') + "\xB0\xA1\xB0\xA1\xB0\xA1.jpg"),
            std::string(511, 'n') + ".jpg");
  EXPECT_EQ(name_of("n." + std::string(600, 'x')), "n." + std::string(517, 'x')) << "no extension";
  const auto path_of = [&](int length) {
    info.SetFolderPath(std::string(static_cast<std::size_t>(length), 'p').c_str());
    return std::string(info.szFolderPath);
  };
  EXPECT_EQ(path_of(510), std::string(510, 'p'));
  EXPECT_EQ(path_of(511), "?");
  info.SetDeleteUserID(std::string(50, 'u').c_str());
  EXPECT_EQ(info.szDeleteUserID, std::string(49, 'u'));
}

TEST(TrashPhotoInfo, NullLeavesAllTextsButThePath) {
  TRASHPHOTOINFO info;
  info.SetFileName("n");
  info.SetFolderPath("p");
  info.SetLTBURL("l");
  info.SetFileName(nullptr);
  info.SetFolderPath(nullptr);
  info.SetLTBURL(nullptr);
  EXPECT_EQ(std::string(info.szFileName) + info.szFolderPath + info.szLTBURL, "nl");
  EXPECT_EQ(info.byteNoLTB, 0);
}

}  // namespace
