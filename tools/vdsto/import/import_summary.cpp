#include "tools/vdsto/import/import_summary.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

void PrintRemarks(const std::vector<Remark>& remarks, std::string_view title, std::ostream& out) {
  if (remarks.empty()) return;
  out << title << " (" << remarks.size() << "):\n";
  for (const Remark& remark : remarks)
    out << "  " << Printable(remark.path) << ": " << Printable(remark.reason) << '\n';
}

nlohmann::ordered_json AsJson(const std::vector<Remark>& remarks) {
  auto list = nlohmann::ordered_json::array();
  for (const Remark& remark : remarks)
    list.push_back({{"path", remark.path}, {"reason", remark.reason}});
  return list;
}

}  // namespace

void PrintSummary(const ImportSummary& summary, std::ostream& out) {
  PrintRemarks(summary.broken, "Broken pictures, kept with what is known", out);
  PrintRemarks(summary.damaged, "Damaged pictures, shown in part", out);
  PrintRemarks(summary.unreadable, "Could not be read", out);
  PrintRemarks(summary.not_stored, "Could not be stored", out);
  PrintRemarks(summary.long_paths, "Stored without their location, whose path is too long", out);
  char seconds[32];
  std::snprintf(seconds, sizeof seconds, "%.1f s", summary.seconds);
  out << (summary.interrupted ? "Interrupted: " : "") << Counted(summary.Pictures(), "picture")
      << " in " << seconds << ": " << summary.added << " added, " << summary.updated << " updated, "
      << summary.unchanged << " unchanged; "
      << Counted(static_cast<uint64_t>(summary.folders_created), "new folder") << "; "
      << Counted(summary.not_pictures, "other file") << " and " << summary.hidden
      << " hidden skipped\n";
}

nlohmann::ordered_json SummaryAsJson(const ImportSummary& summary) {
  return {{"added", summary.added},
          {"updated", summary.updated},
          {"unchanged", summary.unchanged},
          {"folders_created", summary.folders_created},
          {"not_pictures", summary.not_pictures},
          {"hidden", summary.hidden},
          {"broken", AsJson(summary.broken)},
          {"damaged", AsJson(summary.damaged)},
          {"unreadable", AsJson(summary.unreadable)},
          {"not_stored", AsJson(summary.not_stored)},
          {"long_paths", AsJson(summary.long_paths)},
          {"seconds", summary.seconds},
          {"interrupted", summary.interrupted}};
}

}  // namespace vdsto
