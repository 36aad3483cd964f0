#include <iostream>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/store_compaction.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

using vdstomgr::StorageReport;

constexpr const char* kNotes =
    R"(The store is images.pdb and images.pdx in the library's folder. One process at a time uses it:
repair and compact wait for a running import to end, sync fails then. stat, verify and vdsto thumb
read beside it at any time. What the store loses, the next import makes again.)";

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

void AddFaults(const StorageReport& report, Facts& facts) {
  Json faults = Json::array();
  for (const auto& finding : report.findings) {
    const char* fault = vdstomgr::NameOf(finding.fault);
    faults.push_back({{"fault", fault}, {"offset", finding.offset}, {"text", finding.text}});
    facts.ForPeople(std::string(fault) + ": " + Printable(finding.text));
  }
  if (const auto more = report.finding_count - report.findings.size(); more > 0)
    facts.ForPeople("and " + std::to_string(more) + " more");
  facts.ForPrograms("faults", std::move(faults));
}

struct StoreStat {
  ExitCode Run(Invocation& invocation) const {
    const std::string path = ExistingStore(invocation);
    const StorageReport report = vdstomgr::VerifyStorage(path.c_str());
    const uint64_t disk = ImageStoreBytes(invocation.LibraryFolder());
    Facts facts;
    facts.Add("store", {path, Printable(path) + ", " + HumanSize(disk)})
        .ForPrograms("disk_bytes", disk);
    AddCounts(report, facts);
    return invocation.Write(facts);
  }
};

struct StoreVerify {
  ExitCode Run(Invocation& invocation) const {
    const StorageReport report = vdstomgr::VerifyStorage(ExistingStore(invocation).c_str());
    Facts facts;
    AddFaults(report, facts);
    AddCounts(report, facts);
    facts.ForPeople("verdict", report.is_sound ? "sound" : "has faults: run vdsto store repair");
    invocation.Write(facts);
    return report.is_sound ? ExitCode::kOk : ExitCode::kDamaged;
  }
};

struct StoreRepair {
  ExitCode Run(Invocation& invocation) const {
    const std::string path = ExistingStore(invocation);
    const ImportLock lock = invocation.LockOutImports();
    const auto report = vdstomgr::RepairStorage(path.c_str());
    Facts facts;
    AddFaults(report.found, facts);
    facts.ForPrograms("repaired", report.repaired)
        .ForPrograms("images", report.good_records)
        .ForPrograms("kept_index", report.kept_index.empty() ? Json() : Json(report.kept_index))
        .ForPrograms("findings", report.found.finding_count);
    if (report.repaired) Tell(report, facts);
    invocation.Write(facts);
    if (report.repaired) return ExitCode::kOk;
    std::cerr << "vdsto: the image store could not be repaired" << std::endl;
    return ExitCode::kDamaged;
  }

  static void Tell(const vdstomgr::RepairReport& report, Facts& facts) {
    facts.ForPeople("A new index names " + Counted(report.good_records, "image") + ".");
    if (!report.kept_index.empty())
      facts.ForPeople("The old index is kept as " + Printable(report.kept_index) + ".");
    if (report.found.finding_count > 0)
      facts.ForPeople("The next import makes again what was left out.");
  }
};

struct StoreCompact {
  ExitCode Run(Invocation& invocation) const {
    ExistingStore(invocation);
    const ImportLock lock = invocation.LockOutImports();
    Library library = invocation.OpenLibrary();
    const CompactionSummary summary = CompactImageStore(library);
    invocation.Write(Facts()
                         .ForPrograms("images", summary.images)
                         .ForPrograms("dropped", summary.dropped)
                         .ForPrograms("disk_bytes_before", summary.bytes_before)
                         .ForPrograms("disk_bytes", summary.bytes_after)
                         .ForPeople(Counted(summary.images, "image") + " kept, " +
                                    std::to_string(summary.dropped) +
                                    " dropped that no photo names; " +
                                    HumanSize(summary.bytes_before) + " before, " +
                                    HumanSize(summary.bytes_after) + " now"));
    return ExitCode::kOk;
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
  store.Add<StoreRepair>("repair", "Make a new index from the images; the old one is kept");
  store.Add<StoreCompact>("compact", "Drop images that no photo names, and give their space back");
  store.Add<StoreSync>("sync", "Bring everything to the device, to survive a power cut");
}

}  // namespace vdsto
