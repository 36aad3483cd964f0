#include "tools/vdsto/cli/changes.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <iostream>

#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

std::string Sentence(const ChangePlan& plan, bool dry_run) {
  const char* verb = dry_run ? " would be " : " ";
  std::string text = Counted(plan.changed.size(), plan.noun) + verb + plan.participle;
  if (plan.unchanged == 0) return text;
  const bool is_one = plan.unchanged == 1;
  const char* state = dry_run ? (is_one ? " is" : " are") : (is_one ? " was" : " were");
  return text.append(", " + std::to_string(plan.unchanged) + " already" + state);
}

Facts Describe(const ChangePlan& plan, bool dry_run) {
  Facts facts;
  for (const std::string& name : plan.names) {
    if (dry_run) facts.ForPeople(Printable(name));
  }
  for (const auto& [key, value] : plan.details.items()) facts.ForPrograms(key, value);
  return facts.ForPeople(Sentence(plan, dry_run))
      .ForPrograms("changed", plan.changed.size())
      .ForPrograms("unchanged", plan.unchanged)
      .ForPrograms("dry_run", dry_run)
      .ForPrograms(plan.noun + "s", plan.changed);
}

/// A Korean keyboard gives the letter ㅛ on the key of the y.
bool IsYes(const std::string& answer) {
  constexpr std::array kYes{"y", "yes", "예", "네", "ㅛ"};
  return std::find(kYes.begin(), kYes.end(), AsciiLower(Trimmed(Composed(answer)))) != kYes.end();
}

}  // namespace

void ChangePlan::Add(std::string id, std::string name) {
  changed.push_back(std::move(id));
  names.push_back(std::move(name));
}

void ChangePlan::AddUnless(bool is_already, std::string id, std::string name) {
  is_already ? void(++unchanged) : Add(std::move(id), std::move(name));
}

void ChangePlan::AddNew(const std::string& name) {
  if (std::find(changed.begin(), changed.end(), name) == changed.end()) Add(name, name);
}

ExitCode CarryOut(Invocation& invocation, const ChangePlan& plan, const ChangeOptions& options,
                  const std::function<void()>& apply) {
  if (!options.dry_run && plan.is_final) ConfirmLoss(plan, options);
  try {
    if (!options.dry_run && !plan.changed.empty()) apply();
  } catch (const ToolError& error) {
    throw ToolError(error.Code(), std::string(error.what()) + " (some of " +
                                      Counted(plan.changed.size(), plan.noun) + " may be " +
                                      plan.participle + " by now)");
  }
  return invocation.Write(Describe(plan, options.dry_run));
}

void ConfirmLoss(const ChangePlan& plan, const ChangeOptions& options) {
  if (options.yes || plan.changed.empty()) return;
  const std::string loss = Counted(plan.changed.size(), plan.noun) + " will be " + plan.participle;
  if (isatty(STDIN_FILENO) == 0)
    throw ToolError(ExitCode::kRefused, loss + ": say --yes, there is no terminal to ask at");
  std::cerr << loss << ". Go on? [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  if (!IsYes(answer)) throw ToolError(ExitCode::kRefused, "nothing was changed");
}

ExitCode ChangePhotos(Invocation& invocation, Library& library, const PhotoWords& words,
                      const ChangeOptions& options, const PhotoChange& change) {
  return ChangePhotos(invocation, library, SelectPhotos(library, words), options, change);
}

ExitCode ChangePhotos(Invocation& invocation, Library& library, const CStringArray& photos,
                      const ChangeOptions& options, const PhotoChange& change) {
  CataloguePath paths(library);
  ChangePlan plan{"photo", change.participle, change.is_final};
  plan.details = change.details;
  CStringArray guids;
  size_t replaced = 0;
  for (const CString& guid : photos) {
    const auto photo = library.Photo(guid.Str());
    if (!photo) continue;  // deleted meanwhile
    if (change.is_done && change.is_done(*photo)) {
      ++plan.unchanged;
      continue;
    }
    if (change.replaces && change.replaces(*photo)) ++replaced;
    guids.Add(guid);
    plan.changed.push_back(guid.Str());
    if (options.dry_run) plan.names.push_back(paths.NameOf(*photo));
  }
  if (replaced > 0) {
    plan.is_final = true;
    plan.participle += " (" + std::to_string(replaced) + " in place of another)";
  }
  return CarryOut(invocation, plan, options, [&] { change.apply(guids); });
}

}  // namespace vdsto
