#include "vdstomgr/platform/os/os_version.h"

#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr::os {

/// Asks the system's core: the documented calls tell programs the version they were made for.
OsVersion GetOsVersion() {
  using RtlGetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
  const auto entry = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion");
  const auto get_version = reinterpret_cast<RtlGetVersion>(reinterpret_cast<void (*)()>(entry));
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  if (get_version == nullptr || get_version(&version) != 0) return {};
  return {"Windows", std::to_string(version.dwMajorVersion) + "." +
                         std::to_string(version.dwMinorVersion) + "." +
                         std::to_string(version.dwBuildNumber)};
}

}  // namespace vdstomgr::os
