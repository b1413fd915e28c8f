/// \file
/// How often this program has allocated memory, and how much it gets.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vexa::test {

/// Calls of operator new so far, by any thread.
std::uint64_t Allocations();

/// While it lives, operator new refuses larger blocks, for all threads.
class AllocationLimit {
 public:
  explicit AllocationLimit(std::size_t bytes);
  AllocationLimit(const AllocationLimit&) = delete;
  AllocationLimit& operator=(const AllocationLimit&) = delete;
  ~AllocationLimit();
};

/// Bytes that this thread has asked operator new for so far.
std::uint64_t AllocatedBytes();

/// Lets the n-th allocation of this thread from now on fail; 0 lets none.
void FailAllocation(std::uint64_t n);

}  // namespace vexa::test
