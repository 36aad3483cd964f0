#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>

#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/commands/photo_text.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/import_lock.h"
#include "tools/vdsto/library/store_compaction.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

using Json = nlohmann::ordered_json;
using vdstomgr::StorageReport;

std::string ExistingStore(const LibraryOptions& options) {
  const std::string path = ImageStorePath(options.folder);
  if (IsImageStoreThere(options.folder)) return path;
  throw ToolError(ExitCode::kCannotOpen, "no image store in " + Printable(options.folder) +
                                             " yet: run vdsto import first");
}

/// Answers in either form: a JSON object, or its lines for people.
void Answer(const Json& json, OutputForm form, const std::function<void()>& print,
            std::ostream& out) {
  form == OutputForm::kJson ? void(out << JsonText(json)) : print();
}

void Line(std::string_view label, const std::string& value, std::ostream& out) {
  out << Padded(label, 12) << value << '\n';
}

Json FindingsAsJson(const StorageReport& report) {
  auto findings = Json::array();
  for (const auto& finding : report.findings) {
    findings.push_back({{"fault", vdstomgr::NameOf(finding.fault)},
                        {"offset", finding.offset},
                        {"text", finding.text}});
  }
  return findings;
}

void PrintFindings(const StorageReport& report, std::ostream& out) {
  for (const auto& finding : report.findings)
    out << vdstomgr::NameOf(finding.fault) << ": " << Printable(finding.text) << '\n';
  if (const auto more = report.finding_count - report.findings.size(); more > 0)
    out << "and " << more << " more\n";
}

Json CountsAsJson(const StorageReport& report) {
  return {{"images", report.live_records},     {"image_bytes", report.live_bytes},
          {"removed", report.removed_records}, {"damaged", report.damaged_records},
          {"data_bytes", report.data_bytes},   {"index_entries", report.clusters},
          {"findings", report.finding_count},  {"is_sound", report.is_sound}};
}

void PrintCounts(const StorageReport& report, std::ostream& out) {
  Line("images", std::to_string(report.live_records) + ", " + HumanSize(report.live_bytes), out);
  Line("removed",
       std::to_string(report.removed_records) + ", of " + HumanSize(report.data_bytes) + " written",
       out);
  Line("damaged", std::to_string(report.damaged_records), out);
}

/// Waits until no import works on the library.
ImportLock LockOut(const LibraryOptions& options) {
  return ImportLock(options.folder, [told = false]() mutable {
    if (!told) std::cerr << "waiting for an import into this library" << std::endl;
    told = true;
  });
}

}  // namespace

ExitCode RunStoreStat(const LibraryOptions& options, OutputForm form, std::ostream& out) {
  const std::string path = ExistingStore(options);
  const StorageReport report = vdstomgr::VerifyStorage(path.c_str());
  const uint64_t disk = ImageStoreBytes(options.folder);
  Json json{{"store", path}, {"disk_bytes", disk}};
  json.update(CountsAsJson(report));
  Answer(
      json, form,
      [&] {
        Line("store", Printable(path) + ", " + HumanSize(disk), out);
        PrintCounts(report, out);
      },
      out);
  return ExitCode::kOk;
}

ExitCode RunStoreVerify(const LibraryOptions& options, OutputForm form, std::ostream& out) {
  const StorageReport report = vdstomgr::VerifyStorage(ExistingStore(options).c_str());
  Json json = CountsAsJson(report);
  json["faults"] = FindingsAsJson(report);
  Answer(
      json, form,
      [&] {
        PrintFindings(report, out);
        PrintCounts(report, out);
        Line("verdict", report.is_sound ? "sound" : "has faults: run vdsto store repair", out);
      },
      out);
  return report.is_sound ? ExitCode::kOk : ExitCode::kDamaged;
}

ExitCode RunStoreRepair(const LibraryOptions& options, OutputForm form, std::ostream& out) {
  const std::string path = ExistingStore(options);
  const ImportLock lock = LockOut(options);
  const auto report = vdstomgr::RepairStorage(path.c_str());
  const bool lost_some = report.found.finding_count > 0;
  const Json json{{"repaired", report.repaired},
                  {"images", report.good_records},
                  {"kept_index", report.kept_index.empty() ? Json() : Json(report.kept_index)},
                  {"findings", report.found.finding_count},
                  {"faults", FindingsAsJson(report.found)}};
  Answer(
      json, form,
      [&] {
        PrintFindings(report.found, out);
        if (!report.repaired) return;
        out << "A new index names " << Counted(report.good_records, "image") << ".\n";
        if (!report.kept_index.empty())
          out << "The old index is kept as " << Printable(report.kept_index) << ".\n";
        if (lost_some) out << "The next import makes again what was left out.\n";
      },
      out);
  if (report.repaired) return ExitCode::kOk;
  std::cerr << "vdsto: the image store could not be repaired" << std::endl;
  return ExitCode::kDamaged;
}

ExitCode RunStoreCompact(const LibraryOptions& options, OutputForm form, std::ostream& out) {
  ExistingStore(options);
  const ImportLock lock = LockOut(options);
  Library library(options);
  const CompactionSummary summary = CompactImageStore(library);
  const Json json{{"images", summary.images},
                  {"dropped", summary.dropped},
                  {"disk_bytes_before", summary.bytes_before},
                  {"disk_bytes", summary.bytes_after}};
  Answer(
      json, form,
      [&] {
        out << Counted(summary.images, "image") << " kept, " << summary.dropped
            << " dropped that no photo names; " << HumanSize(summary.bytes_before) << " before, "
            << HumanSize(summary.bytes_after) << " now\n";
      },
      out);
  return ExitCode::kOk;
}

ExitCode RunStoreSync(const LibraryOptions& options, OutputForm form, std::ostream& out) {
  CRkStorageManager storage;
  OpenStorage(ExistingStore(options), storage);
  if (!vdstomgr::SyncStorage(storage)) {
    throw ToolError(ExitCode::kCatalogue, "the device did not take all of the image store");
  }
  const Json json{{"images", storage.GetSize()}};
  Answer(
      json, form,
      [&] {
        out << "The device holds "
            << Counted(static_cast<unsigned long long>(storage.GetSize()), "image") << ".\n";
      },
      out);
  return ExitCode::kOk;
}

}  // namespace vdsto
