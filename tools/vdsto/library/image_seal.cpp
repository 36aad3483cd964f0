#include "tools/vdsto/library/image_seal.h"

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

/// docs/file-formats.md draws it: magic, nonce, what is encrypted, tag.
constexpr std::string_view kMagic = "VDSEAL1\n";
constexpr size_t kNonceBytes = 12;
constexpr size_t kTagBytes = 16;
constexpr size_t kHeadBytes = kMagic.size() + kNonceBytes;

using Context = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

void Require(int answer) {
  if (answer != 1) throw std::runtime_error("the cipher of the images failed");
}

void FillRandomly(std::span<uint8_t> bytes) {
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1)
    throw std::runtime_error("no random numbers");
}

const uint8_t* BytesOf(std::string_view text) {
  return reinterpret_cast<const uint8_t*>(text.data());
}

/// A context that is about to take the image, with the magic and the image's key taken in. The
/// store tells no capital letters from small ones in keys.
Context Begun(const ImageSeal::Key& key, const uint8_t* nonce, const std::string& store_key,
              bool encrypts) {
  Context context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
  const std::string bound = std::string(kMagic) + AsciiLower(store_key);
  int size = 0;
  Require(EVP_CipherInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, key.data(), nonce,
                            encrypts ? 1 : 0));
  Require(EVP_CipherUpdate(context.get(), nullptr, &size, BytesOf(bound),
                           static_cast<int>(bound.size())));
  return context;
}

}  // namespace

ImageSeal::Key ImageSeal::NewKey() {
  Key key;
  FillRandomly(key);
  return key;
}

std::vector<uint8_t> ImageSeal::Seal(const std::string& store_key, ImageBytes image) const {
  std::vector<uint8_t> sealed(kHeadBytes + image.size() + kTagBytes);
  std::copy_n(BytesOf(kMagic), kMagic.size(), sealed.begin());
  uint8_t* const nonce = sealed.data() + kMagic.size();
  FillRandomly({nonce, kNonceBytes});
  const Context context = Begun(key_, nonce, store_key, true);
  uint8_t* const tag = sealed.data() + sealed.size() - kTagBytes;
  int size = 0;
  Require(EVP_CipherUpdate(context.get(), sealed.data() + kHeadBytes, &size, image.data(),
                           static_cast<int>(image.size())));
  Require(EVP_CipherFinal_ex(context.get(), tag, &size));
  Require(EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_GET_TAG, kTagBytes, tag));
  return sealed;
}

std::optional<std::vector<uint8_t>> ImageSeal::Open(const std::string& store_key,
                                                    ImageBytes stored) const {
  if (!IsSealed(stored)) {
    return takes_plain_ ? std::optional(std::vector<uint8_t>(stored.begin(), stored.end()))
                        : std::nullopt;
  }
  const ImageBytes body = stored.subspan(kHeadBytes, stored.size() - kHeadBytes - kTagBytes);
  const ImageBytes tag = stored.last(kTagBytes);
  const Context context = Begun(key_, stored.data() + kMagic.size(), store_key, false);
  std::vector<uint8_t> image(body.size());
  std::array<uint8_t, kTagBytes> expected{};
  std::copy(tag.begin(), tag.end(), expected.begin());
  int size = 0;
  Require(EVP_CipherUpdate(context.get(), image.data(), &size, body.data(),
                           static_cast<int>(body.size())));
  Require(EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, kTagBytes, expected.data()));
  if (EVP_CipherFinal_ex(context.get(), expected.data(), &size) != 1) return std::nullopt;
  return image;
}

bool IsSealed(ImageBytes stored) {
  return stored.size() > kHeadBytes + kTagBytes &&
         std::equal(kMagic.begin(), kMagic.end(), stored.begin());
}

}  // namespace vdsto
