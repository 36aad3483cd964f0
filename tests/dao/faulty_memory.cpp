#include "tests/dao/faulty_memory.h"

#include <sqlite3.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int> allocations_left{0};  // until the one that fails; negative after it
std::atomic<bool> is_armed{false};
sqlite3_mem_methods engine_memory{};

bool Fails() {
  return is_armed && --allocations_left == 0;
}

void* AllocateForEngine(int size) {
  return Fails() ? nullptr : engine_memory.xMalloc(size);
}

void* ReallocateForEngine(void* memory, int size) {
  return Fails() ? nullptr : engine_memory.xRealloc(memory, size);
}

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Fails() ? nullptr : std::malloc(size > 0 ? size : 1);
}

void* operator new(std::size_t size) {
  void* memory = operator new(size, std::nothrow);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

FaultyMemory::FaultyMemory() {
  sqlite3_shutdown();
  sqlite3_config(SQLITE_CONFIG_GETMALLOC, &engine_memory);
  sqlite3_mem_methods faulty = engine_memory;
  faulty.xMalloc = AllocateForEngine;
  faulty.xRealloc = ReallocateForEngine;
  sqlite3_config(SQLITE_CONFIG_MALLOC, &faulty);
}

FaultyMemory::~FaultyMemory() {
  Heal();
  sqlite3_shutdown();
  sqlite3_config(SQLITE_CONFIG_MALLOC, &engine_memory);
}

void FaultyMemory::FailAt(int allocation) {
  allocations_left = allocation;
  is_armed = allocation > 0;
}

bool FaultyMemory::HasFailed() const {
  return is_armed && allocations_left <= 0;
}
