#include "bench/core/AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> count;

void* allocate(std::size_t size) {
  count.fetch_add(1, std::memory_order_relaxed);
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

void* allocateAligned(std::size_t size, std::align_val_t alignment) {
  count.fetch_add(1, std::memory_order_relaxed);
  const auto boundary = static_cast<std::size_t>(alignment);
  if (void* memory = std::aligned_alloc(boundary, (size + boundary - 1) / boundary * boundary))
    return memory;
  throw std::bad_alloc();
}

}  // namespace

namespace valdrix::bench {

std::uint64_t allocationCount() { return count.load(std::memory_order_relaxed); }

}  // namespace valdrix::bench

// The forms for arrays and those that do not throw end up in these.
void* operator new(std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocateAligned(size, alignment);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
