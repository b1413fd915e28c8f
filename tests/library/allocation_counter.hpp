/// \file
/// How often this program has allocated memory.
#pragma once

#include <cstdint>

namespace vexa::test {

/// Calls of operator new so far, by any thread.
std::uint64_t Allocations();

}  // namespace vexa::test
