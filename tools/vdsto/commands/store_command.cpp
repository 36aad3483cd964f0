#include <filesystem>
#include <map>
#include <memory>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/image_key.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/store_census.h"
#include "tools/vdsto/library/store_compaction.h"
#include "tools/vdsto/library/store_rewriting.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

using vdstomgr::StorageReport;

constexpr const char* kNotes =
    R"(The store is images.pdb and images.pdx in the library's folder. One process at a time uses it:
repair and compact wait for a running import to end, sync fails then. stat, verify and vdsto thumb
read beside it at any time. What the store loses, the next import makes again. A compaction needs the
space of the images that stay a second time, says so when it is not there, and deletes the old files at
its end. repair keeps the old index as images.pdx.old and a store of which nothing can be made as
images.pdb.damaged; both may be deleted when all is well.)";

std::string ExistingStore(const Invocation& invocation) {
  const std::string folder = invocation.LibraryFolder();
  if (IsImageStoreThere(folder)) return ImageStorePath(folder);
  throw ToolError(ExitCode::kCannotOpen,
                  "no image store in " + Printable(folder) + " yet: run vdsto import first");
}

void AddCounts(const StorageReport& report, Facts& facts) {
  facts
      .Add("images", {report.live_records,
                      std::to_string(report.live_records) + ", " + HumanSize(report.live_bytes)})
      .ForPrograms("image_bytes", report.live_bytes)
      .Add("removed", {report.removed_records, std::to_string(report.removed_records) + ", of " +
                                                   HumanSize(report.data_bytes) + " written"})
      .Add("damaged", report.damaged_records)
      .ForPrograms("data_bytes", report.data_bytes)
      .ForPrograms("index_entries", report.clusters)
      .ForPrograms("findings", report.finding_count)
      .ForPrograms("is_sound", report.is_sound);
}

/// People see how many there are of each kind and the first of them.
void AddFaults(const StorageReport& report, Facts& facts) {
  constexpr size_t kShown = 20;
  Json faults = Json::array();
  std::map<std::string, uint64_t> counts;
  std::vector<std::string> lines;
  for (const auto& finding : report.findings) {
    const std::string fault = vdstomgr::NameOf(finding.fault);
    faults.push_back({{"fault", fault}, {"offset", finding.offset}, {"text", finding.text}});
    ++counts[fault];
    if (lines.size() < kShown) lines.push_back(fault + ": " + Printable(finding.text));
  }
  if (report.finding_count > kShown) {
    for (const auto& [fault, count] : counts)
      facts.ForPeople(Padded(std::to_string(count), 8, true) + "  " + fault);
  }
  for (const std::string& line : lines) facts.ForPeople(line);
  if (const auto more = report.finding_count - lines.size(); more > 0)
    facts.ForPeople("and " + std::to_string(more) + " more");
  facts.ForPrograms("faults", std::move(faults)).ForPrograms("fault_counts", counts);
}

/// The store and, when the catalogue can be opened, how far the two agree.
struct Look {
  StoreCensus census;
  std::string why_alone;  ///< why the catalogue was left out

  explicit Look(const Invocation& invocation) {
    const std::string path = ExistingStore(invocation);
    try {
      Library library = invocation.OpenLibraryToRead();
      census = CompareStore(library);
    } catch (const ToolError& error) {
      why_alone = error.what();
      census.report = vdstomgr::VerifyStorage(path.c_str());
    }
  }
  Fact Compared(uint64_t count, const char* advice) const {
    if (!why_alone.empty()) return {Json(), "not known: " + Printable(why_alone)};
    return {count, std::to_string(count) + (count > 0 ? advice : "")};
  }
  void AddTo(Facts& facts) const {
    AddCounts(census.report, facts);
    facts.Add("orphans", Compared(census.orphans, ", of no photo: vdsto store compact drops them"))
        .Add("missing", Compared(census.without_image.size(),
                                 ", of photos: the next vdsto import makes them"));
  }
};

void AddState(const std::string& path, Facts& facts) {
  std::error_code error;
  const bool is_cut_off = IsCompactionCutOff(path);
  const auto left_over = std::filesystem::file_size(path + ".bak", error);
  facts.ForPrograms("compaction_cut_off", is_cut_off);
  if (is_cut_off) {
    facts.ForPeople("A compaction was ended half-way: the next import, compact or repair ends it.");
  } else if (!error) {
    facts.ForPeople("A compaction left " + Printable(path) + ".bak, " + HumanSize(left_over) +
                    ": vdsto store compact deletes it.");
  }
}

struct StoreStat {
  ExitCode Run(Invocation& invocation) const {
    const std::string path = ExistingStore(invocation);
    const Look look(invocation);
    const uint64_t disk = ImageStoreBytes(invocation.LibraryFolder());
    Facts facts;
    facts.Add("store", {path, Printable(path) + ", " + HumanSize(disk)})
        .ForPrograms("disk_bytes", disk);
    look.AddTo(facts);
    AddState(path, facts);
    return invocation.Write(facts);
  }
};

struct StoreVerify {
  ExitCode Run(Invocation& invocation) const {
    const Look look(invocation);
    const StorageReport& report = look.census.report;
    Facts facts;
    AddFaults(report, facts);
    look.AddTo(facts);
    facts.ForPeople("verdict", report.is_sound ? "sound" : "has faults: run vdsto store repair");
    invocation.Write(facts);
    return report.is_sound ? ExitCode::kOk : ExitCode::kDamaged;
  }
};

/// The catalogue, as far as it can be opened, says what images belong to and what encrypts them.
struct Owner {
  std::unique_ptr<Library> library;
  std::shared_ptr<const ImageSeal> seal;
  std::string why_unknown;

  explicit Owner(const Invocation& invocation) {
    try {
      const LibraryOptions options = invocation.AskForLibrary();
      library = std::make_unique<Library>(options);
      seal = SealOf(*library);
    } catch (const ToolError& error) {
      library.reset();
      why_unknown = error.what();
    }
  }
};

void AddLost(Library* library, const std::string& why_unknown, const std::vector<std::string>& keys,
             Facts& facts) {
  Json lost = Json::array();
  if (library == nullptr && !keys.empty())
    facts.ForPeople("Which photos they belong to is not known: " + Printable(why_unknown));
  for (const std::string& key : keys) {
    const auto photo = library ? PhotoOfImage(*library, key) : std::nullopt;
    const std::string name = photo ? CataloguePath(*library).NameOf(*photo) : std::string();
    lost.push_back({{"key", key}, {"photo", name.empty() ? Json() : Json(name)}});
    if (library) facts.ForPeople("lost", Printable(name.empty() ? key + " (no photo)" : name));
  }
  facts.ForPrograms("lost", std::move(lost));
}

void AddRepair(const StoreRepair& repair, Facts& facts) {
  const auto text_or_null = [](const std::string& text) {
    return text.empty() ? Json() : Json(text);
  };
  if (!repair.report.was_sound) AddFaults(repair.report.found, facts);
  facts.ForPrograms("kept_index", text_or_null(repair.report.kept_index))
      .ForPrograms("set_aside", text_or_null(repair.set_aside))
      .ForPrograms("findings", repair.report.found.finding_count);
  if (!repair.IsMended()) return;
  for (const std::string& sentence : SentencesOf(repair)) facts.ForPeople(sentence);
}

/// Images that were exchanged behind the program's back are as lost as damaged ones.
void AddForged(const Owner& owner, const ImportLock& lock, std::vector<std::string>& lost,
               Facts& facts) {
  const auto forged = DropForgedImages(owner.library->Folder(), owner.seal.get(), lock);
  facts.ForPrograms("forged", forged.size());
  lost.insert(lost.end(), forged.begin(), forged.end());
  if (forged.empty()) return;
  facts.ForPeople("Dropped " + Counted(forged.size(), "thumbnail") +
                  " that were not what was stored: the next import makes them again.");
}

struct StoreRepairing {
  ExitCode Run(Invocation& invocation) const {
    const std::string path = ExistingStore(invocation);
    const ImportLock lock = invocation.LockOutImports();
    const bool was_cut_off = IsCompactionCutOff(path);
    const StoreRepair repair = RepairImageStore(invocation.LibraryFolder(), lock);
    Facts facts;
    facts.ForPrograms("repaired", repair.IsMended())
        .ForPrograms("was_sound", repair.report.was_sound)
        .ForPrograms("images", repair.report.good_records);
    if (was_cut_off) facts.ForPeople("The compaction that had been ended is in order again.");
    const Owner owner(invocation);
    std::vector<std::string> lost = repair.report.lost_keys;
    if (owner.library && repair.IsMended()) AddForged(owner, lock, lost, facts);
    AddLost(owner.library.get(), owner.why_unknown, lost, facts);
    AddRepair(repair, facts);
    invocation.Write(facts);
    if (repair.IsMended()) return ExitCode::kOk;
    throw ToolError(IsInUse(path) ? ExitCode::kCannotOpen : ExitCode::kDamaged,
                    IsInUse(path) ? Printable(path) + " is in use by another process"
                                  : "the image store could not be repaired; when you move " +
                                        Printable(path) + " away, the next import makes a new one");
  }
};

struct StoreCompact {
  ExitCode Run(Invocation& invocation) const {
    ExistingStore(invocation);
    const ImportLock lock = invocation.LockOutImports();
    Library library = invocation.OpenLibrary();
    const CompactionSummary summary = CompactImageStore(library, lock);
    Facts facts;
    if (!summary.repair.report.was_sound) {
      AddLost(&library, {}, summary.repair.report.lost_keys, facts);
      AddRepair(summary.repair, facts);
    }
    facts.ForPrograms("images", summary.images)
        .ForPrograms("dropped", summary.dropped)
        .ForPrograms("dropped_damaged", summary.repair.report.lost_count)
        .ForPrograms("disk_bytes_before", summary.bytes_before)
        .ForPrograms("disk_bytes", summary.bytes_after)
        .ForPeople(Counted(summary.images, "image") + " kept, " + std::to_string(summary.dropped) +
                   " dropped that no photo names; " + HumanSize(summary.bytes_before) +
                   " before, " + HumanSize(summary.bytes_after) + " now");
    return invocation.Write(facts);
  }
};

struct StoreSync {
  ExitCode Run(Invocation& invocation) const {
    CRkStorageManager storage;
    OpenStorage(ExistingStore(invocation), storage);
    if (!vdstomgr::SyncStorage(storage)) {
      throw ToolError(ExitCode::kCatalogue, "the device did not take all of the image store");
    }
    const auto images = static_cast<uint64_t>(storage.GetSize());
    return invocation.Write(Facts()
                                .ForPrograms("images", images)
                                .ForPeople("The device holds " + Counted(images, "image") + "."));
  }
};

}  // namespace

void AddStore(CommandGroup& tool) {
  CommandGroup store =
      tool.AddGroup("store", "Look after the image store, which holds thumbnails", kNotes);
  store.Add<StoreStat>("stat", "Read all of it and show totals");
  store.Add<StoreVerify>("verify", "Check every image and name what is wrong");
  store.Add<StoreRepairing>("repair", "Make the store sound, and name the images that are lost");
  store.Add<StoreCompact>("compact",
                          "Drop damaged images and those of no photo, and give their space back");
  store.Add<StoreSync>("sync", "Bring everything to the device, to survive a power cut");
}

}  // namespace vdsto
