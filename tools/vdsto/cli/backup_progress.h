#pragma once
#include <string>

#include "tools/vdsto/backup/backup_writer.h"
#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/import/progress_bar.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {

/// A bar for what reads and writes many bytes; ends it when the user asks to stop.
class BackupProgressBar {
 public:
  /// `after_stop` says what is so then.
  explicit BackupProgressBar(std::string after_stop) : after_stop_(std::move(after_stop)) {}

  BackupProgress Function() {
    return [this](uint64_t done, uint64_t total) {
      if (IsInterrupted()) throw ToolError(ExitCode::kInterrupted, "interrupted: " + after_stop_);
      const double fraction = total == 0 ? 1.0 : static_cast<double>(done) / double(total);
      bar_.Draw(fraction, HumanSize(done), "");
    };
  }

 private:
  std::string after_stop_;
  ProgressBar bar_;
};

}  // namespace vdsto
