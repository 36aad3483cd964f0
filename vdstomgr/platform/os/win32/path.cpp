#include "vdstomgr/platform/os/long_path.h"
#include "vdstomgr/platform/os/win32/system_call.h"

namespace vdstomgr::os {

std::wstring Widen(const std::string& text) {
  const auto convert = [&](wchar_t* wide, int capacity) {
    const int bytes = static_cast<int>(text.size());
    return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), bytes, wide, capacity);
  };
  std::wstring wide(static_cast<std::size_t>(convert(nullptr, 0)), L'\0');
  convert(wide.data(), static_cast<int>(wide.size()));
  return wide;
}

namespace {

std::wstring FullPath(const std::wstring& path) {
  const auto resolve = [&](wchar_t* full, DWORD capacity) {
    return GetFullPathNameW(path.c_str(), capacity, full, nullptr);
  };
  std::wstring full(resolve(nullptr, 0), L'\0');
  full.resize(resolve(full.data(), static_cast<DWORD>(full.size())));
  return full;
}

}  // namespace

/// From a certain length on the system wants the full path with a mark in front.
std::wstring WidePath(const std::string& path) {
  const std::wstring wide = Widen(path);
  const std::wstring full = FullPath(wide);
  if (full.size() < MAX_PATH || full.starts_with(L"\\\\?\\")) return wide;
  return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

std::string LongPath(const std::string& path) {
  const std::wstring wide = WidePath(path);
  if (!wide.starts_with(L"\\\\?\\")) return path;
  const auto convert = [&](char* narrow, int capacity) {
    const int characters = static_cast<int>(wide.size());
    return WideCharToMultiByte(CP_UTF8, 0, wide.data(), characters, narrow, capacity, nullptr,
                               nullptr);
  };
  std::string narrow(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
  convert(narrow.data(), static_cast<int>(narrow.size()));
  return narrow;
}

}  // namespace vdstomgr::os
