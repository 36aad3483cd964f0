#pragma once
#include <string>
#include <vector>

#include "tools/vdsto/cli/answer.h"
#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/library/upload_queue.h"

/// Uploads as text, for people and for programs.
namespace vdsto {

/// A list of uploads; for programs with every field under a stable key.
Answer ListOf(const std::vector<Upload>& uploads);

/// A change of uploads; `participle` is what they are then.
ChangePlan PlanFor(const std::vector<Upload>& uploads, std::string participle);

}  // namespace vdsto
