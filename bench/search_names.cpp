#include "bench/search_names.h"

#include <cstdio>
#include <iterator>
#include <random>

namespace bench {
namespace {

constexpr const char* kPlaces[] = {"제주도",        "제주 애월",     "부산 해운대", "서울숲",
                                   "강릉 안목해변", "경주 불국사",   "속초",        "여수 밤바다",
                                   "전주 한옥마을", "인천 월미도",   "대관령",      "담양 죽녹원",
                                   "남이섬",        "통영 케이블카", "순천만"};
constexpr const char* kRarePlaces[] = {"산굼부리", "섭지코지", "쇠소깍", "두물머리",
                                       "감천문화마을"};
constexpr const char* kEvents[] = {"여행",   "가족사진",   "생일 파티", "졸업식", "결혼식",
                                   "벚꽃",   "바다",       "등산",      "캠핑",   "돌잔치",
                                   "운동회", "크리스마스", "첫눈",      "노을"};

template <std::size_t N>
const char* OneOf(const char* const (&texts)[N], std::uint64_t random) {
  return texts[random % N];
}

template <class... Values>
std::string Formatted(const char* format, Values... values) {
  char text[200];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

}  // namespace

std::string NameOf(std::uint64_t number) {
  std::mt19937_64 random(number * 2654435761u + 17);
  const auto day = [&] {
    return Formatted("%d%02d%02d", int(2004 + random() % 20), int(1 + random() % 12),
                     int(1 + random() % 28));
  };
  const int serial = int(random() % 10'000);
  const std::uint64_t kind = random() % 100;
  if (kind < 30) return "IMG_" + day() + Formatted("_%06d.jpg", int(random() % 240'000));
  if (kind < 45) return Formatted("DSC%05d.JPG", int(random() % 100'000));
  if (kind < 50) return Formatted("P%07d.JPG", int(random() % 10'000'000));
  if (kind < 55) return day() + Formatted("_%06d.heic", int(random() % 240'000));
  if (kind < 60) return "KakaoTalk_" + day() + Formatted("_%09d.jpg", int(random() % 240'000'000));
  if (kind < 65) return "Sunset" + std::to_string(random() % 100'000) + " - Copy.png";
  const bool is_rare = random() % 600 == 0;
  const char* place = is_rare ? OneOf(kRarePlaces, random()) : OneOf(kPlaces, random());
  return std::string(place) + " " + OneOf(kEvents, random()) + " " + day().substr(0, 6) +
         Formatted(" (%d).jpg", serial % 600);
}

PHOTOINFO NamedPhoto(std::uint64_t number) {
  std::mt19937_64 random(number);
  PHOTOINFO photo;
  photo.SetGUID(Formatted("%08x-%04x-7%03x-8%03x-%012llx", unsigned(number >> 8),
                          unsigned(number << 8 & 0xFFFF), unsigned(random() & 0xFFF),
                          unsigned(random() & 0xFFF),
                          static_cast<unsigned long long>(random() & 0xFFFFFFFFFFFF))
                    .c_str());
  photo.SetFileName(NameOf(number).c_str());
  photo.SetFileSize(random() % 12'000'000);
  photo.SetFolderID(DWORD(1 + number / 100));
  photo.SetRegDate(std::int32_t(1'100'000'000 + random() % 600'000'000));
  photo.SetOPURL(
      Formatted("file:///home/user/photos/%llu", static_cast<unsigned long long>(number)).c_str());
  return photo;
}

}  // namespace bench
