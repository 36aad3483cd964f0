#pragma once

#include <filesystem>
#include <random>
#include <string>

/// Makes a folder that nobody else has, below the system's folder for temporary files.
inline std::filesystem::path MakeTemporaryFolder(const std::string& purpose) {
  std::random_device random;
  for (;;) {
    const auto folder = std::filesystem::temp_directory_path() /
                        (purpose + "-" + std::to_string(random()) + std::to_string(random()));
    if (std::filesystem::create_directory(folder)) return folder;
  }
}
