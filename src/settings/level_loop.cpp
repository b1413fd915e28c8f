#include "settings/level_loop.hpp"

#include <algorithm>
#include <cmath>

namespace vexa::settings {
namespace {

// The loop stops near the target and takes up work again only farther away, so that noise does not
// keep it moving.
constexpr std::uint32_t kTolerance = 5;
constexpr std::uint32_t kSettledExtraTolerance = 5;

constexpr float kSmallestFactor = 0.0001F;  // its logarithm is to stay finite

bool BringsExposureFirst(std::uint8_t mode) { return mode == 1 || mode == 4; }

bool LimitsExposure(std::uint8_t mode) {
  return BringsExposureFirst(mode) || mode == 2 || mode == 5;
}

bool LimitsGain(std::uint8_t mode) { return BringsExposureFirst(mode) || mode == 3 || mode == 6; }

/// Present exposure and its limits with 0 resolved.
struct ExposureRange {
  ExposureRange(const LevelState& state, std::uint32_t full_frame)
      : present(state.exposure == 0 ? full_frame : state.exposure),
        max(state.max_exposure == 0 ? full_frame : state.max_exposure),
        min(state.min_exposure == 0 ? full_frame : state.min_exposure) {}

  std::uint32_t present;
  std::uint32_t max;
  std::uint32_t min;
};

std::uint32_t LimitGain(LevelState& state) {
  const std::uint16_t before = state.gain;
  if (state.gain < state.min_gain) {
    state.gain = state.min_gain;
  } else if (state.gain > state.max_gain) {
    state.gain = state.max_gain;
  }
  return state.gain == before ? 0 : kGainChanged;
}

std::uint32_t LimitExposure(LevelState& state, const ExposureRange& range) {
  if (range.present > range.max) {
    state.exposure = state.max_exposure;
  } else if (range.present < range.min) {
    state.exposure = state.min_exposure;
  } else {
    return 0;
  }
  return kExposureChanged;
}

std::uint32_t CheckLimits(LevelState& state, const ExposureRange& range) {
  std::uint32_t changed = 0;
  if (LimitsGain(state.mode)) {
    changed |= LimitGain(state);
  }
  if (LimitsExposure(state.mode)) {
    changed |= LimitExposure(state, range);
  }
  // Gain brings noise along: it has to wait until the exposure is used up.
  if (BringsExposureFirst(state.mode) && range.present != range.max &&
      state.gain != state.min_gain) {
    state.gain = state.min_gain;
    changed |= kGainChanged;
  }
  return changed;
}

std::uint32_t StepExposure(LevelState& state, const ExposureRange& range,
                           IUpdateGainExposureClockSetting& camera, std::uint16_t level) {
  // 64 bits: target * exposure and the doubled exposure of long exposures exceed 32.
  const std::uint64_t low = std::min(range.min, range.max);
  std::uint64_t high = std::max(range.min, range.max);
  if (level <= state.target) {
    high = std::min(high, std::uint64_t{2} * range.present);
  }
  std::uint64_t wanted =
      std::uint64_t{state.target} * range.present / std::max<std::uint16_t>(level, 1);
  if (wanted <= low) {
    wanted = low;
  } else if (wanted >= high) {
    wanted = high;
  }
  if (wanted == range.present) {
    return 0;
  }
  const std::uint32_t before = state.exposure;
  state.exposure = wanted == camera.GetMaxShortExposureClock()
                       ? 0
                       : static_cast<std::uint32_t>(
                             std::min<std::uint64_t>(wanted, camera.GetMaxLongExposureClock()));
  return state.exposure == before ? 0 : kExposureChanged;
}

// Every result is rounded to single precision.
float PowerOfTen(float exponent) {
  return static_cast<float>(std::pow(10.0, static_cast<double>(exponent)));
}

float Decibels(float factor) {
  return 20.0F * static_cast<float>(std::log10(static_cast<double>(factor)));
}

/// The gain that should bring the level to the target; at least one step in its direction.
std::uint32_t WantedGain(const LevelState& state, IUpdateGainExposureClockSetting& camera,
                         std::uint16_t level) {
  const std::uint32_t gain = state.gain;
  const float amplification = PowerOfTen(camera.GainToDecibel(gain) / 20.0F);
  const std::uint32_t unamplified =
      amplification > 0 ? static_cast<std::uint32_t>(level / amplification) : level;
  if (unamplified == 0) {
    return gain + 1;
  }
  float factor = static_cast<float>(state.target) / static_cast<float>(unamplified);
  if (level <= state.target) {
    factor = std::min(factor, 2.0F * amplification);
    const std::uint32_t wanted = camera.DecibelToGain(Decibels(factor));
    return wanted > gain ? wanted : gain + 1;
  }
  factor = std::max(factor, kSmallestFactor);
  const std::uint32_t wanted = camera.DecibelToGain(Decibels(factor));
  return wanted < gain ? wanted : std::max<std::uint32_t>(gain, 1) - 1;
}

std::uint32_t StepGain(LevelState& state, IUpdateGainExposureClockSetting& camera,
                       std::uint16_t level) {
  const auto [low, high] = std::minmax<std::uint32_t>({state.min_gain, state.max_gain});
  const auto wanted =
      static_cast<std::uint16_t>(std::clamp(WantedGain(state, camera, level), low, high));
  if (wanted == state.gain) {
    return 0;
  }
  state.gain = wanted;
  return kGainChanged;
}

std::uint32_t Decide(LevelState& state, const ExposureRange& range,
                     IUpdateGainExposureClockSetting& camera, std::uint16_t level) {
  const bool dark = state.target > level;
  const std::uint32_t difference =
      static_cast<std::uint32_t>(dark ? state.target - level : level - state.target);
  if (difference <= kTolerance + (state.adjusting ? 0 : kSettledExtraTolerance)) {
    return 0;
  }
  bool exposure = LimitsExposure(state.mode);
  if (BringsExposureFirst(state.mode)) {
    exposure = dark ? range.present != range.max : state.gain == state.min_gain;
  }
  return exposure ? StepExposure(state, range, camera, level) : StepGain(state, camera, level);
}

}  // namespace

bool EndsWhenSettled(std::uint8_t mode) { return mode >= 4 && mode <= 6; }

std::uint32_t AdjustLevel(LevelState& state, IUpdateGainExposureClockSetting& camera,
                          std::uint16_t level) {
  const ExposureRange range(state, camera.GetMaxShortExposureClock());
  const std::uint32_t limited = CheckLimits(state, range);
  return limited != 0 ? limited : Decide(state, range, camera, level);
}

}  // namespace vexa::settings
