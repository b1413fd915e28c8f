/// \file
/// The camera's scan settings block and the exposure limits that follow from it.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace vexa::settings {

/// The region of interest and how the sensor is scanned.
struct ScanMode {
  std::uint16_t mode = 0;
  std::uint32_t offset_x = 0;  // pixels
  std::uint32_t offset_y = 0;  // lines
  std::uint32_t width = 0;     // pixels
  std::uint32_t height = 0;    // lines
};

/// An exposure limit: whole lines and remaining clocks.
struct ExposureLimit {
  std::uint32_t lines = 0;
  std::uint32_t remainder = 0;
};

/// The scan modes in which the sensor exposes longer than a frame.
bool AllowsLongExposure(std::uint16_t scan_mode);

/// The scan modes in which a long exposure lengthens the frame.
bool ExposureLengthensFrame(std::uint16_t scan_mode);

/// The 64 bytes as the camera sends and takes them.
class ScanSettingsBlock {
 public:
  static constexpr std::size_t kSize = 64;

  ScanSettingsBlock();
  /// A block that asks the camera for a scan mode.
  ScanSettingsBlock(std::uint32_t tag, const ScanMode& scan_mode);

  std::span<std::uint8_t> bytes() { return bytes_; }
  std::span<const std::uint8_t> bytes() const { return bytes_; }

  ScanMode scan_mode() const;
  std::uint16_t lines_per_frame() const;
  std::uint16_t clocks_per_line() const;
  std::uint16_t max_gain() const;
  std::uint16_t min_gain() const;
  std::uint32_t shutter_max_clock() const;
  ExposureLimit short_exposure() const;
  ExposureLimit long_exposure() const;

  /// Computes the shutter maximum clock and both exposure limits, for cameras that leave them out.
  void DeriveLimits();

 private:
  std::array<std::uint8_t, kSize> bytes_{};
};

}  // namespace vexa::settings
