#pragma once
#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vdsto_test {

/// A folder of the test's own, gone with it.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  /// `name` below the folder, byte for byte, with its parents made.
  std::string operator/(std::string_view name) const;

 private:
  std::filesystem::path path_;
};

using ExifFields = std::initializer_list<std::pair<const char*, const char*>>;

/// A picture of noise in the format that the name's extension says; `seed` makes it another one.
void WritePicture(const std::string& path, int width = 64, int height = 48, int seed = 1);
/// Adds camera data to a picture file.
void WriteExif(const std::string& path, const ExifFields& fields);
void WriteFile(const std::string& path, std::string_view contents);
std::string ReadFile(const std::string& path);
/// Keeps the first `size` bytes.
void CutFile(const std::string& path, uint64_t size);

struct Outcome {
  int code = 0;  ///< 128 + signal when a signal ended it
  std::string out;
  std::string err;

  nlohmann::json Json() const { return nlohmann::json::parse(out); }
};

/// The real program at work, in its own process.
class Program {
 public:
  explicit Program(std::vector<std::string> arguments, std::string password = "",
                   std::string_view input = "");
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  void Signal(int signal) const;
  Outcome Wait();

 private:
  TempFolder output_;  // made before the process
  int pid_ = -1;
};

/// Runs the program to its end.
Outcome RunVdsto(std::vector<std::string> arguments, std::string password = "",
                 std::string_view input = "");

struct TerminalOutcome {
  Outcome outcome;      ///< `out` is what the screen shows
  bool echoes = false;  ///< does the terminal show what is typed, as at the beginning?
};

/// Runs `body` in a process of its own at a terminal of its own, and types `typed` when the screen
/// shows `prompt`. What `body` answers is the exit code.
TerminalOutcome RunAtTerminal(const std::function<int()>& body, const std::string& prompt,
                              const std::string& typed);

}  // namespace vdsto_test
