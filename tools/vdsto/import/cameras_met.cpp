#include "tools/vdsto/import/cameras_met.h"

#include "tools/vdsto/text/text.h"

namespace vdsto {

namespace {

/// The width of the catalogue's lists.
constexpr size_t kNameCharacters = 64;

}  // namespace

void CamerasMet::Names::Remember(const std::string& full_name) {
  const std::string name = Trimmed(FirstCharacters(full_name, kNameCharacters));
  if (!name.empty() && known.insert(name).second) fresh.insert(name);
}

void CamerasMet::Remember(const ExifFacts& exif) {
  models_.Remember(exif.camera_model);
  lenses_.Remember(exif.camera_lens);
}

void CamerasMet::Write() {
  Write(models_, [](auto& catalogue, const char* name) { return catalogue.AddModel(name); });
  Write(lenses_, [](auto& catalogue, const char* name) { return catalogue.AddLens(name); });
}

/// The catalogue passes over what it has already.
template <class Add>
void CamerasMet::Write(Names& names, Add add) {
  for (const std::string& name : names.fresh)
    library_.Call([&](auto& catalogue) { return add(catalogue, name.c_str()); });
  names.fresh.clear();
}

}  // namespace vdsto
