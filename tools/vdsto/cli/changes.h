#pragma once
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tools/vdsto/cli/answer.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/selection/photo_selection.h"

/// How commands that change things run and what they answer: alike.
namespace vdsto {

struct ChangeOptions {
  bool dry_run = false;  ///< only tell what would change
  bool yes = false;      ///< do not ask
};

/// What a command changes: "3 photos rated 5, 1 already was", or "3 photos would be rated 5, 1
/// already is" below their names.
struct ChangePlan {
  std::string noun;                       ///< "photo"
  std::string participle;                 ///< what they are then: "rated 5", "moved to 여행"
  bool is_final = false;                  ///< the last copy of a fact goes with it: ask first
  std::vector<std::string> changed = {};  ///< as programs know them: GUIDs or ids
  std::vector<std::string> names = {};    ///< the same for people, who see them in a dry run
  size_t unchanged = 0;                   ///< were so already
  Json details = Json::object();          ///< what else programs are told

  void Add(std::string id, std::string name);
  /// One that is so already is left alone.
  void AddUnless(bool is_already, std::string id, std::string name);
  /// What is made, known by its name, once.
  void AddNew(const std::string& name);
};

/// Does what is planned: asks when it is final, calls `apply`, and writes what has changed; in a
/// dry run only writes what would. Throws ToolError; what `apply` throws says that part may be
/// done.
ExitCode CarryOut(Invocation& invocation, const ChangePlan& plan, const ChangeOptions& options,
                  const std::function<void()>& apply);

/// Asks "3 photos will be deleted for good. Go on? [y/N]" on standard error. Throws ToolError
/// unless the user agrees or has said --yes, also when standard input is no terminal to ask at.
void ConfirmLoss(const ChangePlan& plan, const ChangeOptions& options);

/// A change of photos: what is the command's own.
struct PhotoChange {
  std::string participle;
  /// Is this photo so already? It is left alone then.
  std::function<bool(const PHOTOINFO&)> is_done = {};
  std::function<void(const CStringArray& guids)> apply = {};
  bool is_final = false;
  /// Is something lost that this photo has? The user is asked then, and the summary says how often.
  std::function<bool(const PHOTOINFO&)> replaces = {};
  Json details = Json::object();  ///< what else programs are told
};

/// Selects photos, leaves alone what needs no change, and carries the rest out.
ExitCode ChangePhotos(Invocation& invocation, Library& library, const PhotoWords& words,
                      const ChangeOptions& options, const PhotoChange& change);
/// The same for photos that are selected already, by their GUIDs.
ExitCode ChangePhotos(Invocation& invocation, Library& library, const CStringArray& photos,
                      const ChangeOptions& options, const PhotoChange& change);

}  // namespace vdsto
