#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vdsto {

using ImageBytes = std::span<const uint8_t>;

/// Encrypts the images of a library under a password, each by itself and bound to its key in the
/// store, so that none can be changed or put in another's place unnoticed: AES-256 in GCM. Any
/// thread.
class ImageSeal {
 public:
  using Key = std::array<uint8_t, 32>;

  static Key NewKey();

  /// With `takes_plain` an image that is not encrypted is taken for what it is: not all have been
  /// encrypted yet.
  ImageSeal(const Key& key, bool takes_plain) : key_(key), takes_plain_(takes_plain) {}

  /// Throws std::runtime_error when the cryptographic library fails.
  std::vector<uint8_t> Seal(const std::string& store_key, ImageBytes image) const;
  /// The image; nothing when it is not what was stored under that key.
  std::optional<std::vector<uint8_t>> Open(const std::string& store_key, ImageBytes stored) const;

 private:
  Key key_;
  bool takes_plain_;
};

/// Does what the store holds look like an encrypted image?
bool IsSealed(ImageBytes stored);

}  // namespace vdsto
