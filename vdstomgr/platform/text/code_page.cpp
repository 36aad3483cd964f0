#include "vdstomgr/platform/text/code_page.h"

#include <algorithm>
#include <atomic>

#include "vdstomgr/platform/text/korean949.h"
#include "vdstomgr/platform/text/utf8.h"

namespace vdstomgr {
namespace {

std::atomic<TextCodePage> code_page_in_force{TextCodePage::korean949};

bool IsKorean() {
  return GetTextCodePage() == TextCodePage::korean949;
}

void AppendRepaired(std::string_view utf8, std::string& out) {
  while (!utf8.empty()) {
    const DecodedCharacter character = DecodeUtf8(utf8);
    AppendCharacter(character.code, out);
    utf8.remove_prefix(character.bytes);
  }
}

void AppendValid(std::string_view utf8, std::string& out) {
  IsValidUtf8(utf8) ? void(out.append(utf8)) : AppendRepaired(utf8, out);
}

/// Steps from character to character, since the two bytes of one cannot be told apart from behind.
std::size_t CutKorean(std::string_view text, std::size_t max_bytes) {
  std::size_t end = CountAsciiPrefix(text.substr(0, max_bytes));
  while (end < max_bytes) {
    const std::size_t next = end + korean949::CharacterBytes(text.substr(end));
    if (next > max_bytes) break;
    end = next;
  }
  return end;
}

/// Steps back from the limit to the character that would be split, if any.
std::size_t CutUtf8(std::string_view text, std::size_t max_bytes) {
  for (std::size_t back = 1; back <= std::min<std::size_t>(3, max_bytes); ++back) {
    const std::size_t start = max_bytes - back;
    if (back < DecodeUtf8(text.substr(start)).bytes) return start;
  }
  return max_bytes;
}

}  // namespace

void SetTextCodePage(TextCodePage code_page) {
  code_page_in_force = code_page;
}

TextCodePage GetTextCodePage() {
  return code_page_in_force.load(std::memory_order_relaxed);
}

void AppendUtf8(std::string_view process_text, std::string& out) {
  IsKorean() ? korean949::AppendUtf8(process_text, out) : AppendValid(process_text, out);
}

void AppendFromUtf8(std::string_view utf8, std::string& out) {
  IsKorean() ? korean949::AppendFromUtf8(utf8, out) : AppendValid(utf8, out);
}

std::string ToUtf8(std::string_view process_text) {
  std::string utf8;
  AppendUtf8(process_text, utf8);
  return utf8;
}

std::string FromUtf8(std::string_view utf8) {
  std::string process_text;
  AppendFromUtf8(utf8, process_text);
  return process_text;
}

std::size_t CharacterBytes(std::string_view process_text) {
  return IsKorean() ? korean949::CharacterBytes(process_text) : DecodeUtf8(process_text).bytes;
}

std::string_view CutToBytes(std::string_view process_text, std::size_t max_bytes) {
  if (process_text.size() <= max_bytes) return process_text;
  return process_text.substr(
      0, IsKorean() ? CutKorean(process_text, max_bytes) : CutUtf8(process_text, max_bytes));
}

}  // namespace vdstomgr
