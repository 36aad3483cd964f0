#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// UTF-8 text as this tool shows and stores it.
namespace vdsto {

/// True when `text` is well-formed UTF-8.
bool IsUtf8(std::string_view text);

/// `text` in composed form (NFC). Bytes that are not UTF-8 become U+FFFD, so that a name can always
/// be stored.
std::string Composed(std::string_view text);

/// Text that an unknown program wrote into a file, as UTF-8: taken as UTF-8 when it is well-formed,
/// else as code page 949, else as Latin-1. Ends at the first zero byte; composed and trimmed.
std::string DecodedText(std::string_view bytes);

/// `text` without blanks, control characters and zero bytes at either end, as cameras pad their
/// fields.
std::string Trimmed(std::string_view text);

/// The first `max_characters` code points of well-formed `text`.
std::string FirstCharacters(std::string_view text, size_t max_characters);

/// The code points of `text`; U+FFFD for a byte that is no UTF-8.
std::u32string CodePoints(std::string_view text);

/// The number of code points of well-formed `text`.
size_t CharacterCount(std::string_view text);

/// The number of terminal columns that `text` takes: two for Hangul and other wide characters.
size_t DisplayWidth(std::string_view text);

/// `text` filled with blanks up to `columns` terminal columns, at its end or (`right`) in front.
std::string Padded(std::string_view text, size_t columns, bool right = false);

/// `text` with control characters written as \xNN, so that a file name cannot steer the terminal.
std::string Printable(std::string_view text);

/// `text` with ASCII letters in lower case and everything else as it stands, for file extensions.
std::string AsciiLower(std::string_view text);

/// "1.4 MB": a byte count in the largest unit that leaves at least one whole digit.
std::string HumanSize(unsigned long long bytes);

/// "2004-06-29 15:29:33" in local time, of seconds since 1970; empty for no time.
std::string TimeText(int32_t time);

/// "a, b and more": the first `most` of the names.
std::string Listed(const std::vector<std::string>& names, size_t most);

/// A variable of the process's environment; empty when it is not set.
std::string EnvironmentVariable(const char* name);

/// "3 photos", "1 photo".
std::string Counted(unsigned long long count, std::string_view noun);

}  // namespace vdsto
