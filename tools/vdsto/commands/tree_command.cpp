#include <nlohmann/json.hpp>

#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/commands/photo_text.h"
#include "tools/vdsto/library/folder_tree.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

using Json = nlohmann::ordered_json;

void PrintName(const TreeFolder& folder, std::ostream& out) {
  out << Printable(folder.name);
  if (folder.photos > 0) out << "  (" << folder.photos << ')';
  out << '\n';
}

void PrintBelow(const TreeFolder& folder, const std::string& lead, std::ostream& out) {
  for (const TreeFolder& child : folder.folders) {
    const bool is_last = &child == &folder.folders.back();
    out << lead << (is_last ? "└── " : "├── ");
    PrintName(child, out);
    PrintBelow(child, lead + (is_last ? "    " : "│   "), out);
  }
}

Json AsJson(const TreeFolder& folder) {
  auto folders = Json::array();
  for (const TreeFolder& child : folder.folders) folders.push_back(AsJson(child));
  return {{"id", static_cast<int32_t>(folder.id)},
          {"name", folder.name},
          {"photos", folder.photos},
          {"photos_below", folder.AllPhotos() - folder.photos},
          {"folders", std::move(folders)}};
}

}  // namespace

void RunTree(Library& library, OutputForm form, std::ostream& out) {
  const std::vector<TreeFolder> roots = ReadFolderTree(library);
  if (form == OutputForm::kJson) {
    auto list = Json::array();
    for (const TreeFolder& root : roots) list.push_back(AsJson(root));
    out << JsonText(list);
    return;
  }
  for (const TreeFolder& root : roots) {
    if (&root != &roots.front() && root.folders.empty() && root.photos == 0) continue;
    PrintName(root, out);
    PrintBelow(root, "", out);
    out << Counted(static_cast<unsigned long long>(root.AllPhotos()), "photo") << '\n';
  }
}

}  // namespace vdsto
