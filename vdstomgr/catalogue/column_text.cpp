#include "vdstomgr/catalogue/column_text.h"

#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace vdstomgr {

std::int64_t AsInteger(const dao::Field& field) {
  return field.kind == dao::Kind::Real ? static_cast<std::int64_t>(field.real) : field.integer;
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

void KeepText(const dao::Field& stored, std::size_t text_bytes, dao::Value& value) {
  if (stored.kind != dao::Kind::Text || stored.bytes == value.bytes) return;
  const std::string text = FromUtf8(stored.bytes);
  if (ToUtf8(CutToBytes(text, text_bytes)) == value.bytes) value.bytes = stored.bytes;
}

void SetSize(dao::Value& value, std::uint64_t bytes) {
  SetText(value, CUtilityLib::GetString(bytes));
}

std::uint64_t SizeFromText(const char* decimal) {
  return CUtilityLib::StrToINT64(decimal);
}

std::int32_t TimeFromText(const char* date) {
  const std::int32_t time = CUtilityLib::GetTime(date);
  return time == -1 ? 0 : time;
}

std::string& ScratchText() {
  thread_local std::string text;
  return text;
}

}  // namespace vdstomgr
