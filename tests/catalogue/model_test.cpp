#include <functional>
#include <random>

#include "catalogue_model.h"
#include "catalogue_test.h"
#include "tests/system.h"
#include "vdstomgr/platform/dao/engine.h"

namespace vdstomgr {
namespace {

constexpr int kSteps = 8'000;
constexpr int kStepsBetweenLooks = 5;
constexpr int kStepsBetweenCodePages = 100;

/// What a step works with, drawn anew for each.
struct Drawn {
  CString guid, name, text;  ///< the name is not empty
  CStringArray guids;
  DWORD folder, parent, tag, room, album;
  CDWordArray folders;
  std::int32_t time;
  BYTE byte;  ///< 0 to 3
  bool on, list, either;

  ModelRow Tag() const { return Cells("dwTagID", tag); }
  ModelRow Link(const CString& to) const { return Cells("szGUID dwTagID", to, tag); }
  ModelRow Room() const {
    const char* const columns = "dwRoomID szRoomName byteOrgDown byteUseComment";
    return Cells(columns, room, name, byte, list);
  }
  ModelRow Album() const { return Cells("dwRoomID dwAlbumID", room, album); }
  ModelRow AlbumRow() const {
    const char* const columns = "dwRoomID dwAlbumID dwParentID szAlbumName szDesc";
    return Cells(columns, room, album, album / 3, name, text);
  }
  ModelRow Member(const CString& of) const {
    return Cells("szGUID dwRoomID dwAlbumID", of, room, album);
  }
};

/// Steps: an operation and its answer. DO: true, with an effect on the model. EACH: the same on one
/// or on a list, `x`, with the effect on each, `i`. ASK: any answer. LIST: some columns of some of
/// a table's rows, filled into `out`.
#define STEP(what, ...) Try(what, [this]([[maybe_unused]] const Drawn& d) { __VA_ARGS__; })
#define DO(call, ...) STEP(#call, EXPECT_TRUE(catalogue_.call); __VA_ARGS__)
#define EACH(item, call, ...)                                                       \
  STEP(                                                                             \
      #call, const auto operation = [&](const auto& x) { return catalogue_.call; }; \
      EXPECT_TRUE(d.list ? operation(d.item##s) : operation(d.item));               \
      for (const auto& i                                                            \
           : d.list ? d.item##s : decltype(d.item##s){d.item}) { __VA_ARGS__; })
#define ASK(call, ...) STEP(#call, EXPECT_EQ(Cell(catalogue_.call), Cell(__VA_ARGS__)))
#define LIST(List, call, columns, table, ...) \
  STEP(#call, List out; catalogue_.call;      \
       EXPECT_EQ(RowsOf(out, columns), (table).Read(columns, ModelRow(__VA_ARGS__))))

/// Random steps on a catalogue and on its model, whose answers and tables must agree.
/// VDSTO_MODEL_STEPS is the number of steps of a run.
class ModelTest : public CatalogueTest, public testing::WithParamInterface<const char*> {
 protected:
  ModelTest() {
    const std::string zone = GetParam();
    std::seed_seq seed(zone.begin(), zone.end());
    random_.seed(seed);
    is_in_zone_ = EnterZone(GetParam());
    beside_.Open(file_.c_str());
  }
  ~ModelTest() override { LeaveZone(); }

  // ---- Drawing ----

  static ModelRow ByGuid(const CString& guid) { return Cells("szGUID", guid); }
  static ModelRow ById(DWORD folder) { return Cells("dwFolderID", folder); }

  DWORD Below(DWORD n) { return static_cast<DWORD>(random_()) % n; }
  template <class Item>
  Item OneOf(std::initializer_list<Item> items) {
    return items.begin()[Below(static_cast<DWORD>(items.size()))];
  }
  CString Name() {
    return FromUtf8(OneOf({"a", "b.jpg", "it's", "100%d%s", "back\\slash", "[a-z]*?#!", "\"q\";--",
                           " pad ", "t\tn\n", "가", "뷁 폴더"}));
  }
  Drawn Draw() {
    Drawn d;
    d.guid = "g" + std::to_string(Below(10));
    for (DWORD i = Below(4); i < 10; i += 1 + Below(6)) d.guids.Add("g" + std::to_string(i));
    d.folder = Below(9), d.parent = d.folder == 0 ? kNoFolder : Below(d.folder);
    d.folders = {d.folder, Below(9)};
    d.tag = 1 + Below(6), d.room = Below(3), d.album = 1 + Below(6);
    d.name = Name(), d.text = Below(4) ? Name() : CString();
    // Also the hours around both ends of summer time, in the zones that are tried.
    d.time = OneOf({-1, 0, 579200400, 1143961200, 1162099800, INT32_MAX - 14'400});
    d.time += static_cast<std::int32_t>(1800 * Below(8) * Below(2));
    d.byte = static_cast<BYTE>(Below(4));
    d.on = Below(2), d.list = Below(2), d.either = Below(2);
    return d;
  }
  FOLDERINFO NewFolder(const Drawn& d) {
    FOLDERINFO folder;
    folder.dwFolderID = d.folder, folder.dwParentID = d.parent;
    CopyToFixed(folder.szFolderName, d.name.Str());
    CopyToFixed(folder.szDesc, d.text.Str());
    folder.nSpaceType = d.byte, folder.nPhotoCount = d.time, folder.bAllowComment = d.either;
    folder.szIModifiedDate = d.time;
    return folder;
  }
  PHOTOINFO NewPhoto(const Drawn& d) {
    PHOTOINFO photo = Photo(d.guid.Str(), d.folder, d.name);
    photo.SetLTBURL(d.text), photo.SetShooter(d.name);
    photo.SetWidthHeight(static_cast<int>(Below(70'000)), static_cast<int>(Below(70'000)));
    photo.SetFileSize(std::uint64_t{random_()} << Below(33));
    photo.SetFlag(d.byte), photo.SetRotate(d.byte), photo.SetShootDate(d.time);
    photo.SetInfoSync(d.on), photo.SetTagSync(d.list);
    return photo;
  }
  TRASHPHOTOINFO NewTrash(const Drawn& d) {
    TRASHPHOTOINFO photo;
    photo.SetGUID(d.guid), photo.SetFileName(d.name), photo.SetFolderPath(d.text);
    photo.SetDeleteUserID(d.name), photo.SetDeleteDate(d.time);
    photo.SetLTBURL(d.list ? "u" : ""), photo.SetWidthHeight(d.byte, 70'000);
    return photo;
  }
  static ROOMINFO NewRoom(const Drawn& d) {
    ROOMINFO room{d.room, {}, d.byte, d.list};
    CopyToFixed(room.szRoomName, d.name.Str());
    return room;
  }

  // ---- The model ----

  /// With the columns that are made of others.
  static ModelRow WholeRow(const PHOTOINFO& photo) {
    ModelRow row = RowOf(photo);
    row["szShootDay"] = row["szShootDate"].substr(0, 10);
    row["szRegDay"] = row["szRegDate"].substr(0, 10);
    return row;
  }
  template <class... Values>
  bool SetPhoto(const CString& guid, const char* columns, const Values&... values) {
    return photos_.Update(ByGuid(guid), Cells(columns, values...));
  }
  template <class... Values>
  bool SetFolder(DWORD folder, const char* columns, const Values&... values) {
    return folders_.Update(ById(folder), Cells(columns, values...));
  }
  bool HasPhoto(const CString& guid) { return photos_.Has(ByGuid(guid)); }
  void SetFlag(const CString& guid, int flag, bool on) {
    const int flags = photos_.NumberAt("byteFlag", ByGuid(guid));
    if (((flags & flag) != 0) != on) SetPhoto(guid, "byteFlag byteInfoSync", flags ^ flag, 1);
  }
  void Turn(const CString& guid, int turns) {
    turns += photos_.NumberAt("byteRotate", ByGuid(guid));
    SetPhoto(guid, "byteRotate byteInfoSync", turns % 4, 1);
  }
  int CountPhotos(DWORD folder) { return static_cast<int>(photos_.Select(ById(folder)).size()); }
  /// The keys of the row and of all below it, folders or albums of one room.
  static std::vector<ModelRow> Tree(ModelTable& table, ModelRow key) {
    std::vector<ModelRow> tree{key};
    key["dwParentID"] = key[table.keys[0]], key.erase(table.keys[0]);
    for (const ModelRow* child : table.Select(key)) {
      ModelRow child_key = tree[0];
      child_key[table.keys[0]] = child->at(table.keys[0]);
      std::ranges::copy(Tree(table, child_key), std::back_inserter(tree));
    }
    return tree;
  }
  /// Adds bits to a mark, unless everything is marked.
  static void AddMark(ModelTable& marks, const ModelRow& everything, ModelRow mark, int type) {
    if (marks.Has(everything)) return;
    type |= marks.NumberAt("byteType", mark);
    mark["byteType"] = Cell(type);
    marks.Write(mark, true, true);
  }
  void RemoveAlbums(const std::vector<ModelRow>& albums) {
    for (const ModelRow& album : albums) Delete({"AlbumInfo", "PhotoAlbum"}, album);
  }
  void Delete(std::initializer_list<const char*> tables, const ModelRow& where) {
    for (const char* table : tables) model_[table].Delete(where);
  }

  // ---- Steps ----

  void Try(const char* what, std::function<void(const Drawn&)> step) {
    steps_.insert(steps_.end(), weight_, {what, std::move(step)});
  }

  void FolderSteps() {
    ASK(AddFolder({NewFolder(d)}), folders_.Insert(RowOf(NewFolder(d))));
    DO(AddFolderInfo(NewFolder(d)), folders_.Insert(RowOf(NewFolder(d))));
    DO(SetFolderInfo(NewFolder(d)), folders_.Write(RowOf(NewFolder(d)), false, true));
    DO(RenameFolder(d.folder, d.name, d.text),
       SetFolder(d.folder, "szFolderName szDesc", d.name, d.text));
    DO(MoveFolder(d.folder, d.parent), SetFolder(d.folder, "dwParentID", d.parent));
    DO(UpdateFolderModifiedDate(d.folder, d.time),
       SetFolder(d.folder, "szModifiedDate", DateCell(d.time)));
    LIST(FolderArray, GetFolderList(out, d.folder), kFolder, folders_,
         Cells("dwParentID", d.folder));
    LIST(FolderArray, GetAllFolderList(out), kFolder, folders_);
    ASK(GetSubFolderID(d.parent, d.name) == kNoFolder,
        !folders_.Has(Cells("dwParentID szFolderName", d.parent, d.name)));
  }

  void FolderAttributeSteps() {
    EACH(folder, SetFolderPassword(x, d.on, d.guid),
         SetFolder(i, "bSecureFolder szFolderPassword", d.on, d.guid));
    EACH(folder, SetSharedOption(x, d.on), SetFolder(i, "bSharedOption", d.on));
    DO(SetFolderCache(d.folder, d.on), SetFolder(d.folder, "byteCache", d.on));
    ASK(GetFolderCache(d.folder), folders_.NumberAt("byteCache", ById(d.folder)));
    DO(ResetFolderCache(), folders_.Update({}, Cells("byteCache", 0)));
    ASK(UpdatePhotoCountAtFolder(d.folder),
        (SetFolder(d.folder, "nPhotoCount", CountPhotos(d.folder)), CountPhotos(d.folder)));
    Try("SetFolderUpDownType", [this](const Drawn& d) {
      const bool found = folders_.Has(ById(d.folder));
      EXPECT_EQ(catalogue_.SetFolderUpDownType(d.folder, d.byte, d.on, d.list, d.either), found);
      if (!found) return;
      for (const ModelRow& key :
           d.list ? Tree(folders_, ById(d.folder)) : std::vector{ById(d.folder)})
        folders_.Update(key, Cells("nFolderUpDownType bAllowPreviewImage bAllowComment", d.byte,
                                   d.on, d.either));
    });
    LIST(CDWordArray, GetAllSharedFolder(out), "dwFolderID", folders_, Cells("bSharedOption", 1));
    LIST(CDWordArray, GetSecureFolderList(out), "dwFolderID", folders_, Cells("bSecureFolder", 1));
    EACH(folder, AddActiveFolder({x}), active_.Insert(ById(i)));
    Try("SetAllFolderActive", [this](const Drawn&) {
      EXPECT_TRUE(catalogue_.SetAllFolderActive());
      for (const ModelRow& row : folders_.rows)
        if (row.at("dwFolderID") != "0") active_.Insert({*row.find("dwFolderID")});
    });
    LIST(CDWordArray, GetActiveFolder(out), "dwFolderID", active_);
  }

  void PhotoSteps() {
    Try("AddPhotoInfo, SetPhotoInfo", [this](const Drawn& d) {
      const PHOTOINFO photo = NewPhoto(d);
      EXPECT_EQ(d.on ? catalogue_.AddPhotoInfo(photo, d.either)
                     : catalogue_.SetPhotoInfo(photo, d.either),
                photos_.Write(WholeRow(photo), d.on || d.either, !d.on || d.either));
      const PhotoArray list{NewPhoto(Draw()), NewPhoto(Draw())};
      EXPECT_EQ(catalogue_.AddPhotoInfo(list), std::ranges::all_of(list, [&](const auto& added) {
                  return photos_.Insert(WholeRow(added));
                }));
    });
    LIST(PhotoArray, GetPhotoInfo({d.guid}, out, nullptr), kPhoto, photos_, ByGuid(d.guid));
    ASK(GetPhotoCount(), photos_.rows.size());
    LIST(PhotoArray, GetPhotoInFolder(d.folder, out), kPhoto, photos_, ById(d.folder));
    LIST(CStringArray, GetPhotoGUID(d.folder, d.name, out), "szGUID", photos_,
         Cells("dwFolderID szFileName", d.folder, d.name));
    EACH(guid, SetTitle(x, d.text), SetPhoto(i, "szTitle byteInfoSync", d.text, 1));
    EACH(guid, SetFileName(x, d.text), SetPhoto(i, "szFileName byteInfoSync", d.text, 1));
    EACH(guid, SetDesc(x, d.text), SetPhoto(i, "szDesc byteInfoSync", d.text, 1));
    EACH(guid, SetShooter(x, d.text), SetPhoto(i, "szShooter byteInfoSync", d.text, 1));
    EACH(guid, SetShootDate(x, d.time),
         SetPhoto(i, "szShootDate byteInfoSync", DateCell(d.time), 1));
    EACH(guid, SetCameraModel(x, d.text), SetPhoto(i, "szCameraModel", d.text));
    EACH(guid, SetCameraLens(x, d.text), SetPhoto(i, "szCameraLens", d.text));
    EACH(guid, SetFolder(x, d.folder), SetPhoto(i, "dwFolderID", d.folder));
    EACH(guid, SetPublic(x, d.byte), SetPhoto(i, "bytePublic", d.byte));
    EACH(guid, SetLinkUrl(x, d.byte), SetPhoto(i, "byteLinkUrl", d.byte));
    DO(SetUploadEnd(d.guid, d.byte), SetPhoto(d.guid, "byteUploadEnd", d.byte));
    ASK(SetRotate(d.guid, d.byte), SetPhoto(d.guid, "byteRotate byteInfoSync", d.byte, 1));
    ASK(SetTagSyncFlag(d.guid), SetPhoto(d.guid, "byteTagSync", 1));
    EACH(guid, SetRelativeRotate(x, d.byte) || !HasPhoto(d.guid), Turn(i, d.byte));
    EACH(guid, SetFlag(x, d.byte, d.on) || !HasPhoto(d.guid), SetFlag(i, 1 << d.byte, d.on));
  }

  void TagSteps() {
    ASK(AddTagInfo(d.name, d.tag), !tags_.Has(Cells("szTagName", d.name)) &&
                                       tags_.Insert(Cells("dwTagID szTagName", d.tag, d.name)));
    ASK(ChangeTagName(d.tag, d.name), !tags_.Has(Cells("szTagName", d.name)) &&
                                          tags_.Update(d.Tag(), Cells("szTagName", d.name)));
    ASK(GetTagName(d.tag), tags_.At("szTagName", d.Tag()));
    LIST(CStringArray, GetPhotoListWithTag(d.tag, out), "szGUID", links_, d.Tag());
    DO(IsTagged(d.guid, d.tag) == links_.Has(d.Link(d.guid)));
    STEP("RemoveTagInfo", catalogue_.RemoveTagInfo(d.tag); tags_.Delete(d.Tag()));
    STEP("RemoveAllTagByTagID", catalogue_.RemoveAllTagByTagID(d.tag); links_.Delete(d.Tag()));
    STEP("RemoveAllTagByGUID", catalogue_.RemoveAllTagByGUID(d.guid, d.on);
         links_.Delete(ByGuid(d.guid)); if (d.on) SetPhoto(d.guid, "byteTagSync", 1));
    EACH(guid, AddTag(x, d.tag, d.on), links_.Insert(d.Link(i));
         if (d.on) SetPhoto(i, "byteTagSync", 1));
    EACH(guid, RemoveTag(x, d.tag), links_.Delete(d.Link(i)); SetPhoto(i, "byteTagSync", 1));
  }

  void AlbumAndTrashSteps() {
    ASK(AddRoomInfo(NewRoom(d)), rooms_.Insert(d.Room()));
    DO(SetRoomInfo(NewRoom(d)), rooms_.Write(d.Room(), false, true));
    ASK(GetRoomName(d.room), rooms_.At("szRoomName", Cells("dwRoomID", d.room)));
    ASK(GetAlbumName(d.room, d.album), albums_.At("szAlbumName", d.Album()));
    ASK(AddAlbumInfo(d.room, d.album, d.album / 3, d.name, d.text),
        !albums_.Has(Cells("dwRoomID dwParentID szAlbumName", d.room, d.album / 3, d.name)) &&
            albums_.Insert(d.AlbumRow()));
    ASK(ChangeAlbumName(d.room, d.album, d.name, d.text),
        albums_.Update(d.Album(), Cells("szAlbumName szDesc", d.name, d.text)));
    DO(RemoveAlbumInfo(d.room, d.album), RemoveAlbums(Tree(albums_, d.Album())));
    EACH(guid, AddAlbum(x, d.room, d.album), members_.Insert(d.Member(i)));
    EACH(guid, RemoveAlbum(x, d.room, d.album), members_.Delete(d.Member(i)));
    STEP("RemoveAllAlbumByGUID", catalogue_.RemoveAllAlbumByGUID(d.guid);
         members_.Delete(ByGuid(d.guid)));
    LIST(CStringArray, GetPhotosInAlbum(d.room, d.album, out, false), "szGUID", members_,
         d.Album());
    ASK(AddTrashPhotoInfo(NewTrash(d), d.on), trash_.Write(RowOf(NewTrash(d)), true, d.on));
    ASK(SetTrashPhotoInfo(NewTrash(d), d.on), trash_.Write(RowOf(NewTrash(d)), d.on, true));
    LIST(TrashPhotoArray, GetTrashPhotoInfo({d.guid}, out, nullptr), kTrash, trash_,
         ByGuid(d.guid));
    DO(DeleteTrashPhoto(d.guid), trash_.Delete(ByGuid(d.guid)));
    EACH(guid, DeleteTrashPhoto({x}, nullptr), trash_.Delete(ByGuid(i)));
    ASK(GetTrashPhotoCount(), trash_.rows.size());
  }

  void SyncSteps() {
    Try("MovePhotoSyncFlag", [this](const Drawn&) {
      catalogue_.MovePhotoSyncFlag();
      for (ModelRow& photo : photos_.rows)
        for (const char* mark : {"byteInfoSync", "byteTagSync"})
          if (std::exchange(photo[mark], "0") == "1")
            pending_.Write({{"szGUID", photo["szGUID"]}, {mark, "1"}}, true, true);
    });
    Try("GetPhotoSyncAllInfo, DelPhotoSyncAllInfo", [this](const Drawn& d) {
      PhotoSyncArray batch;
      EXPECT_TRUE(catalogue_.GetPhotoSyncAllInfo(batch, d.list ? 100 : d.byte));
      const auto there = std::ranges::count_if(
          pending_.rows, [&](const ModelRow& row) { return photos_.Find(row) != nullptr; });
      EXPECT_EQ(batch.GetSize(), std::min<int>(d.list ? 100 : d.byte, static_cast<int>(there)));
      for (const auto& info : batch) {
        const ModelRow guid = ByGuid(info.Photo.szGUID);
        EXPECT_EQ(RowsOf(PhotoArray{info.Photo}, kPhoto), photos_.Read(kPhoto, guid));
        EXPECT_EQ(Plain(Cells("szGUID byteInfoSync byteTagSync", info.Photo.szGUID, info.bInfoSync,
                              info.bTagSync)),
                  Plain(*pending_.Find(guid)));
        ModelRows tags = info.bTagSync ? links_.Read("dwTagID", guid) : ModelRows();
        std::erase_if(tags, [&](const ModelRow& tag) { return !tags_.Find(tag); });
        EXPECT_EQ(RowsOf(info.TagIDs, "dwTagID"), tags);
      }
      if (d.either) return;
      EXPECT_TRUE(catalogue_.DelPhotoSyncAllInfo(batch));
      for (const auto& info : batch) pending_.Delete(ByGuid(info.Photo.szGUID));
    });
    EACH(guid, DelPhotoSyncProcess({x}), SetPhoto(i, "byteInfoSync byteTagSync", 0, 0);
         pending_.Delete(ByGuid(i)));
  }

  void SideTableSteps() {
#define PATHS(kind)                                                              \
  ASK(Add##kind(d.guid, d.name),                                                 \
      model_["Photo" #kind].Insert(Cells("szGUID szPathName", d.guid, d.name))); \
  DO(Set##kind(d.guid, d.text),                                                  \
     model_["Photo" #kind].Update(ByGuid(d.guid), Cells("szPathName", d.text))); \
  DO(Del##kind(d.guid), model_["Photo" #kind].Delete(ByGuid(d.guid)));           \
  ASK(Get##kind(d.guid), model_["Photo" #kind].At("szPathName", ByGuid(d.guid)))
#define NAMES(kind, table)                                               \
  ASK(Add##kind(d.text), model_[table].Insert(Cells("szName", d.text))); \
  LIST(CStringArray, Get##kind(out), "szName", model_[table])
    PATHS(RP);
    PATHS(OP);
    NAMES(Model, "CameraModel");
    NAMES(MyModel, "MyCameraModel");
    NAMES(Lens, "CameraLens");
    NAMES(MyLens, "MyCameraLens");
  }

  void NotificationSteps() {
#define MARKS(name, key)                                                                      \
  Try("marks in Notify" #name, [this, &marks = model_["Notify" #name]](const Drawn& d) {      \
    const DWORD id = d.list && d.on ? kNoFolder : d.tag;                                      \
    catalogue_.AddNotify##name({d.album, id}, d.byte);                                        \
    AddMark(marks, {{key, "-1"}}, {{key, Cell(d.album)}}, d.byte);                            \
    if (id == kNoFolder) model_["NotifyFolder_Tree"].Delete({}); /* whichever is meant */     \
    AddMark(marks, {{key, "-1"}}, {{key, Cell(id)}}, id == kNoFolder ? 255 : d.byte);         \
    NotifyArray got;                                                                          \
    EXPECT_TRUE(catalogue_.GetNotify##name(got));                                             \
    ModelRows shown;                                                                          \
    for (const auto& [of, type] : got) shown.insert(Plain(Cells(key " byteType", of, type))); \
    const bool all = marks.Has({{key, "-1"}});                                                \
    EXPECT_EQ(shown, marks.Read(key " byteType", all ? ModelRow{{key, "-1"}} : ModelRow()));  \
    if (d.either) catalogue_.ResetNotify##name(), marks.Delete({});                           \
  })
    MARKS(Folder_Tree, "dwFolderID");
    MARKS(Folder_List, "dwFolderID");
    MARKS(Date_Tree, "dtDateID");
    MARKS(Date_List, "dtDateID");
    MARKS(Tag_Tree, "dwTagID");
    MARKS(Tag_List, "dwTagID");
    Try("marks of the trash", [this](const Drawn& d) {
      ModelTable& marks = model_["NotifyTrash_List"];
      catalogue_.AddNotifyTrash_List(d.guids, d.byte);
      for (const CString& g : d.guids) AddMark(marks, ByGuid(""), ByGuid(g), d.byte);
      if (d.byte != 0) return;
      d.on ? catalogue_.ResetNotifyTrash_List() : catalogue_.AddNotifyTrash_List(nullptr, 1);
      marks.Delete({});
      if (!d.on) marks.Insert(Cells("szGUID byteType", "", 255));
    });
  }

  void DeletionSteps() {
    weight_ = 2;
    EACH(folder, DeleteFolderInfo(x), folders_.Delete(ById(i)));
    EACH(folder, DelActiveFolder(x), active_.Delete(ById(i)); photos_.Delete(ById(i)));
    DO(DelNoActivePhoto(), std::erase_if(photos_.rows, [this](const ModelRow& photo) {
         return active_.Find(photo) == nullptr;
       }));
    EACH(guid, DeletePhoto(x), photos_.Delete(ByGuid(i)));
    DO(DelRoomInfo(d.room), rooms_.Delete(Cells("dwRoomID", d.room));
       RemoveAlbums(Tree(albums_, Cells("dwRoomID dwAlbumID", d.room, 0))));
    EACH(guid, DeletePhotosAndRelations(x, nullptr),
         Delete({"PhotoTag", "PhotoAlbum", "PhotoRP", "PhotoOP", "PhotoMaster"}, ByGuid(i)));
    EACH(folder, DeleteFoldersAndRelations({x}, d.on, nullptr), photos_.Delete(ById(i));
         if (d.on) folders_.Delete(ById(i)));
    DO(DeleteFolder(d.folder),
       if (d.folder != 0) Delete({"PhotoMaster", "FolderInfo"}, ById(d.folder)));
    weight_ = 1;
#define RESET(what, ...) DO(Reset##what(), Delete({__VA_ARGS__}, {}))
    RESET(PhotoMaster, "PhotoMaster");
    RESET(PhotoTag, "PhotoTag");
    RESET(TagInfo, "TagInfo");
    RESET(PhotoSyncProcess, "PhotoSyncProcess");
    RESET(AllNotify, "NotifyFolder_Tree", "NotifyFolder_List", "NotifyTag_Tree", "NotifyTag_List",
          "NotifyTrash_List");
  }

  // ---- Comparing ----

  void ExpectTable(const std::string& name, const ModelTable& table) {
    ModelRows expected, found, missing, wrong;
    for (const ModelRow& row : table.rows) expected.insert(Plain(row));
    CRkDaoRecordset rows(&beside_);
    for (rows.Open(dbOpenDynaset, ("SELECT * FROM " + name).c_str()); !rows.IsEOF();
         rows.MoveNext()) {
      ModelRow row;
      for (int i = 0; i < rows.GetFieldCount(); ++i) {
        COleVariant value = rows.GetFieldValue(i);
        if (value.vt == VT_NULL) continue;
        value.ChangeType(VT_BSTR);
        row[rows.Query().Columns().At(i).name] = Cell(value.strVal);
      }
      found.insert(Plain(row));
    }
    std::ranges::set_difference(expected, found, std::inserter(missing, missing.end()));
    std::ranges::set_difference(found, expected, std::inserter(wrong, wrong.end()));
    EXPECT_TRUE(missing.empty() && wrong.empty())
        << name << " lacks " << testing::PrintToString(missing) << " and has "
        << testing::PrintToString(wrong);
  }
  /// The cache of sub-folders shows them as they are.
  void ExpectSubFolders(DWORD folder) {
    FolderArray folders;
    ModelRows expected;
    catalogue_.GetSubFolder(folder, folders, true);
    for (const ModelRow& key : Tree(folders_, ById(folder)))
      if (key != ById(folder)) expected.merge(folders_.Read(kFolder, key));
    EXPECT_EQ(RowsOf(folders, kFolder), expected);
  }
  void Reopen(TextCodePage code_page) {
    catalogue_.CloseDB();
    SetTextCodePage(code_page);
    ASSERT_TRUE(catalogue_.OpenDB(file_.c_str(), nullptr));
    SetFolder(kPersonalRoot, "szFolderName", std::string("개인 폴더"));  // as opening does
  }

  bool is_in_zone_;
  std::mt19937 random_;
  std::map<std::string, ModelTable> model_ = EmptyModel();
  ModelTable &folders_ = model_["FolderInfo"], &active_ = model_["Config_ActiveFolder"],
             &photos_ = model_["PhotoMaster"], &tags_ = model_["TagInfo"],
             &links_ = model_["PhotoTag"], &rooms_ = model_["RoomInfo"],
             &albums_ = model_["AlbumInfo"], &members_ = model_["PhotoAlbum"],
             &trash_ = model_["PhotoTrashMaster"], &pending_ = model_["PhotoSyncProcess"];
  std::vector<std::pair<const char*, std::function<void(const Drawn&)>>> steps_;
  std::size_t weight_ = 8;  // of the steps to come
  CRkDaoDatabase beside_;
};

TEST_P(ModelTest, CatalogueAndModelAgree) {
  if (!is_in_zone_) GTEST_SKIP() << "in another zone";
  FolderSteps();
  FolderAttributeSteps();
  PhotoSteps();
  TagSteps();
  AlbumAndTrashSteps();
  SyncSteps();
  SideTableSteps();
  NotificationSteps();
  DeletionSteps();
  EXPECT_TRUE(catalogue_.ResetAllPhotoInfo_ForHistoryManager());
  rooms_.Insert(Cells("dwRoomID szRoomName", 0, std::string("갤러리")));
  const char* const wanted = std::getenv("VDSTO_MODEL_STEPS");
  const int steps = wanted == nullptr ? kSteps : std::atoi(wanted);
  for (int i = 0; i < steps && !HasFailure(); ++i) {
    if (i % kStepsBetweenCodePages == 0)
      Reopen(OneOf({TextCodePage::korean949, TextCodePage::utf8}));
    const auto& [what, step] = steps_[Below(static_cast<DWORD>(steps_.size()))];
    SCOPED_TRACE("step " + std::to_string(i) + ": " + what);
    step(Draw());
    EXPECT_EQ(TakeReports(), Reports());
    ExpectSubFolders(Below(9));
    if (i % kStepsBetweenLooks == 0 || i == steps - 1)
      for (const auto& [name, table] : model_) ExpectTable(name, table);
  }
}

INSTANTIATE_TEST_SUITE_P(Zones, ModelTest,
                         testing::Values("Asia/Seoul", "America/New_York", "Australia/Lord_Howe"));

}  // namespace
}  // namespace vdstomgr
