#pragma once
#include <string>

#include "tools/vdsto/library/photo_facts.h"
#include "tools/vdsto/picture/picture_probe.h"

namespace vdsto {

/// What a probed picture tells beside its row: the facts of the photo `guid` from `path`.
PhotoFacts FactsOfPicture(const std::string& guid, const std::string& path,
                          const PictureFacts& picture);

}  // namespace vdsto
