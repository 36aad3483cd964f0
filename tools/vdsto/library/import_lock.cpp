#include "tools/vdsto/library/import_lock.h"

#include <chrono>
#include <thread>

namespace vdsto {

ImportLock::ImportLock(const std::string& library_folder, const std::function<void()>& waiting)
    : file_(library_folder, "import.lock") {
  while (!file_.Try()) {
    waiting();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

}  // namespace vdsto
