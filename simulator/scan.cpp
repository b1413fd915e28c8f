#include "simulator/scan.hpp"

#include <algorithm>
#include <bit>
#include <cmath>

namespace vexa::simulator {
namespace {

constexpr std::uint16_t kSkipBinMode = 0x8000;
constexpr std::uint16_t kLongExposureModes = 0x0001 | 0x0002 | 0x0004 | 0x0020 | 0x0040 | 0x0080;
constexpr std::uint32_t kLongExposureLines = 4090;  // of the line counter in those modes
constexpr std::uint32_t kOwnLongExposureLines = 60000;
constexpr std::uint32_t kBlankLines = 20;
constexpr std::uint32_t kLargestWord = 0xFFFF;

// The large sensor's line length in pairs of clocks beyond half the width, by vertical (row) and
// horizontal (column) binning of 1, 2 and more pixels.
constexpr std::uint32_t kLinePairs[3][3] = {{450, 430, 420}, {796, 776, 766}, {1488, 1468, 1458}};

std::uint16_t ToWord(std::uint32_t value) {
  return static_cast<std::uint16_t>(std::min(value, kLargestWord));
}

}  // namespace

Scan::Scan(const CameraConfig& config)
    : product_id_(config.product_id),
      colour_array_(config.colour_array),
      scan_modes_(config.scan_modes),
      own_limits_((config.capabilities >> 48 & 1) != 0),
      sensor_(SensorSizeOf(config)) {
  const std::uint32_t lowest_mode = scan_modes_ == 0 ? 1u : 1u << std::countr_zero(scan_modes_);
  region_ = {sensor_.width, sensor_.height, 0, 0, static_cast<std::uint16_t>(lowest_mode)};
}

std::uint32_t Scan::PitchX() const {
  return region_.mode == kSkipBinMode ? skip_bin_.skip_x() * skip_bin_.bin_x() : 1;
}

std::uint32_t Scan::PitchY() const {
  return region_.mode == kSkipBinMode ? skip_bin_.skip_y() * skip_bin_.bin_y() : 1;
}

Status Scan::Set(const ScanRequest& request) {
  if (!std::has_single_bit(request.mode) || (request.mode & scan_modes_) == 0) {
    return error::kGeneralFailure;
  }
  if (request.width == 0 || request.height == 0) return error::kGeneralFailure;
  const bool colour = colour_array_ != 1;
  if (colour && ((request.width | request.height) & 1) != 0) return error::kGeneralFailure;
  const std::uint64_t right = std::uint64_t{request.offset_x} + request.width;
  const std::uint64_t bottom = std::uint64_t{request.offset_y} + request.height;
  if (right > sensor_.width || bottom > sensor_.height) return error::kGeneralFailure;
  region_ = request;
  return error::kNone;
}

ScanRequest Scan::Current() const {
  // At least one pixel (one cell of the pattern) remains, whatever the pitch.
  const std::uint32_t unit = colour_array_ == 1 ? 1 : 2;
  ScanRequest frame = region_;
  const auto fit = [unit](std::uint32_t available, std::uint32_t* offset, std::uint32_t* extent) {
    available = std::max(available, unit);
    *offset = std::min(*offset, available - unit);
    *extent = std::min(*extent, (available - *offset) / unit * unit);
  };
  fit(sensor_.width / PitchX(), &frame.offset_x, &frame.width);
  fit(sensor_.height / PitchY(), &frame.offset_y, &frame.height);
  return frame;
}

Geometry Scan::FrameGeometry() const {
  const ScanRequest frame = Current();
  Geometry geometry;
  geometry.sensor = sensor_;
  geometry.colour_array = colour_array_;
  geometry.width = frame.width;
  geometry.height = frame.height;
  geometry.origin_x = frame.offset_x * PitchX();
  geometry.origin_y = frame.offset_y * PitchY();
  geometry.pitch_x = PitchX();
  geometry.pitch_y = PitchY();
  if (region_.mode == kSkipBinMode) {
    geometry.bin_x = skip_bin_.bin_x();
    geometry.bin_y = skip_bin_.bin_y();
  }
  return geometry;
}

bool Scan::CountsLines() const { return product_id_ == 0x0111 || product_id_ == 0x0211; }

std::uint32_t Scan::LineClocks() const {
  if (!CountsLines()) return (sensor_.width + sensor_.width / 4 + 1) & ~1u;
  const bool skip_bin = region_.mode == kSkipBinMode;
  const std::uint32_t bin_x = skip_bin ? skip_bin_.bin_x() - 1 : 0;
  const std::uint32_t bin_y = skip_bin ? skip_bin_.bin_y() - 1 : 0;
  const std::uint32_t extra = kLinePairs[std::min(bin_y, 2u)][std::min(bin_x, 2u)];
  const std::uint32_t k = bin_y < 2 ? bin_y : 3;
  return 2 * std::max(Current().width / 2 + extra, 346 * k + 486);
}

LineTiming Scan::Timing() const {
  LineTiming timing;
  timing.lines_per_frame = ToWord(Current().height + kBlankLines + vertical_blanking_);
  timing.clocks_per_line = ToWord(LineClocks());
  // The large sensor counts its exposure in lines, so that one "clock" of it is one line.
  timing.shutter_max_clock =
      CountsLines() && own_limits_ ? 0 : std::uint32_t{timing.clocks_per_line} - 1;
  timing.short_exposure_lines = timing.lines_per_frame;
  if (own_limits_) {
    timing.long_exposure_lines = kOwnLongExposureLines;
  } else if ((region_.mode & kLongExposureModes) != 0) {
    timing.long_exposure_lines = kLongExposureLines;
  } else {
    timing.long_exposure_lines = timing.lines_per_frame;
  }
  return timing;
}

bool Scan::ExposureLengthensFrame() const {
  return region_.mode == 0x0004 || region_.mode == 0x0020;
}

double Scan::ExposureSeconds(std::uint32_t exposure_clock, std::uint32_t frequency) const {
  const LineTiming timing = Timing();
  const double divisor = timing.shutter_max_clock + 1.0;
  const double limit = divisor * std::max(timing.long_exposure_lines, timing.short_exposure_lines);
  double clock = exposure_clock == 0 ? divisor * timing.short_exposure_lines : exposure_clock;
  clock = std::min(clock, limit);
  if (CountsLines()) {
    const std::uint32_t bin_y = region_.mode == kSkipBinMode ? skip_bin_.bin_y() - 1 : 0;
    const double offset = 416.0 * (bin_y < 2 ? bin_y : 3) + 426.0;
    clock = std::max(clock * LineClocks() - offset, 1.0);
  }
  return clock / frequency;
}

std::uint32_t NominalFrequency(const CameraConfig& config) {
  // Models read about 40 million pixels per second, between 7 and 60 frames.
  const SensorSize size = SensorSizeOf(config);
  const double rate = std::clamp(40e6 / (double{1} * size.width * size.height), 7.0, 60.0);
  const LineTiming timing = Scan(config).Timing();
  const double clocks = rate * timing.lines_per_frame * timing.clocks_per_line;
  return static_cast<std::uint32_t>(std::ceil(clocks / 1e6)) * 1000000u;
}

}  // namespace vexa::simulator
