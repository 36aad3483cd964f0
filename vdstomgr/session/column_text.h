#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "vdstomgr/platform/dao/value.h"

/// Column values to and from what records hold. Records hold texts in the process's code page.
namespace vdstomgr {

/// 0 when the value is null or no number.
std::int64_t AsInteger(const dao::Field& field);
double AsReal(const dao::Field& field);
/// Converted in `memory`; good until that changes. Null is an empty text.
const char* AsText(const dao::Field& field, std::string& memory);

void SetText(dao::Value& value, std::string_view text);
/// A byte count in decimal.
void SetSize(dao::Value& value, std::uint64_t bytes);
/// A time in seconds since 1970 as the 19 characters of its date, or the 10 of its day.
void SetDate(dao::Value& value, std::int32_t time);
void SetDay(dao::Value& value, std::int32_t time);

std::uint64_t SizeFromText(const char* decimal);
/// The nearest byte count: 0 for a negative number, the largest for one that does not fit.
std::uint64_t SizeFromReal(double bytes);
/// 0 when the text is no date.
std::int32_t TimeFromText(const char* date);

/// Memory of the calling thread to convert texts in.
std::string& ScratchText();

}  // namespace vdstomgr
