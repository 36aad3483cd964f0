#pragma once

/// Allocations of the C++ code and of the database engine fail on demand for as long as it lives.
/// Databases are opened after it is made and closed before it goes. One at a time.
class FaultyMemory {
 public:
  FaultyMemory();
  ~FaultyMemory();
  FaultyMemory(const FaultyMemory&) = delete;
  FaultyMemory& operator=(const FaultyMemory&) = delete;

  /// Lets the allocation with this number fail, the first being 1, and no other.
  void FailAt(int allocation);
  void Heal() { FailAt(0); }
  bool HasFailed() const;
};
