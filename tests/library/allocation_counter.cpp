#include "allocation_counter.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> allocations = 0;
std::atomic<std::size_t> largest = SIZE_MAX;
thread_local std::uint64_t allocated_bytes = 0;
thread_local std::uint64_t until_failure = 0;

}  // namespace

std::uint64_t vexa::test::Allocations() { return allocations; }
std::uint64_t vexa::test::AllocatedBytes() { return allocated_bytes; }
void vexa::test::FailAllocation(std::uint64_t n) { until_failure = n; }

vexa::test::AllocationLimit::AllocationLimit(std::size_t bytes) { largest = bytes; }
vexa::test::AllocationLimit::~AllocationLimit() { largest = SIZE_MAX; }

void* operator new(std::size_t size) {
  ++allocations;
  allocated_bytes += size;
  if (until_failure > 0 && --until_failure == 0) {
    throw std::bad_alloc();
  }
  void* memory = size <= largest ? std::malloc(size == 0 ? 1 : size) : nullptr;
  if (memory != nullptr) {
    return memory;
  }
  throw std::bad_alloc();
}

// Sanitizers bring nothrow and array forms of their own that do not call the one above.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
