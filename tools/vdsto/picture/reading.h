#pragma once
#include <exception>

namespace vdsto {

/// Runs `read`, which reads a group of fields: one that a library chokes on costs only its group.
template <class Read>
void Attempt(Read read) {
  try {
    read();
  } catch (const std::exception&) {
  }
}

}  // namespace vdsto
