/// \file
/// Exposure and gain, their conversion to seconds, and the frame rate.
#pragma once

#include <cstdint>
#include <optional>

#include "device/control_channel.hpp"
#include "device/identity.hpp"
#include "device/registers.hpp"
#include "platform/status.hpp"
#include "settings/sensor_timing.hpp"

namespace vexa::settings {

/// Reads and writes the camera's gain and exposure block, in which both travel together: each
/// change reads the block, changes its fields and writes the whole block back. Not atomic against
/// other writers; one thread at a time changes gain and exposure.
class ExposureControl {
 public:
  ExposureControl(device::ControlChannel& channel, device::Registers& registers,
                  const device::CameraIdentity& identity, SensorTiming& timing)
      : channel_(channel), registers_(registers), identity_(identity), timing_(timing) {}

  /// Exposures are in pixel clocks, gains setting values. kInvalidParameter when the camera reports
  /// a line of 0 clocks, into which no exposure can be split.
  Status SetExposureClock(std::uint32_t exposure_clock);
  Status SetGain(std::uint16_t gain);
  Status SetGainAndExposureClock(std::uint16_t gain, std::uint32_t exposure_clock);
  Status GetGainAndExposureClock(std::uint16_t* gain, std::uint32_t* exposure_clock);

  /// The gain after the converter, in the camera's units. 0 on failure.
  Status SetDigitalGain(std::uint16_t gain);
  Status GetDigitalGain(std::uint16_t* gain);

  /// Clocks of a time in seconds, limited to 1 ... longest exposure.
  Status ClockFromTime(float seconds, std::uint32_t* exposure_clock);
  /// Seconds of a clock count limited to the longest exposure; 0 clocks are one full frame.
  Status TimeFromClock(std::uint32_t exposure_clock, float* seconds);

  /// Frames per second; 0 on failure.
  Status OutputFrameRate(float* fps);

 private:
  /// seconds = (clocks_per_count * count - offset) / frequency
  struct ExposureScale {
    double frequency = 0;
    double clocks_per_count = 1;
    double offset = 0;
  };

  /// Changes what is given.
  Status Update(std::optional<std::uint16_t> gain, std::optional<std::uint32_t> exposure_clock);
  Status ReadScale(ExposureScale* scale);
  Status MeasuredFrameRate(float* fps);
  Status FrameLengthClocks(std::uint64_t* clocks);

  device::ControlChannel& channel_;
  device::Registers& registers_;
  const device::CameraIdentity& identity_;
  SensorTiming& timing_;
};

}  // namespace vexa::settings
