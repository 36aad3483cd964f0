#include "tools/vdsto/import/gone_photos.h"

#include <sys/stat.h>

#include <cerrno>
#include <map>
#include <vector>

#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr size_t kPhotosAtOnce = 1000;

enum class Original { kThere, kGone, kCannotTell };

Original LookFor(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) == 0) return Original::kThere;
  return errno == ENOENT || errno == ENOTDIR ? Original::kGone : Original::kCannotTell;
}

class GonePhotos {
 public:
  GonePhotos(Library& library, const ImportPlaces& places, ImportSummary& summary)
      : library_(library), places_(places), summary_(summary) {}

  void Judge(const std::vector<std::string>& guids) {
    const auto facts = library_.FactsOfPhotos().Of(guids);
    for (const std::string& guid : guids) {
      const auto found = facts.find(guid);
      if (found != facts.end()) {
        Judge(found->second, true);
      } else if (const auto row = library_.Photo(guid); row && *row->GetOPURL() != '\0') {
        Judge(FactsOfRow(*row), false);
      }
    }
  }

  void Write() {
    const int32_t now = library_.Call([](auto& catalogue) { return catalogue.GetTime(); });
    for (PhotoFacts& facts : gone_without_facts_) facts.gone_since = now;
    FactsDatabase& database = library_.FactsOfPhotos();
    if (!gone_.empty()) database.SetGone(gone_, now);
    if (!back_.empty()) database.SetGone(back_, 0);
    if (!gone_without_facts_.empty()) database.Put(gone_without_facts_);
    summary_.newly_gone = gone_.size() + gone_without_facts_.size();
    for (const auto& [place, count] : not_there_)
      summary_.not_there.push_back({places_.FolderOf(place), Counted(count, "photo")});
  }

 private:
  void Judge(const PhotoFacts& facts, bool is_stored) {
    if (!places_.IsThere(facts)) {
      ++not_there_[facts.place_id];
      return;
    }
    const Original original = LookFor(facts.path);
    const bool was_gone = facts.gone_since != 0;
    if (original == Original::kGone) ++summary_.gone;
    if (original == Original::kThere && was_gone) back_.push_back(facts.guid);
    if (original != Original::kGone || was_gone) return;
    is_stored ? gone_.push_back(facts.guid) : gone_without_facts_.push_back(facts);
  }

  Library& library_;
  const ImportPlaces& places_;
  ImportSummary& summary_;
  std::vector<std::string> gone_;
  std::vector<std::string> back_;
  std::vector<PhotoFacts> gone_without_facts_;
  std::map<uint32_t, uint64_t> not_there_;  // photos by place
};

}  // namespace

void NoteGonePhotos(Library& library, const KnownPhotos& known, const ImportPlaces& places,
                    ImportSummary& summary) {
  GonePhotos gone(library, places, summary);
  std::vector<std::string> guids;
  for (KnownPhotos::Index i = 0; i < known.Count(); ++i) {
    const KnownPhotos::Photo& photo = known[i];
    const bool is_missed = photo.is_imported && !photo.is_seen && !photo.is_settled;
    if (is_missed && !IsTrashFolder(photo.folder)) guids.push_back(known.GuidOf(i));
    if (guids.size() < kPhotosAtOnce && i + 1 < known.Count()) continue;
    gone.Judge(guids);
    guids.clear();
  }
  gone.Write();
}

}  // namespace vdsto
