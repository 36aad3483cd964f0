#include "vdstomgr/platform/os/message_box.h"

#include <cstdio>

namespace vdstomgr::os {

void ShowMessage(const std::string& text) {
  std::fprintf(stderr, "%s\n", text.c_str());
}

}  // namespace vdstomgr::os
