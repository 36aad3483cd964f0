#include "bench/catalogue_records.h"

#include <cstdio>
#include <cstdlib>

namespace bench {
namespace {

constexpr int kPhotosPerFolder = 100;

/// Well-mixed bits of a number, at next to no cost: what prepares an operation is measured with it.
std::uint64_t Mixed(std::uint64_t number) {
  number += 0x9E3779B97F4A7C15;
  number = (number ^ number >> 30) * 0xBF58476D1CE4E5B9;
  number = (number ^ number >> 27) * 0x94D049BB133111EB;
  return number ^ number >> 31;
}

std::string FormatGuid(std::uint64_t high, std::uint64_t low) {
  std::string guid = "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX";
  int digit = 0;
  for (char& place : guid) {
    if (place == '-') continue;
    const std::uint64_t half = digit < 16 ? high : low;
    place = "0123456789ABCDEF"[half >> (60 - digit++ % 16 * 4) & 0xF];
  }
  return guid;
}

}  // namespace

std::string GuidOf(std::uint64_t number) {
  const std::uint64_t milliseconds = 1'700'000'000'000 + number * 10;
  const std::uint64_t random = Mixed(number);
  return FormatGuid(milliseconds << 16 | 0x7000 | (random & 0xFFF),
                    (random >> 2) | std::uint64_t{1} << 63);
}

std::string RandomGuidOf(std::uint64_t number) {
  return FormatGuid(Mixed(~number), Mixed(number << 1 | 1));
}

DWORD FolderOf(std::uint64_t number) {
  return DWORD(1 + number / kPhotosPerFolder);
}

std::array<DWORD, 2> TagsOf(std::uint64_t number) {
  return {1 + FolderOf(number) % 100, DWORD(101 + number % 50)};
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
