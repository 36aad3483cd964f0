#include "operation_table.h"

namespace vdstomgr {
namespace {

/// A row with another value in every column, in the order of the record.
constexpr const char* kFullRow =
    "INSERT INTO PhotoTrashMaster (szGUID, szMD5, szFileName, szLTBURL, szFolderPath, dxFileSize, "
    "wWidth, wHeight, byteRotate, szShootDate, szRegDate, szDeleteDate, szUploadUserID, "
    "szDeleteUserID, byteUploadEnd) values ('g', 'md5', 'n', 'ltb', 'a/b', '18446744073709551615', "
    "65535, 6, 7, '2001-01-01 01:00:00', '2002-01-01 02:00:00', '2003-01-01 03:00:00', 'up', 'de', "
    "8)";
constexpr const char* kBareRow =
    "INSERT INTO PhotoTrashMaster (szGUID, wWidth, wHeight, szRegDate) values ('b', 30, 20, 'x')";
constexpr const char* kRows = "SELECT * FROM PhotoTrashMaster ORDER BY szGUID";

TRASHPHOTOINFO Read(OpenCatalogue& catalogue, const char* guid) {
  TRASHPHOTOINFO info;
  info.SetGUID("as it was");
  catalogue.GetTrashPhotoInfo(guid, info);
  return info;
}

std::string Shown(const TRASHPHOTOINFO& info) {
  return Joined(info.szGUID, info.szMD5, info.szFileName, info.szLTBURL, info.szFolderPath,
                info.FileSize, info.byteNoLTB, info.Width, info.Height, info.byteRotate,
                CUtilityLib::GetTime(info.ShootDate), CUtilityLib::GetTime(info.RegDate),
                CUtilityLib::GetTime(info.DeleteDate), info.szUploadUserID, info.szDeleteUserID,
                info.UploadEnd);
}

/// The full row under another GUID, written without leave and with it.
template <auto write>
std::string Written(OpenCatalogue& catalogue, const char* guid) {
  TRASHPHOTOINFO info = Read(catalogue, "g");
  info.SetGUID(guid);
  const bool gently = (catalogue.*write)(info, false);
  return Joined(gently, (catalogue.*write)(info, true));
}

std::string ReadAndDeleted(OpenCatalogue& catalogue) {
  std::string told;
  const auto progress = [&](DWORD done, DWORD total, const char*, bool) {
    told += " " + Joined(done, total);
  };
  TrashPhotoArray out;
  const int read = catalogue.GetTrashPhotoInfo({"g", "none", "b"}, out, progress);
  const bool deleted = catalogue.DeleteTrashPhoto({"b", "none"}, progress);
  return Joined(read, out[1].szGUID, deleted, catalogue.GetTrashPhotoCount()) + told;
}

std::string Rewritten(OpenCatalogue& catalogue) {
  TRASHPHOTOINFO info = Read(catalogue, "l");
  info.SetRotate(1);
  return Joined(info.szFolderPath, catalogue.SetTrashPhotoInfo(info, false));
}

TEST_F(OperationTest, Trash) {
  const std::string rest =
      "|md5|n|a/b|ltb|18446744073709551615|65535|6|7|8|2001-01-01 01:00:00|2002-01-01 02:00:00|"
      "2003-01-01 03:00:00|up|de";
  const std::string zero = std::string(CUtilityLib::GetTime(0).Str()) + "|";
  const std::string path(600, 'p');
  const std::string long_path =
      "INSERT INTO PhotoTrashMaster (szGUID, szFolderPath) values ('l', '" + path + "')";
  constexpr auto kAdd = &OpenCatalogue::AddTrashPhotoInfo;
  constexpr auto kSet = &OpenCatalogue::SetTrashPhotoInfo;
  Check({
      {"every column fills its field",
       {kFullRow},
       [](OpenCatalogue& c) { return Shown(Read(c, "g")); },
       "g|md5|n|ltb|a/b|18446744073709551615|0|65535|6|7|2001-01-01 01:00:00|2002-01-01 02:00:00|"
       "2003-01-01 03:00:00|up|de|8"},
      {"a bare row has the placeholder's size",
       {kBareRow},
       [](OpenCatalogue& c) { return Shown(Read(c, "b")) + Read(c, "none").szGUID; },
       "b|||||0|1|400|400|0|" + zero + zero + zero + "||0as it was"},
      {"a missing photo is added",
       {kFullRow},
       [](OpenCatalogue& c) { return Written<kAdd>(c, "h") + Written<kSet>(c, "i"); },
       "1|10|1",
       kRows,
       {"g" + rest, "h" + rest, "i" + rest}},
      {"a path that the record cannot hold stays",
       {long_path.c_str()},
       Rewritten,
       "?|1",
       "SELECT szFolderPath, byteRotate FROM PhotoTrashMaster",
       {path + "|1"}},
      {"a list is told about",
       {kFullRow, kBareRow},
       ReadAndDeleted,
       "2|b|1|1 0|3 2|3 0|0 0|0",
       kRows,
       {"g" + rest}},
  });
}

}  // namespace
}  // namespace vdstomgr
