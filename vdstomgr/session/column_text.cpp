#include "vdstomgr/session/column_text.h"

#include <limits>

#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/records/record_rules.h"

namespace vdstomgr {

namespace {

constexpr std::size_t kDayCharacters = 10;

}  // namespace

std::int64_t AsInteger(const dao::Field& field) {
  return field.kind == dao::Kind::Real ? static_cast<std::int64_t>(field.real) : field.integer;
}

double AsReal(const dao::Field& field) {
  return field.kind == dao::Kind::Real ? field.real : static_cast<double>(field.integer);
}

const char* AsText(const dao::Field& field, std::string& memory) {
  memory.clear();
  AppendFromUtf8(field.bytes, memory);
  return memory.c_str();
}

void SetText(dao::Value& value, std::string_view text) {
  value.kind = dao::Kind::Text;
  value.bytes.clear();
  AppendUtf8(text, value.bytes);
}

void SetSize(dao::Value& value, std::uint64_t bytes) {
  SetText(value, CUtilityLib::GetString(bytes));
}

void SetDate(dao::Value& value, std::int32_t time) {
  SetText(value, CUtilityLib::GetTime(time));
}

void SetDay(dao::Value& value, std::int32_t time) {
  SetDate(value, time);
  value.bytes.resize(kDayCharacters);
}

std::uint64_t SizeFromText(const char* decimal) {
  return CUtilityLib::StrToINT64(decimal);
}

std::uint64_t SizeFromReal(double bytes) {
  constexpr auto kLargest = std::numeric_limits<std::uint64_t>::max();
  if (!(bytes > 0)) return 0;
  return bytes >= static_cast<double>(kLargest) ? kLargest : static_cast<std::uint64_t>(bytes);
}

std::int32_t TimeFromText(const char* date) {
  return TimeOrZero(CUtilityLib::GetTime(date));
}

std::string& ScratchText() {
  thread_local std::string text;
  return text;
}

}  // namespace vdstomgr
