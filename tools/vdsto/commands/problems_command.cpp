#include <algorithm>
#include <vector>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(Damaged pictures are shown in part, broken ones not at all. The reasons are those of the last import that
read the file. Photos in the trash are left out. What could not be read at all comes last, under its path on
the disk; -0 leaves it out.)";

struct Problem {
  std::string name;  ///< the photo's catalogue path
  PhotoFacts facts;
};

std::vector<Problem> ReadProblems(Library& library) {
  CataloguePath paths(library);
  std::vector<Problem> problems;
  for (PhotoFacts& facts : library.FactsOfPhotos().NotGood()) {
    const auto photo = library.Photo(facts.guid);
    if (photo && !IsTrashFolder(photo->dwFolderID))
      problems.push_back({paths.NameOf(*photo), std::move(facts)});
  }
  std::sort(problems.begin(), problems.end(),
            [](const Problem& a, const Problem& b) { return a.name < b.name; });
  return problems;
}

struct Problems {
  bool ends_with_zero = false;

  void Declare(Command& command) {
    command.Flag("-0,--null", ends_with_zero, "Write paths only, each ended by a zero byte")
        .Notes(kNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    const std::vector<Problem> problems = ReadProblems(library);
    if (ends_with_zero) return WritePaths(invocation, problems);
    Json list = Json::array();
    Table rows({"state", "name", "reason"});
    for (const auto& [name, facts] : problems) {
      const std::string state(NameOf(facts.state));
      list.push_back({{"guid", facts.guid},
                      {"name", name},
                      {"original", UnlimitedLocationOf(facts.path)},
                      {"state", state},
                      {"reason", facts.problem}});
      rows.Add({state, name, facts.problem});
    }
    for (const auto& [path, reason] : library.FactsOfPhotos().Unreadable()) {
      list.push_back({{"guid", nullptr},
                      {"name", nullptr},
                      {"original", UnlimitedLocationOf(path)},
                      {"state", "unreadable"},
                      {"reason", reason}});
      rows.Add({"unreadable", Printable(path), reason});
    }
    return invocation.Write({std::move(list), rows.Text()});
  }

 private:
  static ExitCode WritePaths(Invocation& invocation, const std::vector<Problem>& problems) {
    std::string text;
    for (const Problem& problem : problems) text += problem.name + '\0';
    return invocation.WriteBytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  }
};

}  // namespace

void AddProblems(CommandGroup& tool) {
  tool.Add<Problems>("problems", "List pictures that are damaged or cannot be shown, and why");
}

}  // namespace vdsto
