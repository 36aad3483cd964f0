#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "vdstomgr/platform/export.h"

namespace vdstomgr {

enum class TextCodePage { korean949, utf8 };

/// Sets the code page of every `const char*` that crosses the interface, for the whole process:
/// once, before the first object. korean949 until then.
VDSTO_API void SetTextCodePage(TextCodePage code_page);
VDSTO_API TextCodePage GetTextCodePage();

/// Text in the process's code page as valid UTF-8. A byte that is no character, and a double-byte
/// character that the code page leaves open, become U+FFFD.
VDSTO_API std::string ToUtf8(std::string_view process_text);
/// As ToUtf8, added at the end of `out`, which must not be what is converted.
VDSTO_API void AppendUtf8(std::string_view process_text, std::string& out);

/// UTF-8 as text in the process's code page. Under korean949 a character outside the code page and
/// an invalid byte become '?'; under utf8 an invalid byte becomes U+FFFD.
VDSTO_API std::string FromUtf8(std::string_view utf8);
/// As FromUtf8, added at the end of `out`, which must not be what is converted.
VDSTO_API void AppendFromUtf8(std::string_view utf8, std::string& out);

/// The size in bytes of the first character of a text in the process's code page that is not empty.
VDSTO_API std::size_t CharacterBytes(std::string_view process_text);

/// The longest start of the text that has at most `max_bytes` bytes and ends between two
/// characters.
VDSTO_API std::string_view CutToBytes(std::string_view process_text, std::size_t max_bytes);

}  // namespace vdstomgr
