#pragma once
#include <string>

#include "tools/vdsto/picture/picture_metadata.h"
#include "tools/vdsto/picture/source_file.h"

/// Values of facts as texts of one column. A text that was not written here is read as nothing.
namespace vdsto {

/// A JSON object; empty when there are no words.
std::string TextOf(const PictureWords& words);
PictureWords WordsFromText(const std::string& text);

/// "size/last_write"; empty without a file.
std::string TextOf(const FileStamp& stamp);
FileStamp StampFromText(const std::string& text);

}  // namespace vdsto
