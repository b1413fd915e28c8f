/// \file
/// How often this program has allocated memory, and how much.
#pragma once

#include <cstdint>

namespace vexa::test {

/// Calls of operator new so far, by any thread.
std::uint64_t Allocations();

/// Bytes that this thread has asked operator new for so far.
std::uint64_t AllocatedBytes();

/// Lets the n-th allocation of this thread from now on fail; 0 lets none.
void FailAllocation(std::uint64_t n);

}  // namespace vexa::test
