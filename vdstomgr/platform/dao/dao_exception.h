#pragma once

#include <exception>
#include <memory>
#include <string>

#include "vdstomgr/platform/export.h"

/// One database error as the dialect numbers it.
struct CDaoErrorInfo {
  int m_lErrorCode = 0;          ///< the dialect's error number, e.g. 3022 for a duplicate key
  std::string m_strDescription;  ///< message for the user, UTF-8
};

/// A failed database operation. Thrown and caught by value; always carries m_pErrorInfo.
/// It never crosses the library boundary: the catalogue's operations turn it into their results.
class VDSTO_API CDaoException : public std::exception {
 public:
  CDaoException(int code, std::string description)
      : m_pErrorInfo(
            std::make_shared<const CDaoErrorInfo>(CDaoErrorInfo{code, std::move(description)})) {}

  int Code() const noexcept { return m_pErrorInfo->m_lErrorCode; }
  const char* what() const noexcept override { return m_pErrorInfo->m_strDescription.c_str(); }

  std::shared_ptr<const CDaoErrorInfo> m_pErrorInfo;
};
