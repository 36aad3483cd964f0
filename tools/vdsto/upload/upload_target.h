#pragma once
#include <memory>
#include <string>
#include <vector>

#include "tools/vdsto/upload/outgoing_file.h"
#include "tools/vdsto/upload/upload_credentials.h"

namespace vdsto {

/// Where files are uploaded to, as one thread sees it: a connection. Paths are relative to the
/// target's own folder, in UTF-8, with '/' between names; "" is that folder itself. Everything
/// throws UploadError, and UploadStopped when the user wants to stop. To add a target, write one
/// source with a class of these calls and let OpenUploadTarget make it.
class UploadTarget {
 public:
  virtual ~UploadTarget() = default;

  /// Another connection to the same place, for another thread; nothing is asked again that the
  /// first one has found out.
  virtual std::unique_ptr<UploadTarget> Another() const = 0;
  /// Does a part that was sent stay at the target, for the next attempt to go on behind it?
  virtual bool KeepsParts() const = 0;

  /// The names in a folder, which is made with those above it when it is not there. The target's
  /// own folder is never made: a disk that is not mounted must not be taken for an empty one.
  virtual std::vector<std::string> OpenFolder(const std::string& folder) = 0;
  /// Sends the file to `path`, whole. With `resume` `path` may hold its first bytes, which are not
  /// sent again. Tells the file how far it got; afterwards the sizes are the same.
  virtual void Send(OutgoingFile& file, const std::string& path, bool resume) = 0;
  /// The same and Rename, in one go if the target can.
  virtual bool SendAs(OutgoingFile& file, const std::string& part, bool resume,
                      const std::string& to) {
    Send(file, part, resume);
    return Rename(part, to);
  }
  /// False, and nothing happens, when `to` exists.
  virtual bool Rename(const std::string& from, const std::string& to) = 0;
  /// Are the contents of `path` those of the file? False when there is no such file.
  virtual bool Holds(const OutgoingFile& file, const std::string& path) = 0;
  /// True also when there is no such file.
  virtual void Remove(const std::string& path) = 0;
  /// All that was sent survives a power cut of this computer, if that is this computer's task.
  virtual void Settle() {}
};

/// The target that the user names: a folder, sftp://[USER@]HOST[:PORT]/PATH, or http(s)://... for
/// WebDAV. Throws ToolError when it is none of them.
std::unique_ptr<UploadTarget> OpenUploadTarget(const std::string& name,
                                               const UploadCredentials& credentials);

}  // namespace vdsto
