#pragma once

namespace vdsto {

/// Runs one command line. Output goes to standard output, one line per failure to standard error.
/// Answers the exit code.
int RunTool(int argc, const char* const* argv);

}  // namespace vdsto
