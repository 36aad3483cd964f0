#pragma once
#include <filesystem>
#include <string>
#include <string_view>

namespace vdsto {

/// The folder that a gallery is written to. What it is to hold is written beside and takes the
/// place of an older gallery at the end; what a person put there is never touched.
class GalleryOutput {
 public:
  /// Throws ToolError for what is no folder, one that holds anything but a gallery, and, unless
  /// `force`, a gallery.
  GalleryOutput(const std::string& path, bool force);
  /// Takes away what was not published.
  ~GalleryOutput();
  GalleryOutput(const GalleryOutput&) = delete;
  GalleryOutput& operator=(const GalleryOutput&) = delete;

  /// Writes a file at this place below the folder. Throws ToolError.
  void Write(const std::string& name, std::string_view contents);
  /// The folder as it is shown from now on. Throws ToolError.
  void Publish();

 private:
  void RequireOnlyGallery(bool force) const;

  std::string name_;  // as the user wrote it
  std::filesystem::path path_;
  std::filesystem::path unfinished_;
  bool is_new_ = false;
  bool is_published_ = false;
};

}  // namespace vdsto
