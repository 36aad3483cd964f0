#include "vdstomgr/platform/text/case_folding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "vdstomgr/platform/text/utf8.h"

namespace vdstomgr {
namespace {

struct FoldingRun {
  char32_t first;
  char32_t last;
  char32_t step;
  std::int32_t distance;
};

constexpr FoldingRun kRuns[] = {
#include "vdstomgr/platform/text/case_folding_table.inc"
};

constexpr std::size_t kBlockSize = 256;
constexpr std::size_t kBlocks = std::end(kRuns)[-1].last / kBlockSize + 1;

constexpr std::size_t CountFoldingBlocks() {
  std::array<bool, kBlocks> used{};
  for (const FoldingRun& run : kRuns) {
    for (char32_t code = run.first; code <= run.last; code += run.step) {
      used[code / kBlockSize] = true;
    }
  }
  return static_cast<std::size_t>(std::count(used.begin(), used.end(), true));
}

/// How far each character moves, in blocks; all blocks without folding share the first, which is 0.
struct FoldingTable {
  std::array<std::uint8_t, kBlocks> block_of{};
  std::array<std::array<std::int32_t, kBlockSize>, CountFoldingBlocks() + 1> distances{};
};

constexpr FoldingTable BuildFoldingTable() {
  FoldingTable table;
  std::uint8_t last_block = 0;
  for (const FoldingRun& run : kRuns) {
    for (char32_t code = run.first; code <= run.last; code += run.step) {
      std::uint8_t& block = table.block_of[code / kBlockSize];
      if (block == 0) block = ++last_block;
      table.distances[block][code % kBlockSize] = run.distance;
    }
  }
  return table;
}

constexpr FoldingTable kFolding = BuildFoldingTable();

constexpr char32_t Fold(char32_t code) {
  if (code >= kBlocks * kBlockSize) return code;
  const std::int32_t distance =
      kFolding.distances[kFolding.block_of[code / kBlockSize]][code % kBlockSize];
  return static_cast<char32_t>(static_cast<std::int32_t>(code) + distance);
}

constexpr std::array<unsigned char, 128> BuildAsciiFolding() {
  std::array<unsigned char, 128> folded{};
  for (char32_t code = 0; code < folded.size(); ++code) {
    folded[code] = static_cast<unsigned char>(Fold(code));
  }
  return folded;
}

constexpr auto kAsciiFolding = BuildAsciiFolding();
constexpr char32_t kFirstInvalid = 0x110000;

/// A text with the place that has been compared so far.
struct Walk {
  std::string_view text;
  std::size_t at = 0;

  bool AtEnd() const { return at == text.size(); }
  unsigned char Byte() const { return static_cast<unsigned char>(text[at]); }
  bool IsInsideCharacter() const { return !AtEnd() && (Byte() & 0xC0) == 0x80; }
  bool IsAscii() const { return !AtEnd() && Byte() < 0x80; }

  char32_t TakeFolded() {
    const DecodedCharacter character = DecodeUtf8(text.substr(at));
    const char32_t folded =
        character.code == kInvalidCharacter ? kFirstInvalid + Byte() : Fold(character.code);
    at += character.bytes;
    return folded;
  }
};

/// Skips bytes that are the same in both, eight at a time.
void SkipSameBytes(Walk& a, Walk& b) {
  std::size_t left = std::min(a.text.size() - a.at, b.text.size() - b.at);
  const char* in_a = a.text.data() + a.at;
  const char* in_b = b.text.data() + b.at;
  std::size_t same = 0;
  while (left - same >= 8 && std::memcmp(in_a + same, in_b + same, 8) == 0) same += 8;
  while (same < left && in_a[same] == in_b[same]) ++same;
  a.at += same;
  b.at += same;
}

/// Steps both back to the start of the character in which the same bytes ended. Only the first byte
/// of a character is no continuation byte, so it is found without looking at what lies before.
void StepBackToCharacter(Walk& a, Walk& b, std::size_t same_from) {
  if (!a.IsInsideCharacter() && !b.IsInsideCharacter()) return;
  const std::size_t furthest = std::min<std::size_t>(3, a.at - same_from);
  for (std::size_t back = 1; back <= furthest; ++back) {
    const auto byte = static_cast<unsigned char>(a.text[a.at - back]);
    if ((byte & 0xC0) == 0x80) continue;
    if (byte >= 0xC0) a.at -= back, b.at -= back;
    return;
  }
}

}  // namespace

char32_t FoldCase(char32_t code) {
  return Fold(code);
}

int CompareFolded(std::string_view utf8_a, std::string_view utf8_b) {
  Walk a{utf8_a}, b{utf8_b};
  for (;;) {
    const std::size_t same_from = a.at;
    SkipSameBytes(a, b);
    if (a.AtEnd() && b.AtEnd()) return 0;
    StepBackToCharacter(a, b, same_from);
    if (a.AtEnd() || b.AtEnd()) return a.AtEnd() ? -1 : 1;
    const bool both_ascii = a.IsAscii() && b.IsAscii();
    const auto folded_a = both_ascii ? kAsciiFolding[a.text[a.at++] & 0x7F] : a.TakeFolded();
    const auto folded_b = both_ascii ? kAsciiFolding[b.text[b.at++] & 0x7F] : b.TakeFolded();
    if (folded_a != folded_b) return folded_a < folded_b ? -1 : 1;
  }
}

}  // namespace vdstomgr
