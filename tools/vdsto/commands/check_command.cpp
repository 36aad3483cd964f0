#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/import/progress_bar.h"
#include "tools/vdsto/library/database_password.h"
#include "tools/vdsto/library/folder_rows.h"
#include "tools/vdsto/library/image_key.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/store_census.h"
#include "tools/vdsto/library/store_rewriting.h"
#include "tools/vdsto/picture/source_file.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(Reads everything and changes nothing, also while an import runs. The exit code is 7 when something is
wrong. --originals reads all picture files, which takes as long as reading them does. --json names
everything that is wrong; people see the first of it.)";

enum class State { kGood, kNote, kWrong, kUnknown };

/// What was looked at, and what came of it.
struct Verdict {
  std::string what;
  State state = State::kGood;
  uint64_t count = 0;  ///< of faults
  std::string text;
  std::string advice;  ///< what helps; empty when nothing must
  std::vector<std::string> details;
};

const char* NameOf(State state) {
  switch (state) {
    case State::kGood:
      return "good";
    case State::kNote:
      return "note";
    case State::kWrong:
      return "wrong";
    case State::kUnknown:
      break;
  }
  return "unknown";
}

/// A verdict about a list of faults, `text` saying what they are.
Verdict Judged(const std::string& what, const std::string& good, std::vector<std::string> faults,
               const std::string& noun, const std::string& advice, State bad = State::kWrong) {
  if (faults.empty()) return {what, State::kGood, 0, good, {}, {}};
  const uint64_t count = faults.size();
  return {what, bad, count, std::to_string(count) + " " + noun, advice, std::move(faults)};
}

/// What the engine finds in a database; damage that keeps it from being opened is a finding too.
std::vector<std::string> FaultsOf(const std::string& path, const std::string& password) {
  constexpr int kDamaged = 3049;
  constexpr int kNoDatabase = 3343;
  CRkDaoDatabase database;
  try {
    OpenUnderPassword(database, path, password);
    return vdstomgr::CheckDatabase(database);
  } catch (const CDaoException& error) {
    if (error.Code() != kDamaged && error.Code() != kNoDatabase) throw;
    return {error.what()};
  }
}

bool IsThere(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}

/// One of the databases that can be made again.
Verdict CheckHelper(const LibraryOptions& options, const char* name, const std::string& what,
                    const std::string& advice) {
  const std::string path = Joined(options.folder, name);
  if (!IsThere(path)) return {what, State::kGood, 0, "none yet", {}, {}};
  try {
    return Judged(what, "sound", FaultsOf(path, options.password), "faults", advice);
  } catch (const CDaoException& error) {
    return {what, State::kUnknown, 0, error.what(), advice, {}};
  }
}

Verdict CheckStore(const StoreCensus& census, const std::string& path) {
  const auto& report = census.report;
  if (IsCompactionCutOff(path)) {
    return {"images", State::kWrong, 1, "a compaction was ended half-way", "vdsto store repair",
            {}};
  }
  std::vector<std::string> faults;
  if (!report.is_sound) {
    for (const auto& finding : report.findings) faults.push_back(finding.text);
  }
  const bool is_in_use = !faults.empty() && IsInUse(path);
  Verdict verdict =
      Judged("images", Counted(report.live_records, "image") + ", sound", std::move(faults),
             "faults", is_in_use ? "check again when the import has ended" : "vdsto store repair",
             is_in_use ? State::kUnknown : State::kWrong);
  verdict.count = report.is_sound ? 0 : report.finding_count;
  return verdict;
}

/// Of a library under a password.
Verdict CheckSeals(const Library& library, const std::vector<std::string>& keys) {
  const char* const what = "encryption";
  std::vector<std::string> forged = ForgedImages(library.Folder(), SealOf(library).get(), keys);
  if (forged.empty() && NeedsSealing(library))
    return {what, State::kNote, 1, "thumbnails are not encrypted yet", "vdsto import", {}};
  return Judged(what, "every thumbnail is what was stored", std::move(forged),
                "thumbnails are not what was stored", "vdsto store repair, then vdsto import");
}

void AddStoreVerdicts(Library& library, std::vector<Verdict>& verdicts) {
  const std::string path = ImageStorePath(library.Folder());
  const StoreCensus census = CompareStore(library);
  verdicts.push_back(CheckStore(census, path));
  CataloguePath names(library);
  std::vector<std::string> without;
  for (const std::string& guid : census.without_image) {
    if (const auto photo = library.Photo(guid)) without.push_back(names.NameOf(*photo));
  }
  verdicts.push_back(Judged("thumbnails", "every photo that can be shown has one",
                            std::move(without), "photos lack theirs", "vdsto import"));
  Verdict orphans{"orphans", State::kGood, census.orphans, "no image without a photo", {}, {}};
  if (census.orphans > 0 && IsInUse(path)) {
    orphans.text = "not known while an import adds images";
    orphans.state = State::kUnknown;
  } else if (census.orphans > 0) {
    orphans.text = std::to_string(census.orphans) + " images of no photo take space";
    orphans.state = State::kNote;
    orphans.advice = "vdsto store compact";
  }
  verdicts.push_back(orphans);
  if (!library.Password().empty()) verdicts.push_back(CheckSeals(library, census.keys));
}

/// Does the way up end at a folder without a parent?
bool LeadsUp(uint32_t folder, const std::map<uint32_t, uint32_t>& parents) {
  for (size_t steps = 0; steps <= parents.size(); ++steps) {
    if (vdstomgr::IsReservedFolder(folder)) return true;
    const auto found = parents.find(folder);
    if (found == parents.end()) return false;
    folder = found->second;
  }
  return false;
}

void AddFolderVerdicts(Library& library, std::vector<Verdict>& verdicts) {
  std::map<uint32_t, uint32_t> parents;
  std::vector<std::string> astray, homeless;
  const auto folders = library.AllFolders();
  for (const FOLDERINFO& folder : folders) parents[folder.dwFolderID] = folder.dwParentID;
  for (const FOLDERINFO& folder : folders) {
    if (!LeadsUp(folder.dwFolderID, parents)) astray.emplace_back(folder.szFolderName);
  }
  library.ForEachPhoto([&](const PHOTOINFO& photo) {
    if (!vdstomgr::IsReservedFolder(photo.dwFolderID) && !parents.contains(photo.dwFolderID))
      homeless.push_back(std::string(photo.szGUID) + " " + photo.GetFileName());
  });
  verdicts.push_back(Judged("folders", Counted(parents.size(), "folder") + ", all below a root",
                            std::move(astray), "without a way up, or in a circle",
                            "vdsto restore, from a backup"));
  verdicts.push_back(Judged("photos", "each in a folder", std::move(homeless),
                            "in folders that are not there",
                            "vdsto mv GUID... FOLDER, with the GUIDs of --json"));
}

/// How many rows a table of a database has.
int64_t RowsOf(const std::string& path, const std::string& password, const char* table) {
  CRkDaoDatabase database;
  OpenUnderPassword(database, path, password);
  CRkDaoRecordset rows(&database);
  rows.Open(dbOpenDynaset, (std::string("SELECT COUNT(*) FROM ") + table).c_str());
  return rows.GetFieldValue(0).ToInteger();
}

/// As the search itself finds out whether to make its copy anew.
Verdict CheckSearch(const LibraryOptions& options, const std::string& catalogue) {
  const std::string path = Joined(options.folder, "search.vdb");
  Verdict verdict = CheckHelper(options, "search.vdb", "search",
                                "none: delete search.vdb, the next find makes it");
  if (verdict.state != State::kGood || !IsThere(path)) return verdict;
  try {
    const bool is_in_step = RowsOf(path, options.password, "SearchPhotoMaster") ==
                            RowsOf(catalogue, options.password, "PhotoMaster");
    if (is_in_step) return verdict;
  } catch (const CDaoException&) {
    // another version of it, which is as good as another content
  }
  return {"search", State::kNote, 1, "not of the catalogue's photos", "vdsto reindex", {}};
}

/// Compares the files with the digests that the import took.
class Originals {
 public:
  explicit Originals(Library& library) : library_(library), names_(library) {}

  Verdict Check();

 private:
  void CheckOne(const PHOTOINFO& photo);
  std::string PathOfOriginal(const PHOTOINFO& photo);

  Library& library_;
  CataloguePath names_;
  ProgressBar bar_;
  std::vector<std::string> different_, changed_, unreadable_;
  uint64_t checked_ = 0;
};

std::string Originals::PathOfOriginal(const PHOTOINFO& photo) {
  if (*photo.GetOPURL() != '\0') return PathOf(photo.GetOPURL());
  const auto facts = library_.FactsOfPhotos().Of(photo.szGUID);
  return facts ? facts->path : std::string();
}

void Originals::CheckOne(const PHOTOINFO& photo) {
  const std::string path = PathOfOriginal(photo);
  const std::string name = path.empty() ? names_.NameOf(photo) : path;
  if (*photo.szMD5 == '\0') return;
  ++checked_;
  try {
    if (path.empty()) throw std::system_error(std::make_error_code(std::errc::filename_too_long));
    SourceFile file(path);
    file.ReadAll();
    if (file.Md5() == photo.szMD5) return;
    (file.Stamp() == StampOf(photo) ? different_ : changed_).push_back(name);
  } catch (const std::system_error& error) {
    unreadable_.push_back(name + ": " + error.code().message());
  }
}

Verdict Originals::Check() {
  std::vector<PHOTOINFO> photos;
  library_.ForEachPhoto([&](const PHOTOINFO& photo) { photos.push_back(photo); });
  for (const PHOTOINFO& photo : photos) {
    if (IsInterrupted()) break;
    bar_.Draw(static_cast<double>(checked_) / static_cast<double>(photos.size()),
              std::to_string(checked_) + " of " + std::to_string(photos.size()),
              photo.GetFileName());
    CheckOne(photo);
  }
  bar_.Clear();
  const uint64_t bad = different_.size() + changed_.size() + unreadable_.size();
  Verdict verdict{"originals", bad == 0 ? State::kGood : State::kWrong, bad, {}, {}, {}};
  verdict.text = Counted(checked_, "file") + " read";
  const auto add = [&](std::vector<std::string>& names, const char* what, const char* advice) {
    if (names.empty()) return;
    verdict.text += ", " + std::to_string(names.size()) + what;
    if (verdict.advice.empty()) verdict.advice = advice;
    for (std::string& name : names) verdict.details.push_back(std::move(name));
  };
  add(different_, " damaged (other bytes, same time and size)", "your own backup of the originals");
  add(unreadable_, " gone or unreadable", "look for them, then vdsto import");
  add(changed_, " changed since the import", "vdsto import");
  if (!IsInterrupted()) return verdict;
  verdict.text = "interrupted: " + verdict.text;
  verdict.state = bad == 0 ? State::kUnknown : State::kWrong;
  return verdict;
}

Answer Describe(const std::vector<Verdict>& verdicts) {
  constexpr size_t kShown = 3;
  Facts facts;
  Json list = Json::array();
  bool is_good = true;
  for (const Verdict& verdict : verdicts) {
    is_good = is_good && verdict.state != State::kWrong;
    list.push_back({{"what", verdict.what},
                    {"verdict", NameOf(verdict.state)},
                    {"count", verdict.count},
                    {"text", verdict.text},
                    {"advice", verdict.advice.empty() ? Json() : Json(verdict.advice)},
                    {"details", verdict.details}});
    facts.ForPeople(verdict.what, Padded(NameOf(verdict.state), 8) + Printable(verdict.text) +
                                      (verdict.advice.empty() ? "" : " -> " + verdict.advice));
    for (size_t i = 0; i < std::min(kShown, verdict.details.size()); ++i)
      facts.ForPeople("", Padded("", 8) + "  " + Printable(verdict.details[i]));
  }
  return facts.ForPrograms("is_good", is_good).ForPrograms("checks", std::move(list));
}

struct Check {
  bool originals = false;

  void Declare(Command& command) {
    command.Flag("--originals", originals, "Compare all picture files with their digests, too")
        .Notes(kNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    const InterruptionGuard guard;
    const LibraryOptions options = invocation.AskForLibrary();
    const std::vector<Verdict> verdicts = CheckAll(options);
    invocation.Write(Describe(verdicts));
    if (IsInterrupted()) return ExitCode::kInterrupted;
    const bool is_good = std::none_of(verdicts.begin(), verdicts.end(), [](const Verdict& verdict) {
      return verdict.state == State::kWrong;
    });
    return is_good ? ExitCode::kOk : ExitCode::kDamaged;
  }

 private:
  /// Without a sound catalogue nothing can be compared with it.
  std::vector<Verdict> CheckAll(const LibraryOptions& options) const {
    const std::string catalogue = Joined(options.folder, "catalogue.vdb");
    std::vector<Verdict> verdicts;
    verdicts.push_back(CheckCatalogue(options, catalogue));
    verdicts.push_back(CheckHelper(options, "facts.vdb", "facts",
                                   "none: move facts.vdb away, the next vdsto import makes it"));
    if (verdicts.front().state != State::kGood) return verdicts;
    verdicts.push_back(CheckSearch(options, catalogue));
    Library library(options);
    AddStoreVerdicts(library, verdicts);
    AddFolderVerdicts(library, verdicts);
    if (originals) verdicts.push_back(Originals(library).Check());
    return verdicts;
  }

  /// What cannot be opened for another reason than damage is told as every command tells it.
  static Verdict CheckCatalogue(const LibraryOptions& options, const std::string& path) {
    try {
      return Judged("catalogue", "sound", FaultsOf(path, options.password), "faults",
                    "vdsto restore, from a backup");
    } catch (const CDaoException& error) {
      const Library library(options);
      throw ToolError(ExitCode::kCannotOpen, error.what());
    }
  }
};

}  // namespace

void AddCheck(CommandGroup& tool) {
  tool.Add<Check>("check", "Say whether everything in the library is in order");
}

}  // namespace vdsto
