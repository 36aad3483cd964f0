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
  facts.date_source = picture.exif.shoot_time != 0 ? DateSource::kOriginal : DateSource::kFile;
  return facts;
}

}  // namespace vdsto
