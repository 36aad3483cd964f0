#include <algorithm>
#include <array>
#include <iostream>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/selection/new_text.h"
#include "tools/vdsto/selection/word_list.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr size_t kNameCharacters = 64;

constexpr const char* kNotes =
    R"(vdsto import fills the lists of what it meets in photos; your own cameras and lenses stand in lists of
their own.)";

/// One of the four lists.
struct NameList {
  const char* kind;
  bool own;
  int (CRkPhotoDBManager::*get)(CStringArray& names);
};

constexpr NameList kOwnModels{"model", true, &CRkPhotoDBManager::GetMyModel};
constexpr NameList kOwnLenses{"lens", true, &CRkPhotoDBManager::GetMyLens};
constexpr std::array kLists{NameList{"model", false, &CRkPhotoDBManager::GetModel}, kOwnModels,
                            NameList{"lens", false, &CRkPhotoDBManager::GetLens}, kOwnLenses};

std::vector<std::string> NamesIn(Library& library, const NameList& list) {
  CStringArray names;
  library.Call([&](auto& catalogue) { return (catalogue.*list.get)(names); });
  std::vector<std::string> result;
  for (const CString& name : names) result.push_back(name.Str());
  return result;
}

struct CameraList {
  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    Table table({"kind", "own", "name"});
    for (const NameList& list : kLists) {
      for (const std::string& name : NamesIn(library, list))
        table.Add({list.kind, {list.own, list.own ? "own" : "met"}, name});
    }
    return invocation.Write(table);
  }
};

struct CameraAdd {
  WordList names;
  bool lenses = false;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Names(names, "Camera models").Flag("--lens", lenses, "They are lenses").Change(change);
  }

  /// Adding comes before the plan: only the catalogue knows which names are the same to it.
  ExitCode Run(Invocation& invocation) const {
    const std::vector<std::string> wanted = CheckedNames();
    Library library = invocation.OpenLibrary();
    const auto known = NamesIn(library, lenses ? kOwnLenses : kOwnModels);
    const auto is_new = [&](const std::string& name) {
      if (change.dry_run) return std::find(known.begin(), known.end(), name) == known.end();
      return Add(library, name);
    };
    ChangePlan plan{.noun = "name",
                    .participle = lenses ? "added to your lenses" : "added to your models"};
    for (const std::string& name : wanted) plan.AddUnless(!is_new(name), name, name);
    return CarryOut(invocation, plan, change, [] {});
  }

 private:
  std::vector<std::string> CheckedNames() const {
    std::vector<std::string> wanted;
    for (const Name& name : ReadNames(names, std::cin))
      wanted.push_back(NewName("name", name.text, kNameCharacters));
    return wanted;
  }

  bool Add(Library& library, const std::string& name) const {
    return library.Call([&](auto& catalogue) {
      return lenses ? catalogue.AddMyLens(name.c_str()) : catalogue.AddMyModel(name.c_str());
    });
  }
};

}  // namespace

void AddCamera(CommandGroup& tool) {
  CommandGroup camera =
      tool.AddGroup("camera", "Show and extend the lists of cameras and lenses", kNotes);
  camera.Add<CameraList>("ls", "List camera models and lenses");
  camera.Add<CameraAdd>("add", "Add to the lists of your own");
}

}  // namespace vdsto
