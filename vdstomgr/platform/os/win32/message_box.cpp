#include "vdstomgr/platform/os/message_box.h"

#include "vdstomgr/platform/os/win32/system_call.h"

namespace vdstomgr::os {

void ShowMessage(const std::string& text) {
  MessageBoxW(nullptr, Widen(text).c_str(), L"VdStoMgr", MB_OK | MB_ICONWARNING | MB_TASKMODAL);
}

}  // namespace vdstomgr::os
