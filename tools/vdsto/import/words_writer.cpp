#include "tools/vdsto/import/words_writer.h"

#include <algorithm>

#include "tools/vdsto/library/photo_texts.h"
#include "tools/vdsto/library/tag_rows.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr size_t kTitleCharacters = 200;

std::string TitleOf(const PictureWords& words) {
  return Trimmed(FirstCharacters(words.title, kTitleCharacters));
}

bool Contains(const std::vector<std::string>& list, const std::string& text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

}  // namespace

void WordsWriter::CollectNew(const std::string& guid, const PictureWords& words) {
  if (!words.title.empty() || !words.description.empty() || !words.keywords.empty())
    changes_.push_back({guid, words});
}

void WordsWriter::CollectChanges(PHOTOINFO& photo, const PictureWords& words) {
  if (words == PictureWords()) return;
  const PictureWords before = Before(photo, words);
  if (words == before) return;
  if (words.rating && photo.byteRating == before.rating.value_or(0)) photo.SetRating(*words.rating);
  PictureWords wanted = words;
  const auto texts = library_.TextsOfPhotos().Of(photo.szGUID);
  if (texts.title != TitleOf(before)) wanted.title.clear();
  if (texts.description != before.description) wanted.description.clear();
  std::erase_if(wanted.keywords,
                [&](const std::string& keyword) { return Contains(before.keywords, keyword); });
  CollectNew(photo.szGUID, wanted);
}

/// What the last import read. When nobody knows, a photo that carries tags has got them from
/// somebody, who may have taken others off.
PictureWords WordsWriter::Before(const PHOTOINFO& photo, const PictureWords& words) {
  if (const auto facts = library_.FactsOfPhotos().Of(photo.szGUID)) return facts->words;
  PictureWords before;
  vdstomgr::TagArray tags;
  library_.Call([&](auto& catalogue) { return catalogue.GetTagLists(photo.szGUID, tags); });
  if (!tags.IsEmpty()) before.keywords = words.keywords;
  return before;
}

void WordsWriter::Forget(const std::string& guid) {
  std::erase_if(changes_, [&](const Change& change) { return change.guid == guid; });
}

void WordsWriter::Write() {
  if (changes_.empty()) return;
  std::map<uint32_t, CStringArray> tagged;
  for (const Change& change : changes_) {
    for (const std::string& keyword : change.words.keywords)
      tagged[TagId(keyword)].Add(change.guid.c_str());
  }
  library_.Call([&](auto& catalogue) {
    return catalogue.InOneCommit([&] {
      for (const Change& change : changes_) SetText(change);
      for (const auto& [tag, guids] : tagged) catalogue.AddTag(guids, tag, true);
    });
  });
  changes_.clear();
}

void WordsWriter::SetText(const Change& change) {
  library_.Call([&](auto& catalogue) {
    const std::string title = TitleOf(change.words);
    const std::string& description = change.words.description;
    return (title.empty() || catalogue.SetTitle(change.guid.c_str(), title.c_str())) &&
           (description.empty() || catalogue.SetDesc(change.guid.c_str(), description.c_str()));
  });
}

uint32_t WordsWriter::TagId(const std::string& name) {
  const auto known = tag_ids_.find(name);
  if (known != tag_ids_.end()) return known->second;
  const auto tag = FindTag(library_, name);
  return tag_ids_[name] = tag ? tag->dwTagID : MakeTag(library_, name);
}

}  // namespace vdsto
