#pragma once

#include <string_view>

namespace vdstomgr {

/// The name of the order of CompareFolded. It is written into database files, whose indexes are
/// kept in this order: any change of the order, a newer table included, needs a new name.
inline constexpr const char* kTextOrderName = "vdsto_text_1";

/// Unicode simple case folding (statuses C and S); what has no folding stays.
char32_t FoldCase(char32_t code);

/// Compares two UTF-8 texts by their folded characters, then by length: negative, 0 or positive.
/// A byte that belongs to no valid character counts as a character of its own, after all valid ones
/// and in order of its value, so that any two byte strings have an order and it is transitive.
int CompareFolded(std::string_view utf8_a, std::string_view utf8_b);

}  // namespace vdstomgr
