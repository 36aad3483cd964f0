#include "tools/vdsto/import/photo_record.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "tools/vdsto/library/folder_rows.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/photo_guid.h"
#include "tools/vdsto/text/clock_time.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr size_t kName = 32;
constexpr size_t kLongName = 64;

int Bounded(uint32_t size) {
  return static_cast<int>(std::min<uint32_t>(size, 0xFFFF));
}

/// A picture that cannot be shown has no thumbnail location, but keeps its real size in the row.
void SetPixels(const PictureFacts& facts, PHOTOINFO& photo) {
  const bool is_shown = facts.state != PictureState::kBroken;
  photo.SetLTBURL(is_shown ? ImageLocation(ThumbnailKey(photo.szGUID)).c_str() : "");
  photo.byteNoLTB = 0;
  photo.SetWidthHeight(Bounded(facts.width), Bounded(facts.height));
}

void SetFile(const PictureFacts& facts, PHOTOINFO& photo) {
  std::memcpy(photo.szMD5, facts.md5.c_str(), std::min(facts.md5.size() + 1, sizeof photo.szMD5));
  photo.SetFileSize(facts.stamp.size);
  photo.SetLastWriteTime(static_cast<DWORD>(facts.stamp.last_write),
                         static_cast<DWORD>(facts.stamp.last_write >> 32));
}

/// The catalogue's texts are narrower than what programs write.
std::string Cut(const std::string& text, size_t characters) {
  return Trimmed(FirstCharacters(text, characters));
}

void SetExif(const ExifFacts& exif, PHOTOINFO& photo) {
  photo.SetExifVer(exif.version.c_str());
  photo.SetExifMaker(Cut(exif.maker, kName).c_str());
  photo.SetExifModel(Cut(exif.camera_model, kName).c_str());
  photo.SetExifExposure(exif.exposure.c_str());
  photo.SetExifFnumber(exif.f_number.c_str());
  photo.SetExifExposuerBias(exif.exposure_bias.c_str());
  photo.SetExifFocalLength(exif.focal_length);
  photo.SetExif35FocalLength(exif.focal_length_35);
  photo.SetExifISO(exif.iso);
  photo.SetExifRotate(exif.orientation);
  photo.SetExifMeteringMode(exif.metering_mode);
  photo.SetExifFlash(exif.flash);
  photo.SetExifShootDate(TimeOfClock(exif.shot));
}

int32_t ShootTime(const PictureFacts& facts) {
  const int32_t shot = TimeOfClock(facts.exif.shot);
  if (IsTime(shot)) return shot;
  const int32_t last_write = UnixTimeOf(facts.stamp.last_write);
  return last_write == 0 ? NoTime() : last_write;
}

/// A shooting time is the user's own when it is neither of the two that an import would have given.
bool HasUsersShootTime(const PHOTOINFO& photo) {
  return photo.ShootDate != photo.ExifShootDate &&
         photo.ShootDate != UnixTimeOf(StampOf(photo).last_write);
}

void SetWhereEmpty(PHOTOINFO& photo, const char* (PHOTOINFO::*get)() const,
                   void (PHOTOINFO::*set)(const char*), const std::string& text) {
  if (*(photo.*get)() == '\0') (photo.*set)(text.c_str());
}

/// Fields that stand in the catalogue for the user to correct. Before SetExif.
void SetDescription(const ExifFacts& exif, PHOTOINFO& photo) {
  if (Cut(photo.GetCameraModel(), kName) == photo.GetExifModel()) photo.SetCameraModel("");
  SetWhereEmpty(photo, &PHOTOINFO::GetShooter, &PHOTOINFO::SetShooter, Cut(exif.shooter, kName));
  SetWhereEmpty(photo, &PHOTOINFO::GetCameraModel, &PHOTOINFO::SetCameraModel,
                Cut(exif.camera_model, kLongName));
  SetWhereEmpty(photo, &PHOTOINFO::GetCameraLens, &PHOTOINFO::SetCameraLens,
                Cut(exif.camera_lens, kLongName));
}

}  // namespace

void RefreshPhotoRecord(const PictureFacts& facts, PHOTOINFO& photo) {
  if (!HasUsersShootTime(photo)) photo.SetShootDate(ShootTime(facts));
  SetPixels(facts, photo);
  SetFile(facts, photo);
  SetDescription(facts.exif, photo);
  SetExif(facts.exif, photo);
}

PHOTOINFO NewPhotoRecord(const std::string& path, const PictureFacts& facts, uint32_t folder,
                         int32_t now) {
  PHOTOINFO photo;
  photo.SetGUID(NewPhotoGuid().c_str());
  photo.SetFileName(Composed(LastComponent(path)).c_str());
  photo.SetOPURL(LocationOf(path).c_str());
  photo.SetFolderID(folder);
  photo.SetRegDate(now);
  photo.SetRating(facts.words.rating.value_or(0));
  RefreshPhotoRecord(facts, photo);
  return photo;
}

}  // namespace vdsto
