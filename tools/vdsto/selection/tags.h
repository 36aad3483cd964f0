#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "tools/vdsto/library/library.h"
#include "tools/vdsto/library/tag_rows.h"
#include "tools/vdsto/selection/word_list.h"

/// Tags as users name them. Case and blanks at the ends do not count.
namespace vdsto {

/// A name for a new tag, composed and without blanks at its ends. Throws ToolError for one that is
/// empty, too long, or has a comma, which separates tags wherever a host lists them.
std::string NewTagName(const std::string& text);

/// Throws ToolError when there is none.
TAGINFO TagNamed(Library& library, const std::string& name);
/// Those that a command line names, also by patterns, each once. Throws ToolError when some words
/// are no tags.
std::vector<TAGINFO> SelectTags(Library& library, const WordList& words);

/// The tags of one photo after the other.
class TagsOfPhotos {
 public:
  explicit TagsOfPhotos(Library& library);

  /// By name.
  std::vector<TAGINFO> Of(const std::string& guid);

 private:
  Library& library_;
  vdstomgr::TagArray all_;  // by name
};

}  // namespace vdsto
