#pragma once
#include <string>
#include <string_view>

/// Where an original lies, as a text that the catalogue can hold.
namespace vdsto {

/// The location of the file or folder at the absolute `path`, byte for byte: the path itself when
/// it is UTF-8, else a file:// URL with the odd bytes as %NN. Empty when it is longer than the
/// catalogue's column.
std::string LocationOf(std::string_view path);

/// The same, of any length.
std::string UnlimitedLocationOf(std::string_view path);

/// The inverse of LocationOf: the path's bytes. A text that names no local file comes back empty.
std::string PathOf(std::string_view location);

/// `path` without its last component; "/" for a component of the root.
std::string ParentOf(std::string_view path);

/// The last component of `path`.
std::string_view LastComponent(std::string_view path);

/// `folder` with `name` below it.
std::string Joined(std::string_view folder, std::string_view name);

/// True when `path` lies below `folder`, at any depth.
bool IsBelow(std::string_view path, std::string_view folder);

}  // namespace vdsto
