#pragma once

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/vdstomgr.h"

/// A catalogue in memory, written from what its operations promise, not from how they do it.
namespace vdstomgr {

/// Cells by column, as the file holds them: texts in UTF-8, numbers in decimal.
using ModelRow = std::map<std::string, std::string>;
using ModelRows = std::multiset<ModelRow>;

/// The cell of a text in the process's code page, of a number (of 32 bits: signed) or of a cell.
inline std::string Cell(const char* text) {
  return ToUtf8(text);
}
inline std::string Cell(const std::string& cell) {
  return cell;
}
std::string Cell(std::integral auto number) {
  if constexpr (sizeof number == 4) return std::to_string(static_cast<std::int32_t>(number));
  return std::to_string(number);
}
/// The cell of a time in seconds since 1970.
inline std::string DateCell(std::int32_t time) {
  const std::time_t seconds = time == -1 ? 0 : time;
  char text[20];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&seconds));
  return text;
}

inline std::vector<std::string> Words(const char* text) {
  std::istringstream words(text);
  return {std::istream_iterator<std::string>(words), {}};
}
/// Cells("dwTagID szTagName", 1, "sea").
template <class... Values>
ModelRow Cells(const char* columns, const Values&... values) {
  ModelRow row;
  const std::vector<std::string> names = Words(columns);
  auto name = names.begin();
  ((row[*name++] = Cell(values)), ...);
  return row;
}
/// The row without what is empty or zero, so that it equals one with nulls there.
inline ModelRow Plain(ModelRow row) {
  std::erase_if(row, [](const auto& cell) { return cell.second.empty() || cell.second == "0"; });
  return row;
}

/// The columns of records that are modelled.
constexpr char kFolder[] =
    "dwFolderID dwParentID szFolderName szDesc nSpaceType nPhotoCount nFolderUpDownType "
    "bAllowPreviewImage bSharedOption bSecureFolder szFolderPassword szModifiedDate "
    "szIModifiedDate nCreatorSubIDType szCreatorSubID bAllowComment";
constexpr char kPhoto[] =
    "szGUID szFileName szLTBURL dxFileSize wWidth wHeight dwFolderID byteFlag bytePublic "
    "byteRotate szShooter szCameraModel szCameraLens szShootDate szRegDate szUserModify "
    "szExifShootDate szLockTime byteInfoSync byteTagSync byteLinkUrl byteUploadEnd";
constexpr char kTrash[] =
    "szGUID szFileName szFolderPath szLTBURL wWidth wHeight byteRotate szShootDate szRegDate "
    "szDeleteDate szDeleteUserID";

inline ModelRow RowOf(const FOLDERINFO& f) {
  return Cells(kFolder, f.dwFolderID, f.dwParentID, f.szFolderName, f.szDesc, f.nSpaceType,
               f.nPhotoCount, f.nFolderUpDownType, f.bAllowPreviewImage, f.bSharedOption,
               f.bSecureFolder, f.szFolderPassword, DateCell(f.szModifiedDate),
               DateCell(f.szIModifiedDate), f.nCreatorSubIDType, f.szCreatorSubID, f.bAllowComment);
}
inline ModelRow RowOf(const PHOTOINFO& p) {
  return Cells(kPhoto, p.szGUID, p.GetFileName(), p.GetLTBURL(), p.FileSize, p.Width, p.Height,
               p.dwFolderID, p.byteFlag, p.bytePublic, p.byteRotate, p.GetShooter(),
               p.GetCameraModel(), p.GetCameraLens(), DateCell(p.ShootDate), DateCell(p.RegDate),
               DateCell(p.UserModify), DateCell(p.ExifShootDate), DateCell(p.LockTime), p.InfoSync,
               p.TagSync, p.LinkUrl, p.UploadEnd);
}
inline ModelRow RowOf(const TRASHPHOTOINFO& t) {
  return Cells(kTrash, t.szGUID, t.szFileName, t.szFolderPath, t.szLTBURL, t.Width, t.Height,
               t.byteRotate, DateCell(t.ShootDate), DateCell(t.RegDate), DateCell(t.DeleteDate),
               t.szDeleteUserID);
}
/// The rows of a list of records, or of the values of one column.
template <class List>
ModelRows RowsOf(const List& list, [[maybe_unused]] const char* column) {
  ModelRows rows;
  for (const auto& item : list)
    if constexpr (requires { RowOf(item); })
      rows.insert(Plain(RowOf(item)));
    else
      rows.insert(Plain(Cells(column, item)));
  return rows;
}

struct ModelTable {
  std::vector<std::string> keys;
  std::vector<ModelRow> rows = {};

  std::vector<ModelRow*> Select(const ModelRow& where) {
    std::vector<ModelRow*> found;
    for (ModelRow& row : rows)
      if (std::ranges::includes(row, where)) found.push_back(&row);
    return found;
  }
  bool Has(const ModelRow& where) { return !Select(where).empty(); }
  /// The row with the key of another, or null.
  ModelRow* Find(const ModelRow& twin) {
    ModelRow key;
    for (const std::string& column : keys) key[column] = twin.at(column);
    const std::vector<ModelRow*> found = Select(key);
    return found.empty() ? nullptr : found[0];
  }
  /// Insert, Update and Delete tell whether there was anything to do.
  bool Insert(const ModelRow& row) {
    if (Find(row) != nullptr) return false;
    rows.push_back(row);
    return true;
  }
  bool Update(const ModelRow& where, const ModelRow& cells) {
    const std::vector<ModelRow*> found = Select(where);
    for (ModelRow* row : found)
      for (const auto& [column, cell] : cells) (*row)[column] = cell;
    return !found.empty();
  }
  /// Adds the row or rewrites the one with its key, if asked to.
  bool Write(const ModelRow& row, bool add, bool edit) {
    const ModelRow* const twin = Find(row);
    if (twin == nullptr) return add && Insert(row);
    return edit && Update(ModelRow(*twin), row);
  }
  bool Delete(const ModelRow& where) {
    return std::erase_if(
               rows, [&](const ModelRow& row) { return std::ranges::includes(row, where); }) != 0;
  }
  /// Some columns of some rows.
  ModelRows Read(const char* columns, const ModelRow& where) {
    ModelRows read;
    for (ModelRow* row : Select(where)) {
      ModelRow cells;
      for (const std::string& column : Words(columns)) cells[column] = (*row)[column];
      read.insert(Plain(cells));
    }
    return read;
  }
  /// A cell of the first such row; empty, and 0, when there is none.
  std::string At(const char* column, const ModelRow& where) {
    return Has(where) ? (*Select(where)[0])[column] : "";
  }
  int NumberAt(const char* column, const ModelRow& where) {
    return std::atoi(At(column, where).c_str());
  }
};

/// The tables of an empty catalogue.
inline std::map<std::string, ModelTable> EmptyModel() {
  constexpr const char* kTables[][2] = {
      {"dwFolderID", "FolderInfo Config_ActiveFolder NotifyFolder_Tree NotifyFolder_List"},
      {"szGUID", "PhotoMaster PhotoTrashMaster PhotoSyncProcess PhotoRP PhotoOP NotifyTrash_List"},
      {"szName", "CameraModel CameraLens MyCameraModel MyCameraLens"},
      {"dtDateID", "NotifyDate_Tree NotifyDate_List"},
      {"dwTagID", "TagInfo NotifyTag_Tree NotifyTag_List"},
      {"dwRoomID", "RoomInfo"},
      {"dwAlbumID", "AlbumInfo"},
      {"szGUID dwTagID", "PhotoTag"},
      {"szGUID dwRoomID dwAlbumID", "PhotoAlbum"}};
  std::map<std::string, ModelTable> model;
  for (const auto& [keys, tables] : kTables)
    for (const std::string& table : Words(tables)) model[table] = {Words(keys)};
  return model;
}

}  // namespace vdstomgr
