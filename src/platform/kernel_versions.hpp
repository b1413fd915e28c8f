/// \file
/// The choice among versions of the same inner loops.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "platform/instruction_sets.hpp"

namespace vexa::platform {

template <class Kernels>
struct KernelVersion {
  const Kernels* kernels;
  InstructionSet instructions;
};

/// Those of n versions that this processor can run, in the order given; found out once.
template <class Kernels, std::size_t n>
class UsableVersions {
 public:
  explicit UsableVersions(const KernelVersion<Kernels> (&versions)[n]) {
    for (const auto& [kernels, instructions] : versions) {
      if (IsUsable(instructions)) {
        usable_[count_++] = kernels;
      }
    }
  }

  std::span<const Kernels* const> All() const { return std::span(usable_).first(count_); }

 private:
  std::array<const Kernels*, n> usable_{};
  std::size_t count_ = 0;
};

}  // namespace vexa::platform
