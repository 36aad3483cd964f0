#pragma once
#include <string>
#include <string_view>

/// Patterns as shells have them: * stands for any characters, ? for one, [a-z] for one of these and
/// [!a-z] for one of the others; \ takes the next character as it is. A character may take several
/// bytes.
namespace vdsto {

bool IsPattern(std::string_view text);

/// Is all of `name` what `pattern` says? Case counts.
bool MatchesPattern(std::string_view pattern, std::string_view name);

}  // namespace vdsto
