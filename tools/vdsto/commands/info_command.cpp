#include <nlohmann/json.hpp>

#include "tools/vdsto/commands/catalogue_path.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/commands/photo_text.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

using Json = nlohmann::ordered_json;

constexpr size_t kLabelColumns = 20;

std::string ValueText(const Json& value) {
  if (value.is_null()) return "-";
  return value.is_string() ? Printable(value.get<std::string>()) : value.dump();
}

void PrintFields(const Json& fields, const std::string& prefix, std::ostream& out) {
  for (const auto& [key, value] : fields.items()) {
    if (value.is_object()) {
      PrintFields(value, key + " ", out);
      continue;
    }
    std::string label = prefix + key;
    for (char& c : label) {
      if (c == '_') c = ' ';
    }
    out << Padded(label, kLabelColumns) << "  " << ValueText(value) << '\n';
  }
}

}  // namespace

void RunInfo(Library& library, const std::string& photo, OutputForm form, std::ostream& out) {
  CataloguePath paths(library);
  const PHOTOINFO info = paths.Photo(photo);
  const Json fields = PhotoAsJson(info, paths.NameOf(info.dwFolderID));
  if (form == OutputForm::kJson) {
    out << JsonText(fields);
  } else {
    PrintFields(fields, "", out);
  }
}

}  // namespace vdsto
