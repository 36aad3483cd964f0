#include <charconv>
#include <cstdio>
#include <iostream>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/lock_file.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/upload/uploader.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(A TARGET is a folder of this computer, sftp://[USER@]HOST[:PORT]/PATH (with ~/ at the beginning of
the PATH for one in the home folder there), or http://... or https://... for a WebDAV server. It must be
there; folders below it are made. A file gets its folder in the catalogue and its name there, and nothing
that lies there is ever replaced: a file of other contents keeps its name, and the new one gets a number.

Passwords are taken from $VDSTO_UPLOAD_PASSWORD or a netrc file, ssh keys from the agent, ~/.ssh or --key.
The keys of hosts must be in ~/.ssh/known_hosts, and certificates trusted by the system or $VDSTO_UPLOAD_CA.

Whatever ends a run, the next one goes on where it ended. docs/uploading.md tells more, and what the error
codes of files mean.)";

/// "2M": a number of bytes, in thousands, millions or thousands of millions with a letter.
uint64_t RateFrom(const std::string& text) {
  if (text.empty()) return 0;
  uint64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  const std::string unit = AsciiLower(std::string_view(stop, static_cast<size_t>(end - stop)));
  const uint64_t factor = unit.empty()  ? 1
                          : unit == "k" ? 1'000
                          : unit == "m" ? 1'000'000
                          : unit == "g" ? 1'000'000'000
                                        : 0;
  constexpr uint64_t kMost = 1'000'000'000'000;
  if (error == std::errc() && number > 0 && factor > 0 && number <= kMost / factor)
    return number * factor;
  throw ToolError(
      ExitCode::kUsage,
      "--limit-rate is a number of bytes a second such as 500k or 2M, not '" + text + "'");
}

std::string Sentence(const UploadSummary& summary) {
  char seconds[32];
  std::snprintf(seconds, sizeof seconds, "%.1f s", summary.seconds);
  return (summary.interrupted ? "Interrupted: " : "") +
         Counted(summary.uploaded + summary.already_there, "file") + " in " + seconds + ": " +
         std::to_string(summary.uploaded) + " uploaded, " + std::to_string(summary.already_there) +
         " already there; " + HumanSize(summary.bytes) + " sent; " +
         std::to_string(summary.failures.size()) + " failed, " + std::to_string(summary.left) +
         " left";
}

void AddFailures(const UploadSummary& summary, Facts& facts) {
  Json list = Json::array();
  if (!summary.failures.empty())
    facts.ForPeople("Not uploaded (" + std::to_string(summary.failures.size()) + "):");
  for (const auto& [path, fault, reason] : summary.failures) {
    const int code = static_cast<int>(fault);
    facts.ForPeople("  " + Printable(path) + ": " + Printable(reason) + " (" +
                    std::to_string(code) + ")");
    list.push_back({{"path", path}, {"code", code}, {"reason", reason}});
  }
  facts.ForPrograms("failed", std::move(list));
}

void AddOtherNames(const UploadSummary& summary, Facts& facts) {
  Json list = Json::array();
  if (!summary.renamed.empty())
    facts.ForPeople("Under another name, because theirs was taken (" +
                    std::to_string(summary.renamed.size()) + "):");
  for (const auto& [path, name] : summary.renamed) {
    facts.ForPeople("  " + Printable(path) + ": " + Printable(name));
    list.push_back({{"path", path}, {"name", name}});
  }
  facts.ForPrograms("renamed", std::move(list));
}

Facts Describe(const UploadSummary& summary) {
  Facts facts;
  facts.ForPrograms("uploaded", summary.uploaded)
      .ForPrograms("already_there", summary.already_there)
      .ForPrograms("bytes_sent", summary.bytes)
      .ForPrograms("left", summary.left);
  AddFailures(summary, facts);
  AddOtherNames(summary, facts);
  return facts.ForPrograms("seconds", summary.seconds)
      .ForPrograms("interrupted", summary.interrupted)
      .ForPeople(Sentence(summary));
}

/// What is wrong with the target as a whole is no fault of a file.
template <class Function>
auto AtTarget(Function function) {
  try {
    return function();
  } catch (const UploadError& error) {
    throw ToolError(ExitCode::kTarget, error.what());
  }
}

struct UploadRun {
  std::string target_name;
  std::string key_file;
  std::string netrc_file;
  std::string limit;
  int threads = UploadOptions().threads;
  int retries = UploadOptions().retries;
  bool dry_run = false;

  void Declare(Command& command) {
    command.RequiredOption("--to", "TARGET", target_name, "Where to, as said below")
        .NumberOption("--threads", "N", threads, 1, 64, "How many files at a time (4)")
        .NumberOption("--retries", "N", retries, 0, 100,
                      "Further attempts after a passing fault (6)")
        .Option("--limit-rate", "RATE", limit, "At most so many bytes a second: 500k, 2M")
        .Option("--key", "FILE", key_file, "An ssh key (else the agent's and those in ~/.ssh)")
        .Option("--netrc", "FILE", netrc_file, "Names and passwords of hosts (else ~/.netrc)")
        .Flag("--dry-run", dry_run, "Only tell how much there is to upload")
        .Notes(kNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    const UploadOptions options{threads, retries, RateFrom(limit), invocation.WantsJson()};
    const auto target = AtTarget(
        [&] { return OpenUploadTarget(target_name, ReadUploadCredentials(key_file, netrc_file)); });
    Library library = invocation.OpenLibrary();
    LockFile lock(library.Folder(), "upload.lock");
    if (!lock.Try())
      throw ToolError(ExitCode::kRefused, "another vdsto upload run works on this library");
    UploadQueue queue(library);
    const UploadQueue::Sum ready = queue.Ready();
    if (dry_run) return TellReady(invocation, ready);
    // Before any file is claimed.
    if (ready.files > 0) AtTarget([&] { return target->OpenFolder(""); });
    const UploadSummary summary = RunUploads(queue, *target, options);
    invocation.Write(Describe(summary));
    return Judge(summary);
  }

 private:
  static ExitCode TellReady(Invocation& invocation, const UploadQueue::Sum& ready) {
    Facts facts;
    facts.ForPrograms("ready", ready.files)
        .ForPrograms("bytes", ready.bytes)
        .ForPeople(Counted(ready.files, "file") + " of " + HumanSize(ready.bytes) +
                   " would be uploaded");
    return invocation.Write(facts);
  }

  static ExitCode Judge(const UploadSummary& summary) {
    if (summary.interrupted) return ExitCode::kInterrupted;
    if (!summary.stopped_by.empty()) throw ToolError(ExitCode::kTarget, summary.stopped_by);
    if (summary.failures.empty()) return ExitCode::kOk;
    throw ToolError(ExitCode::kIncomplete,
                    Counted(summary.failures.size(), "file") + " could not be uploaded");
  }
};

}  // namespace

void AddUploadRun(CommandGroup& upload) {
  upload.Add<UploadRun>("run", "Upload what is in the queue");
}

}  // namespace vdsto
