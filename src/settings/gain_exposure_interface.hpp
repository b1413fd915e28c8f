/// \file
/// What the level control sees of a camera.
#pragma once

#include <cstdint>

#include "platform/status.hpp"

namespace vexa::settings {

/// The gain and exposure of a camera and their limits. Gains are setting values, exposures pixel
/// clocks. Implementations are not owned through this interface.
class IUpdateGainExposureClockSetting {
 public:
  /// Writes both in one request.
  virtual Status SetGainAndExposureClock(std::uint16_t gain, std::uint32_t exposure_clock) = 0;
  /// Reads both in one request; on failure both keep what they had.
  virtual Status GetGainAndExposureClock(std::uint16_t* gain, std::uint32_t* exposure_clock) = 0;
  virtual std::uint16_t GetMaxGain() = 0;
  virtual std::uint16_t GetMinGain() = 0;
  /// Decibels of a setting value (its low 16 bits) on the model's curve.
  virtual float GainToDecibel(std::uint32_t gain) = 0;
  /// Setting value of a decibel figure, 0 to the maximum gain.
  virtual std::uint16_t DecibelToGain(float decibel) = 0;
  virtual std::uint32_t GetMaxLongExposureClock() = 0;
  virtual std::uint32_t GetMaxShortExposureClock() = 0;

 protected:
  ~IUpdateGainExposureClockSetting() = default;
};

}  // namespace vexa::settings
