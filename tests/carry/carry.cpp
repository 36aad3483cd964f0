// A library that is carried from one system to another must answer there as it did here.
// Usage: carry make|tell FOLDER [PASSWORD]: makes a library; writes all that one answers.
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

#include "vdstomgr/vdstomgr.h"

namespace {

constexpr int kPhotos = 300;
constexpr const char* kWords[] = {"바다",   "제주도",     "성산 일출봉", "IMG_",
                                  "Sunset", "할머니",     "ÄÖÜß",        "ｆｕｌｌ",
                                  "소풍",   "졸업식.jpg", "가을",        "꽃"};
constexpr const char* kSearches[] = {"바다", "주",     "img", "SUNSET", "full",
                                     "ß",    "ㅈㅈㄷ", "_1",  "x"};

struct Library {
  Library(const std::string& folder, const char* under)
      : catalogue_path(folder + "/catalogue.vdb"),
        search_path(folder + "/search.vdb"),
        image_path(folder + "/images.pdb"),
        password(under) {
    search.SetDAOCriticalSection(catalogue.GetDAOCriticalSection());
  }
  ~Library() {
    images.CloseFile();
    search.CloseDB();
    catalogue.CloseDB();
  }
  bool Create() {
    return catalogue.CreateDB(catalogue_path.c_str(), password) &&
           search.CreateDB(search_path.c_str(), password) &&
           images.CreateFileA(image_path.c_str(), 1);
  }
  bool Open() {
    return catalogue.OpenDB(catalogue_path.c_str(), password) &&
           search.OpenDB(search_path.c_str(), password) && images.OpenFile(image_path.c_str());
  }

  std::string catalogue_path, search_path, image_path;
  const char* password;
  CRkPhotoDBManager catalogue;
  CRkSearchDBManager search;
  CRkPhotoImageStorage images;
};

std::string GuidOf(int number) {
  char guid[40];
  std::snprintf(guid, sizeof guid, "%08X-0000-4000-8000-%012d", number * 7919, number);
  return guid;
}

PHOTOINFO PhotoOf(int number, std::mt19937& random) {
  const auto word = [&] { return std::string(kWords[random() % std::size(kWords)]); };
  PHOTOINFO photo;
  photo.SetGUID(GuidOf(number).c_str());
  photo.SetFileName((word() + " " + word() + std::to_string(number) + ".jpg").c_str());
  photo.SetLTBURL(("store:" + GuidOf(number)).c_str());
  photo.SetWidthHeight(static_cast<int>(random() % 9000), static_cast<int>(random() % 9000));
  photo.SetFolderID(1 + static_cast<DWORD>(number % 5));
  photo.SetFileSize(random() * std::uint64_t{4096});
  // From 1990 on: of older days Windows knows no rules of a zone but the present ones.
  photo.SetShootDate(static_cast<std::int32_t>(631152000 + random() % 1000000000));
  photo.SetRegDate(1700000000 + number);
  photo.SetCameraModel(word().c_str());
  photo.SetRating(static_cast<BYTE>(random() % 6));
  return photo;
}

bool Make(Library& library) {
  std::mt19937 random(20261122);
  vdstomgr::PhotoArray photos;
  bool done = library.Create() && library.Open();
  for (DWORD id = 1; id <= 5 && done; ++id) {
    FOLDERINFO folder;
    folder.dwFolderID = id;
    folder.dwParentID = id == 1 ? vdstomgr::kPersonalRoot : id / 2;
    vdstomgr::CopyToFixed(folder.szFolderName, kWords[id]);
    done = library.catalogue.AddFolderInfo(folder) && library.search.AddFolder(folder) &&
           library.catalogue.AddTagInfo(kWords[id + 5], id);
  }
  for (int i = 0; i < kPhotos && done; ++i) {
    photos.Add(PhotoOf(i, random));
    const std::string image(random() % 20000, static_cast<char>(i));
    done = library.images.SetImage(GuidOf(i).c_str(), reinterpret_cast<const BYTE*>(image.data()),
                                   static_cast<int>(image.size()));
  }
  done = done && library.catalogue.AddPhotoInfo(photos) && library.search.AddPhotoInfo(photos);
  for (int i = 0; i < kPhotos && done; ++i)
    done = library.catalogue.AddTag(GuidOf(i).c_str(), 1 + static_cast<DWORD>(i * i % 5), false);
  return done;
}

void Tell(const char* what, const vdstomgr::PhotoArray& photos) {
  std::printf("%s: %d\n", what, photos.GetSize());
  for (const PHOTOINFO& photo : photos) {
    std::printf("  %s %s %u %ux%u %llu %d %d %s %u\n", photo.szGUID, photo.GetFileName(),
                static_cast<unsigned>(photo.dwFolderID), photo.Width, photo.Height,
                static_cast<unsigned long long>(photo.FileSize), photo.ShootDate, photo.RegDate,
                photo.GetCameraModel(), photo.byteRating);
  }
}

void TellFolders(CRkPhotoDBManager& catalogue) {
  vdstomgr::FolderArray folders;
  catalogue.GetAllFolderList(folders);
  for (const FOLDERINFO& folder : folders) {
    std::printf("folder %u in %u: %s\n", static_cast<unsigned>(folder.dwFolderID),
                static_cast<unsigned>(folder.dwParentID), folder.szFolderName);
    vdstomgr::PhotoArray photos;
    catalogue.GetPhotoInFolder(folder.dwFolderID, photos);
    Tell("photos", photos);
  }
  vdstomgr::TagCountArray tags;
  catalogue.GetTagListAndCount(tags);
  for (const TAGINFOCOUNT& tag : tags) std::printf("tag %s: %d\n", tag.szTagName, tag.nCount);
}

void TellSearches(CRkSearchDBManager& search) {
  vdstomgr::PhotoArray recent, big;
  search.SearchRecentUpload(recent, 40);
  Tell("recent", recent);
  search.SearchBigFile(big, 40);
  Tell("big", big);
  for (const char* text : kSearches) {
    vdstomgr::PhotoArray by_name, by_initials;
    search.SearchFileName(text, by_name, 1000);
    Tell(text, by_name);
    if (!vdstomgr::IsInitials(text)) continue;
    vdstomgr::SearchFileNameByInitials(search, text, by_initials, 1000);
    Tell("by initials", by_initials);
  }
}

void TellImages(CRkPhotoImageStorage& images) {
  for (int i = 0; i < kPhotos; ++i) {
    CBinData image;
    images.GetImage(GuidOf(i).c_str(), image);
    unsigned sum = 0;
    for (int at = 0; at < static_cast<int>(image.GetLength()); ++at)
      sum = sum * 31 + image.GetData()[at];
    std::printf("image %d: %d bytes, %u\n", i, static_cast<int>(image.GetLength()), sum);
  }
}

void TellCondition(const Library& library) {
  const bool is_sound = vdstomgr::VerifyStorage(library.image_path.c_str()).is_sound;
  std::printf("store %s\n", is_sound ? "sound" : "with faults");
  for (const std::string& path : {library.catalogue_path, library.search_path}) {
    CDaoDatabase database;
    database.Open(path.c_str(), false, true, (std::string(";PWD=") + library.password).c_str());
    std::printf("%zu faults\n", vdstomgr::CheckDatabase(database).size());
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  vdstomgr::SetTextCodePage(vdstomgr::TextCodePage::utf8);
  vdstomgr::SetDatabaseErrorHandler(
      [](int code, const char* message) { std::printf("error %d: %s\n", code, message); });
  const char* password = argc > 3 ? argv[3] : "";
  Library library(argv[2], password);
  if (std::strcmp(argv[1], "make") == 0) return Make(library) ? 0 : 1;
  if (!library.Open()) return 1;
  TellFolders(library.catalogue);
  TellSearches(library.search);
  TellImages(library.images);
  library.images.CloseFile();
  TellCondition(library);
  return 0;
}
