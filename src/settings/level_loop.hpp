/// \file
/// One step of the automatic level control: from a measured level to a new exposure or gain.
#pragma once

#include <cstdint>

#include "settings/gain_exposure_interface.hpp"

namespace vexa::settings {

/// Settings and memory of the loop. Exposures are in pixel clocks; 0 stands for the maximum short
/// exposure. Gains are setting values.
///
/// Modes: 1 exposure and gain, 2 exposure, 3 gain; 4 to 6 the same until the level has settled; 7
/// to 15 gain without a check of the limits; 0 nothing.
struct LevelState {
  std::uint8_t mode = 0;
  std::uint16_t target = 128;
  std::uint16_t gain = 0;
  std::uint32_t exposure = 0;
  std::uint32_t max_exposure = 0;
  std::uint32_t min_exposure = 1;
  std::uint16_t max_gain = 0;
  std::uint16_t min_gain = 0;
  bool adjusting = false;  // the step before changed something
};

/// Bits of a change report.
inline constexpr std::uint32_t kExposureChanged = 1;
inline constexpr std::uint32_t kGainChanged = 2;

/// Whether a mode ends with the first step that changes nothing.
bool EndsWhenSettled(std::uint8_t mode);

/// Brings exposure and gain of the state into their limits or, when they are there, towards the
/// target. Mode 0 is the caller's to handle. Only asks the camera for limits and decibels, writes
/// nothing to it. The result is a change report.
std::uint32_t AdjustLevel(LevelState& state, IUpdateGainExposureClockSetting& camera,
                          std::uint16_t level);

}  // namespace vexa::settings
