#include "tools/vdsto/gallery/gallery_writer.h"

#include <unistd.h>

#include <array>
#include <functional>
#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vdsto/gallery/gallery_data.h"
#include "tools/vdsto/gallery/page_files.h"
#include "tools/vdsto/library/image_key.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/picture/picture_decoder.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

/// The orientation that turns an upright picture by 0 to 3 quarters, clockwise.
constexpr std::array kOrientations{1, 6, 3, 8};

std::string_view TextOf(std::span<const uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// A thumbnail that cannot be decoded stays as it is.
void WriteTurned(std::span<const uint8_t> image, int quarters, const std::string& name,
                 GalleryOutput& output) {
  const int orientation = kOrientations[static_cast<size_t>(quarters) % kOrientations.size()];
  DecodedPicture turned;
  if (orientation != 1) {
    [[maybe_unused]] static const bool is_ready = (InitialiseDecoder(), true);
    turned = DecodePicture({std::as_bytes(image), {}}, PictureFormat::kJpeg, orientation);
  }
  output.Write(name, TextOf(turned.thumbnail.empty() ? image : turned.thumbnail));
}

/// A library's images, also of a store that cannot be claimed because it cannot be written.
class ThumbnailSource {
 public:
  explicit ThumbnailSource(const Library& library)
      : folder_(library.Folder()),
        seal_(SealOf(library)),
        store_(folder_, seal_),
        can_claim_(access(ImageStorePath(folder_).c_str(), W_OK) == 0),
        is_open_(can_claim_ && store_.Open()) {}

  /// False when the thumbnail is not there, and when it is damaged, which is told.
  bool Lend(const std::string& key, const std::function<void(ImageBytes)>& use) {
    try {
      return !key.empty() && Find(key, use);
    } catch (const ToolError& error) {
      if (error.Code() != ExitCode::kDamaged) throw;
      std::cerr << "vdsto: " << error.what() << std::endl;
      return false;
    }
  }

 private:
  bool Find(const std::string& key, const std::function<void(ImageBytes)>& use) {
    if (can_claim_) return is_open_ && store_.Lend(key, use);
    std::vector<uint8_t> image;
    if (!ReadImage(folder_, key, seal_.get(), image)) return false;
    use(image);
    return true;
  }

  std::string folder_;
  std::shared_ptr<const ImageSeal> seal_;
  ImageStore store_;
  bool can_claim_;
  bool is_open_;
};

/// Forgets the keys of thumbnails that are not there.
size_t WriteThumbnails(Gallery& gallery, const Library& library, GalleryOutput& output) {
  ThumbnailSource store(library);
  size_t written = 0;
  for (size_t i = 0; i < gallery.photos.size(); ++i) {
    GalleryPhoto& photo = gallery.photos[i];
    const auto write = [&](std::span<const uint8_t> image) {
      WriteTurned(image, photo.item.Rotate, ThumbnailPath(i), output);
    };
    if (store.Lend(photo.image_key, write))
      ++written;
    else
      photo.image_key.clear();
  }
  return written;
}

std::string PageText(const EmbeddedFile& file, const std::string& title) {
  constexpr std::string_view kTitle = "{{title}}";
  std::string text(file.contents);
  if (!file.name.ends_with(".html")) return text;
  const std::string html = HtmlText(title);
  for (size_t at = 0; (at = text.find(kTitle, at)) != std::string::npos; at += html.size())
    text.replace(at, kTitle.size(), html);
  return text;
}

}  // namespace

size_t WriteGallery(Gallery& gallery, const std::string& title, const Library& library,
                    GalleryOutput& output) {
  const size_t thumbnails = WriteThumbnails(gallery, library, output);
  output.Write("data/index.js", IndexScript(gallery, title));
  for (size_t chunk = 0; chunk * kPhotosPerChunk < gallery.photos.size(); ++chunk)
    output.Write("data/" + std::to_string(chunk) + ".js", ChunkScript(gallery, chunk));
  for (const EmbeddedFile& file : PageFiles())
    output.Write(std::string(file.name), PageText(file, title));
  return thumbnails;
}

}  // namespace vdsto
