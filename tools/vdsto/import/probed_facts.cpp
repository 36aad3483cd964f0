#include "tools/vdsto/import/probed_facts.h"

namespace vdsto {

PhotoFacts FactsOfPicture(const std::string& guid, const std::string& path,
                          const PictureFacts& picture) {
  PhotoFacts facts;
  facts.guid = guid;
  facts.path = path;
  facts.stamp = picture.stamp;
  facts.md5 = picture.md5;
  facts.state = picture.state;
  facts.problem = picture.problem;
  facts.maker = picture.exif.maker;
  facts.model = picture.exif.camera_model;
  facts.lens = picture.exif.camera_lens;
  facts.place = picture.place;
  facts.date_source = picture.exif.shot_source;
  const bool has_file_time = UnixTimeOf(picture.stamp.last_write) != 0;
  if (picture.exif.shot.empty() && has_file_time) facts.date_source = DateSource::kFile;
  facts.width = picture.width;
  facts.height = picture.height;
  facts.sidecar = picture.sidecar;
  facts.words = picture.words;
  return facts;
}

}  // namespace vdsto
