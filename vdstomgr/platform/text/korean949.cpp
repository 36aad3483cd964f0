#include "vdstomgr/platform/text/korean949.h"

#include <array>
#include <cstdint>
#include <memory>

#include "vdstomgr/platform/text/utf8.h"

namespace vdstomgr::korean949 {
namespace {

constexpr unsigned char kFirstLead = 0x81;
constexpr unsigned char kFirstTrail = 0x41;
constexpr std::size_t kTrails = 0xFE - kFirstTrail + 1;
constexpr std::size_t kLeads = 0xFE - kFirstLead + 1;

constexpr char16_t kToUnicode[] =
#include "vdstomgr/platform/text/korean949_table.inc"
    ;
static_assert(std::size(kToUnicode) == kLeads * kTrails + 1);

/// Lead and trail byte for every UTF-16 unit; 0 where the code page has none.
using FromUnicode = std::array<std::uint16_t, 0x10000>;

std::unique_ptr<const FromUnicode> BuildFromUnicode() {
  auto table = std::make_unique<FromUnicode>();
  for (std::size_t i = 0; i < kLeads * kTrails; ++i) {
    if (kToUnicode[i] == kReplacementCharacter) continue;
    const std::size_t lead = kFirstLead + i / kTrails;
    (*table)[kToUnicode[i]] = static_cast<std::uint16_t>(lead << 8 | (kFirstTrail + i % kTrails));
  }
  return table;
}

std::uint16_t Encode(char32_t code) {
  static const std::unique_ptr<const FromUnicode> table = BuildFromUnicode();
  return code < table->size() ? (*table)[code] : 0;
}

char32_t DecodeDouble(unsigned char lead, unsigned char trail) {
  return kToUnicode[static_cast<std::size_t>(lead - kFirstLead) * kTrails +
                    static_cast<std::size_t>(trail - kFirstTrail)];
}

/// Appends what `convert` makes of a text: it gets characters that do not begin with an ASCII byte
/// one by one, writes at most `growth` bytes for every byte it takes off the text, and answers
/// where they end. Room is made once, since this runs for every text column.
template <class Convert>
void AppendConverted(std::string_view text, std::string& out, std::size_t growth, Convert convert) {
  const std::size_t ascii = CountAsciiPrefix(text);
  out.append(text.substr(0, ascii));
  text.remove_prefix(ascii);
  if (text.empty()) return;
  const std::size_t start = out.size();
  out.resize(start + text.size() * growth);
  char* end = out.data() + start;
  while (!text.empty()) {
    if (static_cast<unsigned char>(text.front()) < 0x80) {
      *end++ = text.front();
      text.remove_prefix(1);
    } else {
      end = convert(text, end);
    }
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
}

}  // namespace

void AppendUtf8(std::string_view korean, std::string& out) {
  constexpr std::size_t kGrowth = 3;  // a single wrong byte becomes U+FFFD
  AppendConverted(korean, out, kGrowth, [](std::string_view& text, char* end) {
    const std::size_t bytes = CharacterBytes(text);
    const char32_t code = bytes == 2 ? DecodeDouble(static_cast<unsigned char>(text[0]),
                                                    static_cast<unsigned char>(text[1]))
                                     : kReplacementCharacter;
    text.remove_prefix(bytes);
    return PutCharacter(code, end);
  });
}

void AppendFromUtf8(std::string_view utf8, std::string& out) {
  AppendConverted(utf8, out, 1, [](std::string_view& text, char* end) {
    const DecodedCharacter character = DecodeUtf8(text);
    text.remove_prefix(character.bytes);
    const std::uint16_t encoded = Encode(character.code);
    if (encoded > 0xFF) *end++ = static_cast<char>(encoded >> 8);
    *end++ = encoded == 0 ? '?' : static_cast<char>(encoded & 0xFF);
    return end;
  });
}

}  // namespace vdstomgr::korean949
