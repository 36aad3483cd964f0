#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "vdstomgr/platform/dao/value.h"
#include "vdstomgr/platform/framework/cstring.h"

/// Column values to and from what records hold. Records hold texts in the process's code page.
namespace vdstomgr {

/// 0 when the value is null or no number.
std::int64_t AsInteger(const dao::Field& field);
/// Converted in `memory`; good until that changes. Null is an empty text.
const char* AsText(const dao::Field& field, std::string& memory);

void SetText(dao::Value& value, std::string_view text);
void SetSize(dao::Value& value, std::uint64_t bytes);

std::uint64_t SizeFromText(const char* decimal);
/// 0 when the text is no date.
std::int32_t TimeFromText(const char* date);
using TimeText = CString (*)(std::int32_t time);

/// Puts the stored text back into `value` when reading it and writing it again gave that value.
void KeepText(const dao::Field& stored, std::size_t text_bytes, dao::Value& value);

/// Memory of the calling thread to convert texts in.
std::string& ScratchText();

}  // namespace vdstomgr
