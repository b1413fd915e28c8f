/// \file
/// Pixel clock, scan settings, skipping and binning, vertical blanking.
#pragma once

#include <cstdint>

#include "device/control_channel.hpp"
#include "device/identity.hpp"
#include "device/registers.hpp"
#include "platform/mutex.hpp"
#include "platform/status.hpp"
#include "settings/scan_settings.hpp"

namespace vexa::settings {

/// Clock mode (the camera's) and pixel clock frequency in hertz.
struct PixelClock {
  std::uint32_t mode = 0;
  std::uint32_t frequency = 0;
};

/// Each 0 to 15.
struct SkippingAndBinning {
  std::uint8_t horizontal_skipping = 0;
  std::uint8_t vertical_skipping = 0;
  std::uint8_t horizontal_binning = 0;
  std::uint8_t vertical_binning = 0;
};

/// The sensor's timing and geometry. Keeps a copy of the camera's scan settings, which every change
/// and every start of a transfer refresh; the copy may be read from any thread.
class SensorTiming {
 public:
  SensorTiming(device::ControlChannel& channel, device::Registers& registers,
               const device::CameraIdentity& identity)
      : channel_(channel), registers_(registers), identity_(identity) {}

  /// Reads the scan settings again. On failure the copy keeps what it had.
  Status Refresh();
  /// The library's copy, with exposure limits.
  ScanSettingsBlock Settings() const;

  Status SetClock(const PixelClock& clock);
  Status GetClock(PixelClock* clock);
  Status SetScanMode(const ScanMode& scan_mode);
  Status SetSkippingAndBinning(const SkippingAndBinning& value);
  Status GetSkippingAndBinning(SkippingAndBinning* value);
  Status SetVerticalBlanking(std::uint16_t lines);
  Status GetVerticalBlanking(std::uint16_t* lines);

  /// Clocks of a line as exposures count them: shutter maximum clock + 1; 0 when the camera's block
  /// makes no sense.
  std::uint32_t ExposureLineClocks() const;
  std::uint32_t MaxShortExposureClock() const;
  std::uint32_t MaxLongExposureClock() const;

 private:
  device::ControlChannel& channel_;
  device::Registers& registers_;
  const device::CameraIdentity& identity_;
  mutable platform::Mutex mutex_;  // guards settings_; never held during a request
  ScanSettingsBlock settings_;
};

}  // namespace vexa::settings
