/// \file
/// Region of interest, skipping and binning, and the timing that follows from them.
#pragma once

#include <cstdint>

#include "platform/status.hpp"
#include "simulator/camera_config.hpp"
#include "simulator/camera_settings.hpp"

namespace vexa::simulator {

/// Register 33: four nibbles; a nibble n skips n of n + 1 pixels, or bins n + 1 pixels.
struct SkipBin {
  std::uint16_t word = 0;

  std::uint32_t skip_x() const { return ((word >> 12) & 0xFu) + 1; }
  std::uint32_t bin_x() const { return ((word >> 8) & 0xFu) + 1; }
  std::uint32_t skip_y() const { return ((word >> 4) & 0xFu) + 1; }
  std::uint32_t bin_y() const { return (word & 0xFu) + 1; }
};

/// A region of interest in frame pixels, with its scan mode, as the scan settings block holds it.
struct ScanRequest {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t offset_x = 0;
  std::uint32_t offset_y = 0;
  std::uint16_t mode = 1;
};

/// Lines and clocks of one frame.
struct LineTiming {
  std::uint16_t lines_per_frame = 0;
  std::uint16_t clocks_per_line = 0;
  std::uint32_t shutter_max_clock = 0;     // divisor of the exposure clock, less one
  std::uint32_t short_exposure_lines = 0;  // exposure limits in lines of that divisor
  std::uint32_t long_exposure_lines = 0;
};

/// The scan unit of one camera. The region is kept in frame pixels, as it was requested; skipping
/// and binning, which apply in scan mode 0x8000 only, widen its field of view. Where the sensor
/// ends the frame ends, too, until less skipping and binning let it have its size again. So region
/// and skipping and binning may be set in either order.
class Scan {
 public:
  explicit Scan(const CameraConfig& config);

  /// Takes over a region, or refuses it with 31: unknown scan mode, empty, more than the sensor, or
  /// of odd width or height on a colour sensor (a frame holds whole cells of the filter pattern;
  /// odd offsets are possible and shift the pattern).
  Status Set(const ScanRequest& request);
  /// The region as the frame has it.
  ScanRequest Current() const;

  void SetSkipBin(SkipBin skip_bin) { skip_bin_ = skip_bin; }
  void SetVerticalBlanking(std::uint16_t lines) { vertical_blanking_ = lines; }

  /// Geometry of the frame, without mirroring.
  Geometry FrameGeometry() const;
  LineTiming Timing() const;
  /// Whether an exposure longer than the frame lengthens the frame.
  bool ExposureLengthensFrame() const;
  /// Seconds of an exposure clock (0: one full frame) at a pixel clock frequency, limited to what
  /// the scan mode allows.
  double ExposureSeconds(std::uint32_t exposure_clock, std::uint32_t frequency) const;

 private:
  std::uint32_t PitchX() const;
  std::uint32_t PitchY() const;
  std::uint32_t LineClocks() const;
  bool CountsLines() const;

  std::uint16_t product_id_;
  std::uint16_t colour_array_;
  std::uint16_t scan_modes_;
  bool own_limits_;
  SensorSize sensor_;
  ScanRequest region_;  // as requested
  SkipBin skip_bin_;
  std::uint16_t vertical_blanking_ = 0;
};

/// The pixel clock frequency in hertz that gives a product its usual frame rate.
std::uint32_t NominalFrequency(const CameraConfig& config);

}  // namespace vexa::simulator
