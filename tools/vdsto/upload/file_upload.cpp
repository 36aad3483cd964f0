#include "tools/vdsto/upload/file_upload.h"

#include <utility>

#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/upload/upload_error.h"
#include "tools/vdsto/upload/upload_names.h"

namespace vdsto {
namespace {

constexpr int kMostNames = 1000;

}  // namespace

Uploaded FileUpload::Try(UploadTarget& target) {
  OutgoingFile file(job_.path, surroundings_.limiter,
                    [&](uint64_t position, uint64_t sent) { Count(position, sent); });
  const auto folder = surroundings_.folders.Open(job_.folder, target);
  try {
    Uploaded result = Deliver(file, *folder, target);
    Count(file.Size(), 0);
    return result;
  } catch (const UploadError& error) {
    if (error.Fault() == UploadFault::kFileChanged) RemoveParts(*folder, target, "");
    throw;
  }
}

Uploaded FileUpload::Deliver(OutgoingFile& file, TargetFolder& folder, UploadTarget& target) {
  const std::string part = PartName(job_.guid, file.Stamp());
  bool is_sent = false;
  for (int number = 1; number <= kMostNames;) {
    const std::string name = NumberedName(job_.name, number);
    if (folder.Has(name)) {
      if (!target.Holds(file, PlaceOf(name))) {
        ++number;
        continue;
      }
      RemoveParts(folder, target, "");
      return {PlaceOf(name), file.Size(), true};
    }
    const bool is_free = std::exchange(is_sent, true) ? target.Rename(PlaceOf(part), PlaceOf(name))
                                                      : Send(file, folder, target, name);
    folder.Add(name);
    if (!is_free) continue;
    folder.Forget(part);
    return {PlaceOf(name), file.Size(), false};
  }
  throw UploadError(UploadFault::kBadName, job_.name + ": too many files of that name");
}

bool FileUpload::Send(OutgoingFile& file, TargetFolder& folder, UploadTarget& target,
                      const std::string& name) {
  const std::string part = PartName(job_.guid, file.Stamp());
  RemoveParts(folder, target, part);
  const bool resume = folder.Has(part);
  folder.Add(part);
  return target.SendAs(file, PlaceOf(part), resume, PlaceOf(name));
}

/// Those of other states of the file, too.
void FileUpload::RemoveParts(TargetFolder& folder, UploadTarget& target,
                             const std::string& except) {
  for (const std::string& part : folder.NamesWithPrefix(PartPrefix(job_.guid))) {
    if (part == except) continue;
    target.Remove(PlaceOf(part));
    folder.Forget(part);
  }
}

void FileUpload::Count(uint64_t position, uint64_t sent) {
  surroundings_.queue.NoteSent(job_.guid, position);
  surroundings_.progress.Move(std::exchange(counted_, position), position, sent);
}

std::string FileUpload::PlaceOf(const std::string& name) const {
  return job_.folder.empty() ? name : Joined(job_.folder, name);
}

}  // namespace vdsto
