#include "tools/vdsto/library/tag_rows.h"

#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr uint32_t kNoTag = 0xFFFFFFFF;

}  // namespace

std::optional<TAGINFO> FindTag(Library& library, const std::string& name) {
  for (const std::string& form : {name, Trimmed(Composed(name))}) {
    const auto tag = library.Call([&](auto& catalogue) {
      TAGINFO info;
      info.dwTagID = catalogue.GetTagID(form.c_str());
      const CString known = catalogue.GetTagName(info.dwTagID);
      known.Str().copy(info.szTagName, sizeof info.szTagName - 1);
      return info;
    });
    if (tag.dwTagID != kNoTag) return tag;
  }
  return std::nullopt;
}

uint32_t MakeTag(Library& library, const std::string& name) {
  DWORD id = library.Call([](auto& catalogue) { return catalogue.GetNewTagID(); });
  while (!PhotosWithTag(library, id).IsEmpty()) ++id;  // of a tag that was deleted without them
  if (library.Call([&](auto& catalogue) { return catalogue.AddTagInfo(name.c_str(), id); }))
    return id;
  throw ToolError(ExitCode::kCatalogue,
                  "the tag " + Printable(name) + " was not made: another program did, try again");
}

CStringArray PhotosWithTag(Library& library, uint32_t tag) {
  CStringArray guids;
  library.Call([&](auto& catalogue) { return catalogue.GetPhotoListWithTag(tag, guids); });
  return guids;
}

}  // namespace vdsto
