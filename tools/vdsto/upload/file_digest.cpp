#include "tools/vdsto/upload/file_digest.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <memory>
#include <vector>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

/// "MD5:01ab..." or "sha-256=:q83v...:": what comes behind the name of the method, in a header.
struct Form {
  const char* header;
  const char* prefix;
  const EVP_MD* (*method)();
  bool is_hex;
};

constexpr std::array kForms{
    Form{"content-md5", "", &EVP_md5, false},
    Form{"oc-checksum", "md5:", &EVP_md5, true},
    Form{"oc-checksum", "sha1:", &EVP_sha1, true},
    Form{"oc-checksum", "sha256:", &EVP_sha256, true},
    Form{"digest", "md5=", &EVP_md5, false},
    Form{"digest", "sha=", &EVP_sha1, false},
    Form{"digest", "sha-256=", &EVP_sha256, false},
    Form{"repr-digest", "sha-256=:", &EVP_sha256, false},
};

std::string DigestOf(const OutgoingFile& file, const EVP_MD* method) {
  const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                        &EVP_MD_CTX_free);
  EVP_DigestInit_ex(context.get(), method, nullptr);
  std::vector<char> buffer(256 * 1024);
  for (uint64_t position = 0; const size_t count = file.ReadAt(position, buffer);) {
    EVP_DigestUpdate(context.get(), buffer.data(), count);
    position += count;
  }
  std::string digest(EVP_MAX_MD_SIZE, '\0');
  unsigned size = 0;
  EVP_DigestFinal_ex(context.get(), reinterpret_cast<unsigned char*>(digest.data()), &size);
  digest.resize(size);
  return digest;
}

std::string Hex(const std::string& bytes) {
  std::string text;
  for (const char c : bytes) {
    text.push_back("0123456789abcdef"[static_cast<unsigned char>(c) >> 4]);
    text.push_back("0123456789abcdef"[static_cast<unsigned char>(c) & 15]);
  }
  return text;
}

std::string Base64(const std::string& bytes) {
  std::vector<unsigned char> text(bytes.size() * 2 + 4);
  const int size =
      EVP_EncodeBlock(text.data(), reinterpret_cast<const unsigned char*>(bytes.data()),
                      static_cast<int>(bytes.size()));
  return {text.begin(), text.begin() + size};
}

/// The text of a digest up to its end, or empty when the header has none of this form.
std::string TextOf(const Form& form, const std::string& value) {
  const size_t at = AsciiLower(value).find(form.prefix);
  if (at == std::string::npos) return {};
  const std::string text = value.substr(at + std::string_view(form.prefix).size());
  const auto is_end = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '+' && c != '/' && c != '=';
  };
  return {text.begin(), std::find_if(text.begin(), text.end(), is_end)};
}

}  // namespace

bool FitsDigests(const OutgoingFile& file, const std::map<std::string, std::string>& headers) {
  return std::all_of(kForms.begin(), kForms.end(), [&](const Form& form) {
    const auto header = headers.find(form.header);
    const std::string theirs = header == headers.end() ? "" : TextOf(form, header->second);
    if (theirs.empty()) return true;
    const std::string ours = DigestOf(file, form.method());
    return form.is_hex ? Hex(ours) == AsciiLower(theirs) : Base64(ours) == theirs;
  });
}

}  // namespace vdsto
