#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/framework/types.h"

/// What a variant holds. On Windows the SDK's own.
#if defined(_WIN32)
#include <wtypes.h>
inline constexpr VARTYPE VT_BYTES = VT_ARRAY | VT_UI1;
#else
enum VARTYPE : std::uint16_t {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I4 = 3,
  VT_R8 = 5,
  VT_BSTR = 8,
  VT_UI1 = 17,
  VT_BYTES = 0x2000 | VT_UI1,  ///< an array of bytes
};
#endif

/// A column value of changing type. Text is in the process's code page.
class VDSTO_API COleVariant {
 public:
  COleVariant() = default;
  COleVariant(BYTE value) : vt(VT_UI1), bVal(value) {}
  COleVariant(std::int32_t value) : vt(VT_I4), lVal(value) {}
  COleVariant(double value) : vt(VT_R8), dblVal(value) {}
  /// Null becomes an empty text.
  COleVariant(const char* text) : vt(VT_BSTR), strVal(text) {}
  explicit COleVariant(std::vector<BYTE> value) : vt(VT_BYTES), bytes(std::move(value)) {}

  void Clear() { *this = COleVariant(); }
  void SetNull() { *this = COleVariant(), vt = VT_NULL; }

  /// Converts in place to VT_UI1, VT_I4, VT_R8 or VT_BSTR. Throws CDaoException 3421 when the value
  /// has no such form; the variant is then unchanged.
  void ChangeType(VARTYPE type);

  /// The value as a whole number; null, empty, bytes and text that is no number give 0.
  std::int64_t ToInteger() const;
  /// The value as text; null, empty and bytes give an empty text.
  CString ToText() const;

  VARTYPE vt = VT_EMPTY;
  BYTE bVal = 0;
  std::int32_t lVal = 0;
  double dblVal = 0;
  CString strVal;
  std::vector<BYTE> bytes;
};

/// The content of a long-binary column: a block and its length in bytes.
struct VDSTO_API CLongBinary {
  std::shared_ptr<BYTE[]> m_hData;
  DWORD m_dwDataLength = 0;
};
