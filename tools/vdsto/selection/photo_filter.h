#pragma once
#include <cstdint>
#include <string>
#include <unordered_set>

#include "tools/vdsto/library/library.h"
#include "tools/vdsto/selection/catalogue_path.h"

namespace vdsto {

class Command;

/// What narrows a search, as the user gives it. All of it must hold.
struct FilterWords {
  std::string since, until;  ///< days, months or years: "2004-06-29", "2004-06", "2004"
  std::string camera;        ///< a part of the model's name, in any case
  int rating = 0;            ///< at least
  std::string folder;        ///< and those below it

  bool IsEmpty() const;
};

/// The same, understood. Photos in the trash never pass.
class PhotoFilter {
 public:
  /// Throws ToolError: no such day, no such folder.
  PhotoFilter(const FilterWords& words, Library& library, CataloguePath& paths);

  bool Passes(const PHOTOINFO& photo) const;
  /// Does a folder pass, for which only where it is counts?
  bool PassesFolder(uint32_t folder) const;

 private:
  int32_t since_, until_;  // seconds since 1970; the second is the first that is too late
  std::string camera_;
  int rating_;
  bool is_everywhere_;
  std::unordered_set<uint32_t> folders_;
};

}  // namespace vdsto
