#include "tools/vdsto/cli/upload_text.h"

#include "tools/vdsto/text/source_location.h"

namespace vdsto {
namespace {

std::string WordFor(int status) {
  if (IsWaiting(status)) return "waiting";
  if (IsSending(status)) return "sending";
  return IsFinished(status) ? "done" : status < 0 ? "failed" : "unknown";
}

Fact ErrorOf(const Upload& upload) {
  return upload.status < 0 ? Fact(upload.status) : Fact(Json());
}

Json AsJson(const Upload& upload) {
  return {{"position", upload.position + 1},
          {"guid", upload.guid},
          {"name", upload.name},
          {"folder", upload.folder},
          {"original", upload.original},
          {"status", WordFor(upload.status)},
          {"error", ErrorOf(upload).json},
          {"sent", upload.sent},
          {"size", upload.size}};
}

}  // namespace

Answer ListOf(const std::vector<Upload>& uploads) {
  Json list = Json::array();
  Table rows({"position", "status", "error", "sent", "size", "name"});
  for (const Upload& upload : uploads) {
    list.push_back(AsJson(upload));
    rows.Add({upload.position + 1, WordFor(upload.status), ErrorOf(upload), SizeFact(upload.sent),
              SizeFact(upload.size), Joined(upload.folder, upload.name)});
  }
  return {std::move(list), rows.Text()};
}

ChangePlan PlanFor(const std::vector<Upload>& uploads, std::string participle) {
  ChangePlan plan{"upload", std::move(participle)};
  for (const Upload& upload : uploads) plan.Add(upload.guid, Joined(upload.folder, upload.name));
  return plan;
}

}  // namespace vdsto
