#pragma once
#include <optional>
#include <string>
#include <vector>

#include "tools/vdsto/cli/answer.h"
#include "tools/vdsto/library/photo_facts.h"
#include "vdstomgr/vdstomgr.h"

/// Photos as text, for people and for programs.
namespace vdsto {

/// The last-write time to the second; empty when there is none.
std::string LastWriteText(const PHOTOINFO& photo);

/// Can the photo be shown? One that cannot has no location of a thumbnail, and its record no real
/// size.
bool CanBeShown(const PHOTOINFO& photo);

/// Every field under a stable key. `folder` is the photo's catalogue path. What is not known is
/// null.
Json PhotoAsJson(const PHOTOINFO& photo, const std::string& folder);

/// What is known beside the row, under a key each; nothing when there are no facts.
void AddPhotoFacts(const std::optional<PhotoFacts>& known, Facts& facts);

/// The names of tags: a list for programs, "바다, 여행" for people.
Fact TagsFact(const std::vector<TAGINFO>& tags);

/// The rows of a list of photos, which is the same in every command; `name` is the last column.
Table PhotoTable();
void AddPhoto(const PHOTOINFO& photo, const std::string& name, Table& table);

}  // namespace vdsto
