#include "tools/vdsto/import/import_places.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>

#include "tools/vdsto/picture/source_file.h"
#include "tools/vdsto/text/source_location.h"

namespace vdsto {

/// The number of a device changes when disks are plugged in in another order; the id of a file
/// system mostly does not, but not every one has one.
std::string DeviceOf(const std::string& path) {
  struct stat status {};
  struct statvfs disk {};
  if (stat(path.c_str(), &status) != 0 || statvfs(path.c_str(), &disk) != 0) return {};
  return disk.f_fsid != 0 ? "id " + std::to_string(disk.f_fsid)
                          : "device " + std::to_string(status.st_dev);
}

/// A disk that is mounted elsewhere now is there, too, and what was on it at its old place is not.
ImportPlaces::ImportPlaces(std::vector<ImportPlace> recorded, const std::vector<std::string>& roots)
    : roots_(roots) {
  std::vector<std::string> mounted;
  for (const std::string& root : roots) mounted.push_back(DeviceOf(root));
  for (ImportPlace& place : recorded) {
    const std::string now = DeviceOf(place.path);
    mounted.push_back(now);
    states_.push_back({std::move(place), now, false});
  }
  for (State& state : states_)
    state.is_there = std::find(mounted.begin(), mounted.end(), state.place.device) != mounted.end();
}

void ImportPlaces::Observe(const PhotoFacts& file) {
  const std::lock_guard lock(mutex_);
  for (State& state : states_) {
    if (state.place.id != file.place_id || state.is_there) continue;
    struct stat status {};
    const bool is_known = stat(file.path.c_str(), &status) == 0 && StampFrom(status) == file.stamp;
    if (!is_known) return;
    state.is_there = true;
    state.place.device = state.device_now;
  }
}

const ImportPlaces::State* ImportPlaces::Find(uint32_t id) const {
  const auto found = std::find_if(states_.begin(), states_.end(),
                                  [&](const State& state) { return state.place.id == id; });
  return found == states_.end() ? nullptr : &*found;
}

bool ImportPlaces::IsThere(const PhotoFacts& file) const {
  const std::lock_guard lock(mutex_);
  const State* state = Find(file.place_id);
  return state ? state->is_there : IsImported(file.path);
}

bool ImportPlaces::IsImported(const std::string& path) const {
  return std::any_of(roots_.begin(), roots_.end(),
                     [&](const std::string& root) { return path == root || IsBelow(path, root); });
}

void ImportPlaces::Enter(const std::string& folder) {
  const std::string device = DeviceOf(folder);
  const std::lock_guard lock(mutex_);
  uint32_t highest = 0;
  for (const State& state : states_) {
    if (state.place.path == folder && state.place.device == device) return;
    highest = std::max(highest, state.place.id);
  }
  states_.push_back({{highest + 1, folder, device}, device, true});
}

uint32_t ImportPlaces::PlaceOf(const std::string& path) const {
  const std::lock_guard lock(mutex_);
  const State* deepest = nullptr;
  for (const State& state : states_) {
    const bool is_current = state.is_there && state.device_now == state.place.device;
    if (!is_current || !IsBelow(path, state.place.path)) continue;
    if (!deepest || state.place.path.size() > deepest->place.path.size()) deepest = &state;
  }
  return deepest ? deepest->place.id : 0;
}

std::vector<ImportPlace> ImportPlaces::Places() const {
  const std::lock_guard lock(mutex_);
  std::vector<ImportPlace> places;
  for (const State& state : states_) places.push_back(state.place);
  return places;
}

std::string ImportPlaces::FolderOf(uint32_t place_id) const {
  const std::lock_guard lock(mutex_);
  const State* state = Find(place_id);
  return state ? state->place.path : std::string();
}

}  // namespace vdsto
