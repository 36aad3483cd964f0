#include "tools/vdsto/cli/import_round.h"

#include <cstdio>
#include <iostream>

#include "tools/vdsto/library/image_key.h"
#include "tools/vdsto/library/password_change.h"
#include "tools/vdsto/library/store_repair.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

void AddRemarks(const std::string& key, const std::vector<Remark>& remarks,
                const std::string& title, Facts& facts) {
  Json list = Json::array();
  if (!remarks.empty()) facts.ForPeople(title + " (" + std::to_string(remarks.size()) + "):");
  for (const Remark& remark : remarks) {
    facts.ForPeople("  " + Printable(remark.path) + ": " + Printable(remark.reason));
    list.push_back({{"path", remark.path}, {"reason", remark.reason}});
  }
  facts.ForPrograms(key, std::move(list));
}

std::string Sentence(const ImportSummary& summary) {
  char seconds[32];
  std::snprintf(seconds, sizeof seconds, "%.1f s", summary.seconds);
  return (summary.interrupted ? "Interrupted: " : "") + Counted(summary.Pictures(), "picture") +
         " in " + seconds + ": " + std::to_string(summary.added) + " added, " +
         std::to_string(summary.updated) + " updated, " +
         (summary.moved > 0 ? std::to_string(summary.moved) + " moved, " : "") +
         std::to_string(summary.unchanged) + " unchanged" +
         (summary.in_trash > 0 ? ", " + std::to_string(summary.in_trash) + " in the trash" : "") +
         "; " + Counted(summary.folders_created, "new folder") + "; " +
         Counted(summary.not_pictures, "other file") +
         (summary.special > 0 ? ", " + std::to_string(summary.special) + " devices or pipes" : "") +
         " and " + std::to_string(summary.hidden) + " hidden skipped";
}

std::string GoneSentence(const ImportSummary& summary) {
  if (summary.gone == 0) return {};
  return "\n" + Counted(summary.gone, "photo") + (summary.gone == 1 ? " is" : " are") +
         " no longer on disk (vdsto missing lists them)";
}

void Tell(const std::vector<std::string>& news) {
  for (const std::string& each : news) std::cerr << "vdsto: " << each << std::endl;
}

}  // namespace

ImportSummary ImportInto(const LibraryOptions& options, const ImportLock& lock,
                         const ImportRoots& roots, bool quiet) {
  Library library(options, lock);
  FinishPasswordChange(options.folder, options.password, lock);
  Tell(PrepareImageStore(options.folder, lock));
  Tell(PrepareSeal(library, lock));
  library.PrepareSearch();
  return ImportFolders(library, roots, quiet);
}

Facts Describe(const ImportSummary& summary) {
  Facts facts;
  facts.ForPrograms("added", summary.added)
      .ForPrograms("updated", summary.updated)
      .ForPrograms("moved", summary.moved)
      .ForPrograms("unchanged", summary.unchanged)
      .ForPrograms("gone", summary.gone)
      .ForPrograms("newly_gone", summary.newly_gone)
      .ForPrograms("in_trash", summary.in_trash)
      .ForPrograms("folders_created", summary.folders_created)
      .ForPrograms("not_pictures", summary.not_pictures)
      .ForPrograms("special", summary.special)
      .ForPrograms("sidecars", summary.sidecars)
      .ForPrograms("hidden", summary.hidden);
  AddRemarks("broken", summary.broken, "Broken pictures, kept with what is known", facts);
  AddRemarks("damaged", summary.damaged, "Damaged pictures, shown in part", facts);
  AddRemarks("unreadable", summary.unreadable, "Could not be read", facts);
  AddRemarks("not_stored", summary.not_stored, "Could not be stored", facts);
  AddRemarks("not_there", summary.not_there,
             "Disks that are not there, whose photos are left alone", facts);
  AddRemarks("long_paths", summary.long_paths,
             "Stored without their location, whose path is too long", facts);
  return facts.ForPrograms("seconds", summary.seconds)
      .ForPrograms("interrupted", summary.interrupted)
      .ForPeople(Sentence(summary) + GoneSentence(summary));
}

}  // namespace vdsto
