/// \file
/// The power schemes behind the host's power-management library, and what tests change in them.
#pragma once

#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "platform/power_library.hpp"

namespace vexa::platform::host {

/// One machine with one power scheme, in the process. Not synchronised, as little as two programs
/// that change the settings of a machine are. A library that is loaded keeps pointing here.
struct PowerStore {
  /// A value that an idle-state index may stand for.
  struct PossibleValue {
    std::uint32_t type = 3;  // REG_BINARY
    std::vector<std::uint8_t> data;
  };

  OsVersion version{.platform_id = 2, .major = 6, .minor = 2};
  /// What loading the library fails with; 0 loads it.
  std::uint32_t load_error = 0;
  /// Functions that the library lacks. Versions before 6.0 have the old ones only.
  std::set<std::string> missing;

  // Indexes for AC and DC.
  std::array<std::uint32_t, 2> idle_disable{0, 0};
  std::array<std::uint32_t, 2> idle_policy{0, 1};
  std::vector<PossibleValue> idle_policies{{.data = {1, 0, 0, 0, 1, 0, 0, 0}},
                                           {.data = {1, 0, 0, 0, 1, 0, 0, 0}}};
  std::uint32_t processor_scheme = 1;
  std::array<std::uint8_t, 156> processor_policy{};

  /// Names of the functions called so far.
  std::vector<std::string> calls;
  /// The call with this number, counted in `calls`, fails with this code.
  std::size_t failing_call = SIZE_MAX;
  std::uint32_t failure = 0;
  /// Scheme identifiers that have been given and not freed.
  int schemes_given = 0;
};

PowerStore& ThePowerStore();

}  // namespace vexa::platform::host
