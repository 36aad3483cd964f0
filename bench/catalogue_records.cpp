#include "bench/catalogue_records.h"

#include <cstdio>
#include <cstdlib>
#include <random>

namespace bench {
namespace {

constexpr int kPhotosPerFolder = 100;

std::string FormatGuid(std::uint64_t high, std::uint64_t low) {
  char guid[37];
  std::snprintf(guid, sizeof guid, "%08X-%04X-%04X-%04X-%012llX", unsigned(high >> 32),
                unsigned(high >> 16 & 0xFFFF), unsigned(high & 0xFFFF), unsigned(low >> 48),
                static_cast<unsigned long long>(low & 0xFFFFFFFFFFFF));
  return guid;
}

}  // namespace

std::string GuidOf(std::uint64_t number) {
  std::mt19937_64 random(number);
  const std::uint64_t milliseconds = 1'700'000'000'000 + number * 10;
  return FormatGuid(milliseconds << 16 | 0x7000 | (random() & 0xFFF),
                    (random() >> 2) | std::uint64_t{1} << 63);
}

std::string RandomGuidOf(std::uint64_t number) {
  std::mt19937_64 random(~number);
  const std::uint64_t high = random();
  return FormatGuid(high, random());
}

DWORD FolderOf(std::uint64_t number) {
  return DWORD(1 + number / kPhotosPerFolder);
}

PHOTOINFO PhotoOf(std::uint64_t number) {
  char name[64];
  std::snprintf(name, sizeof name, "제주도 여행 %06llu.jpg",
                static_cast<unsigned long long>(number));
  PHOTOINFO photo;
  photo.SetGUID(GuidOf(number).c_str());
  std::snprintf(photo.szMD5, sizeof photo.szMD5, "%032llx",
                static_cast<unsigned long long>(number));
  photo.SetFileName(name);
  photo.SetLTBURL(("/home/user/사진/2024/" + std::string(name)).c_str());
  photo.SetOPURL(photo.GetLTBURL());
  photo.SetFileSize(3'000'000 + number);
  photo.SetWidthHeight(4032, 3024);
  photo.SetFolderID(FolderOf(number));
  photo.SetCameraModel("Canon EOS 40D");
  photo.SetExifVer("0221");
  photo.SetExifMaker("Canon");
  photo.SetExifModel("Canon EOS 40D");
  photo.SetExifExposure("1/125");
  photo.SetExifFnumber("2.8");
  photo.SetExifExposuerBias("0");
  photo.SetShootDate(std::int32_t(1'200'000'000 + number * 60));
  photo.SetExifShootDate(photo.ShootDate);
  photo.SetRegDate(1'700'000'000);
  photo.SetUserModify(1'700'000'000);
  return photo;
}

FOLDERINFO FolderRecord(DWORD id) {
  FOLDERINFO folder;
  folder.dwFolderID = id;
  folder.dwParentID = 0;
  std::snprintf(folder.szFolderName, sizeof folder.szFolderName, "폴더 %u", id);
  folder.nSpaceType = 0;
  return folder;
}

void Require(bool done, const char* what) {
  if (done) return;
  std::fprintf(stderr, "bench: %s failed\n", what);
  std::abort();
}

std::int32_t Fresh() {
  static std::int32_t next = 0;
  return ++next;
}

}  // namespace bench
