#include "vdstomgr/platform/dao/ole_variant.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/number_text.h"

namespace {

using namespace vdstomgr::dao;

std::optional<std::int64_t> WholeNumber(const COleVariant& value) {
  switch (value.vt) {
    case VT_UI1:
      return value.bVal;
    case VT_I4:
      return value.lVal;
    case VT_R8:
      return RoundToInteger(value.dblVal);
    case VT_BSTR: {
      if (const auto whole = ParseInteger(value.strVal.GetString())) return whole;
      const auto number = ParseNumber(value.strVal.GetString());
      return number ? RoundToInteger(*number) : std::nullopt;
    }
    default:
      return std::nullopt;
  }
}

template <class Target>
Target InRange(const COleVariant& value) {
  const auto whole = WholeNumber(value);
  if (!whole || *whole < std::numeric_limits<Target>::min() ||
      *whole > std::numeric_limits<Target>::max()) {
    Throw(Error::DataConversion, value.ToText().GetString());
  }
  return static_cast<Target>(*whole);
}

double Real(const COleVariant& value) {
  if (value.vt == VT_R8) return value.dblVal;
  if (value.vt == VT_BSTR) {
    if (const auto number = ParseNumber(value.strVal.GetString())) return *number;
    Throw(Error::DataConversion, value.strVal.GetString());
  }
  return InRange<std::int32_t>(value);
}

std::string RealText(double value) {
  char buffer[32];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  return std::string(buffer, end);
}

}  // namespace

void COleVariant::ChangeType(VARTYPE type) {
  switch (type) {
    case VT_UI1:
      *this = COleVariant(InRange<BYTE>(*this));
      return;
    case VT_I4:
      *this = COleVariant(InRange<std::int32_t>(*this));
      return;
    case VT_R8:
      *this = COleVariant(Real(*this));
      return;
    case VT_BSTR:
      if (vt == VT_BYTES) Throw(Error::DataConversion, "bytes");
      *this = COleVariant(ToText().GetString());
      return;
    default:
      if (vt != type) Throw(Error::DataConversion, ToText().GetString());
  }
}

std::int64_t COleVariant::ToInteger() const {
  return WholeNumber(*this).value_or(0);
}

CString COleVariant::ToText() const {
  switch (vt) {
    case VT_UI1:
      return CString(std::to_string(bVal));
    case VT_I4:
      return CString(std::to_string(lVal));
    case VT_R8:
      return CString(RealText(dblVal));
    case VT_BSTR:
      return strVal;
    default:
      return CString();
  }
}
