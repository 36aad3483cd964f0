#pragma once
#include <string>
#include <string_view>

/// What files are called at a target.
namespace vdsto {

/// A folder path that cannot leave the target's own folder: without empty names, "." and "..", and
/// without control characters.
std::string SafeFolder(std::string_view path);
/// A name that is one: not empty, no '/', no "..", at most 255 bytes with its extension kept.
std::string SafeName(std::string_view name);
/// "name.jpg", then "name (2).jpg" and so on, for a name whose place is taken.
std::string NumberedName(const std::string& name, int number);

/// What the names of all unfinished uploads of a photo begin with.
std::string PartPrefix(const std::string& guid);
/// The unfinished upload of a photo from a file with this stamp: from another state of the file it
/// would be no beginning of this one.
std::string PartName(const std::string& guid, const std::string& stamp);

}  // namespace vdsto
