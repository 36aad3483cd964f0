#include "tools/vdsto/library/photo_facts.h"

#include <array>

namespace vdsto {
namespace {

constexpr std::array<std::string_view, 7> kDateSources{"",    "original", "digitized", "datetime",
                                                       "xmp", "iptc",     "file"};
constexpr std::array<std::string_view, 3> kStates{"good", "damaged", "broken"};

}  // namespace

std::string_view NameOf(DateSource source) {
  return kDateSources.at(static_cast<size_t>(source));
}

std::string_view NameOf(PictureState state) {
  return kStates.at(static_cast<size_t>(state));
}

}  // namespace vdsto
