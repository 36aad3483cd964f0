#include "tools/vdsto/cli/photo_text.h"

#include "tools/vdsto/library/folder_rows.h"
#include "tools/vdsto/picture/source_file.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

Json TextOrNull(const std::string& text) {
  return text.empty() ? Json() : Json(text);
}
Json NumberOrNull(uint32_t number) {
  return number == 0 ? Json() : Json(number);
}

/// "1600 x 1200"; nothing for a photo that cannot be shown.
Fact PixelFact(const PHOTOINFO& photo) {
  Fact pixels(CanBeShown(photo)
                  ? Json(std::to_string(photo.Width) + " x " + std::to_string(photo.Height))
                  : Json());
  pixels.is_quantity = true;
  return pixels;
}

Json ExifAsJson(const PHOTOINFO& photo) {
  return {{"version", TextOrNull(photo.GetExifVer())},
          {"maker", TextOrNull(photo.GetExifMaker())},
          {"model", TextOrNull(photo.GetExifModel())},
          {"shot", TextOrNull(TimeText(photo.ExifShootDate))},
          {"exposure", TextOrNull(photo.GetExifExposure())},
          {"f_number", TextOrNull(photo.GetExifFnumber())},
          {"exposure_bias", TextOrNull(photo.GetExifExposureBias())},
          {"focal_length", NumberOrNull(photo.ExifFocalLength)},
          {"focal_length_35mm", NumberOrNull(photo.Exif35FocalLength)},
          {"iso", NumberOrNull(photo.ExifISO)},
          {"orientation", NumberOrNull(photo.ExifRotate)},
          {"metering_mode", photo.ExifMeteringMode},
          {"flash", photo.ExifFlash}};
}

Json PlaceAsJson(const Place& place) {
  const auto known = [](const auto& number) { return number ? Json(*number) : Json(); };
  if (place == Place()) return {};
  return {{"latitude", known(place.latitude)},
          {"longitude", known(place.longitude)},
          {"altitude", known(place.altitude)}};
}

}  // namespace

std::string LastWriteText(const PHOTOINFO& photo) {
  return TimeText(UnixTimeOf(StampOf(photo).last_write));
}

bool CanBeShown(const PHOTOINFO& photo) {
  return *photo.GetLTBURL() != '\0';
}

Json PhotoAsJson(const PHOTOINFO& photo, const std::string& folder) {
  const bool shown = CanBeShown(photo);
  return {{"guid", photo.szGUID},
          {"name", photo.GetFileName()},
          {"folder", folder},
          {"folder_id", photo.dwFolderID},
          {"size", photo.FileSize},
          {"md5", TextOrNull(photo.szMD5)},
          {"width", shown ? Json(photo.Width) : Json()},
          {"height", shown ? Json(photo.Height) : Json()},
          {"rotate", photo.byteRotate},
          {"shot", TextOrNull(TimeText(photo.ShootDate))},
          {"registered", TextOrNull(TimeText(photo.RegDate))},
          {"modified", TextOrNull(TimeText(photo.UserModify))},
          {"last_write", TextOrNull(LastWriteText(photo))},
          {"last_write_filetime", StampOf(photo).last_write},
          {"original", TextOrNull(photo.GetOPURL())},
          {"thumbnail", TextOrNull(photo.GetLTBURL())},
          {"shooter", TextOrNull(photo.GetShooter())},
          {"camera_model", TextOrNull(photo.GetCameraModel())},
          {"camera_lens", TextOrNull(photo.GetCameraLens())},
          {"rating", photo.byteRating},
          {"flags", photo.byteFlag},
          {"exif", ExifAsJson(photo)}};
}

void AddPhotoFacts(const std::optional<PhotoFacts>& known, Facts& facts) {
  if (!known) return;
  facts.Add("original_path", TextOrNull(UnlimitedLocationOf(known->path)))
      .Add("original_gone_since", TimeFact(known->gone_since))
      .Add("date_source", TextOrNull(std::string(NameOf(known->date_source))))
      .Add("place", PlaceAsJson(known->place))
      .Add("camera", Json{{"maker", TextOrNull(known->maker)},
                          {"model", TextOrNull(known->model)},
                          {"lens", TextOrNull(known->lens)}})
      .Add("picture", Json{{"state", std::string(NameOf(known->state))},
                           {"problem", TextOrNull(known->problem)}});
}

Fact TagsFact(const std::vector<TAGINFO>& tags) {
  Json list = Json::array();
  std::string names;
  for (const TAGINFO& tag : tags) {
    list.push_back(tag.szTagName);
    names += (names.empty() ? "" : ", ") + Printable(tag.szTagName);
  }
  return {std::move(list), names.empty() ? "-" : names};
}

Table PhotoTable() {
  return Table({"shot", "size", "pixels", "name"});
}

void AddPhoto(const PHOTOINFO& photo, const std::string& name, Table& table) {
  table.Add({TimeFact(photo.ShootDate), SizeFact(photo.FileSize), PixelFact(photo), name});
}

}  // namespace vdsto
