#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/folder_tree.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

std::string NameLine(const TreeFolder& folder) {
  const std::string count = folder.photos > 0 ? "  (" + std::to_string(folder.photos) + ")" : "";
  return Printable(folder.name) + count + '\n';
}

void DrawBelow(const TreeFolder& folder, const std::string& lead, std::string& text) {
  for (const TreeFolder& child : folder.folders) {
    const bool is_last = &child == &folder.folders.back();
    text += lead + (is_last ? "└── " : "├── ") + NameLine(child);
    DrawBelow(child, lead + (is_last ? "    " : "│   "), text);
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

/// People see the public and the guest root when there is something in them.
Answer DrawTree(const std::vector<TreeFolder>& roots) {
  Answer answer{Json::array(), {}};
  for (const TreeFolder& root : roots) {
    answer.json.push_back(AsJson(root));
    if (&root != &roots.front() && root.folders.empty() && root.photos == 0) continue;
    answer.text += NameLine(root);
    DrawBelow(root, "", answer.text);
    answer.text += Counted(static_cast<unsigned long long>(root.AllPhotos()), "photo") + '\n';
  }
  return answer;
}

struct Tree {
  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    return invocation.Write(DrawTree(ReadFolderTree(library)));
  }
};

}  // namespace

void AddTree(CommandGroup& tool) {
  tool.Add<Tree>("tree", "Show the folders and how many photos each holds");
}

}  // namespace vdsto
