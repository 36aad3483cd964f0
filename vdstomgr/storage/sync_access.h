#pragma once

namespace vdstomgr {

/// What the calls that sync may see of the storage classes: a friend of them all. As friends
/// themselves those calls would have to be declared again inside classes, where compilers for
/// Windows forget that they are imported.
struct SyncAccess {
  template <class Storage>
  static auto& StateOf(Storage& storage) {
    return *storage.m_state;
  }
};

}  // namespace vdstomgr
