#include "settings/exposure_control.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/bytes.hpp"

namespace vexa::settings {
namespace {

using device::Function;
using device::Request;

/// The gain and exposure block; bytes without a name go back to the camera as they came.
class GainExposureBlock {
 public:
  Status Read(device::ControlChannel& channel) {
    return channel.Read(Request::kGainExposure, bytes_);
  }
  Status Write(device::ControlChannel& channel) const {
    return channel.Write(Request::kGainExposure, bytes_);
  }

  std::uint16_t gain() const { return LoadLe16(bytes_, kGain); }
  void set_gain(std::uint16_t gain) { StoreLe16(bytes_, kGain, gain); }

  std::uint32_t exposure_clock(std::uint32_t line_clocks) const {
    const std::uint32_t lines =
        std::uint32_t{LoadLe16(bytes_, kLinesHigh)} << 16 | LoadLe16(bytes_, kLinesLow);
    return lines * line_clocks + LoadLe16(bytes_, kRemainder);
  }
  void set_exposure_clock(std::uint32_t clock, std::uint32_t line_clocks) {
    const std::uint32_t lines = clock / line_clocks;
    StoreLe16(bytes_, kLinesLow, static_cast<std::uint16_t>(lines & 0xFFFF));
    StoreLe16(bytes_, kLinesHigh, static_cast<std::uint16_t>(lines >> 16));
    StoreLe16(bytes_, kRemainder, static_cast<std::uint16_t>(clock % line_clocks));
  }

 private:
  static constexpr std::size_t kLinesLow = 2;
  static constexpr std::size_t kRemainder = 4;
  static constexpr std::size_t kGain = 6;
  static constexpr std::size_t kLinesHigh = 10;

  std::array<std::uint8_t, 64> bytes_{};
};

// The sensor of these models counts exposure in lines whose length depends on binning.
bool CountsBinnedLines(std::uint16_t product_id) {
  return product_id == 0x0111 || product_id == 0x0211;
}

// Blanking of a line in half-clocks by vertical (row) and horizontal (column) binning, and the
// floor of the line length, from the sensor's line timing.
constexpr std::uint32_t kLineBlanking[3][3] = {
    {450, 430, 420}, {796, 776, 766}, {1488, 1468, 1458}};

constexpr std::uint8_t kDigitalGainRegister = 0x14;
constexpr std::uint8_t kFrameRateFractionRegister = 86;
constexpr std::uint8_t kFrameRateIntegerRegister = 87;

}  // namespace

Status ExposureControl::Update(std::optional<std::uint16_t> gain,
                               std::optional<std::uint32_t> exposure_clock) {
  const std::uint32_t line_clocks = timing_.ExposureLineClocks();
  if (exposure_clock.has_value() && line_clocks == 0) {
    return error::kInvalidParameter;
  }
  GainExposureBlock block;
  const Status status = block.Read(channel_);
  if (!status.ok()) {
    return status;
  }
  if (exposure_clock.has_value()) {
    block.set_exposure_clock(*exposure_clock, line_clocks);
  }
  if (gain.has_value()) {
    block.set_gain(*gain);
  }
  return block.Write(channel_);
}

Status ExposureControl::SetExposureClock(std::uint32_t exposure_clock) {
  return Update(std::nullopt, exposure_clock);
}

Status ExposureControl::SetGain(std::uint16_t gain) { return Update(gain, std::nullopt); }

Status ExposureControl::SetGainAndExposureClock(std::uint16_t gain, std::uint32_t exposure_clock) {
  return Update(gain, exposure_clock);
}

Status ExposureControl::GetGainAndExposureClock(std::uint16_t* gain,
                                                std::uint32_t* exposure_clock) {
  GainExposureBlock block;
  const Status status = block.Read(channel_);
  if (status.ok()) {
    *gain = block.gain();
    *exposure_clock = block.exposure_clock(timing_.ExposureLineClocks());
  }
  return status;
}

Status ExposureControl::SetDigitalGain(std::uint16_t gain) {
  std::array<std::uint8_t, 2> data{};
  StoreLe16(data, 0, gain);
  return registers_.WriteDirect(kDigitalGainRegister, data);
}

Status ExposureControl::GetDigitalGain(std::uint16_t* gain) {
  std::array<std::uint8_t, 2> data{};
  const Status status = registers_.ReadDirect(kDigitalGainRegister, data);
  *gain = status.ok() ? LoadLe16(data, 0) : std::uint16_t{0};
  return status;
}

Status ExposureControl::ReadScale(ExposureScale* scale) {
  PixelClock clock;
  Status status = timing_.GetClock(&clock);
  scale->frequency = clock.frequency;
  if (!status.ok() || !CountsBinnedLines(identity_.product_id())) {
    return status;
  }
  SkippingAndBinning binning;
  status = timing_.GetSkippingAndBinning(&binning);
  const std::uint32_t row = std::min<std::uint32_t>(binning.vertical_binning, 2);
  const std::uint32_t column = std::min<std::uint32_t>(binning.horizontal_binning, 2);
  const std::uint32_t k = binning.vertical_binning < 2 ? binning.vertical_binning : 3;
  const std::uint32_t half_width = timing_.Settings().scan_mode().width / 2;
  scale->clocks_per_count = 2.0 * std::max(half_width + kLineBlanking[row][column], 346 * k + 486);
  scale->offset = 416 * k + 426;
  return status;
}

Status ExposureControl::ClockFromTime(float seconds, std::uint32_t* exposure_clock) {
  ExposureScale scale;
  const Status status = ReadScale(&scale);
  if (!status.ok()) {
    return status;
  }
  double value = scale.frequency * static_cast<double>(seconds);
  if (CountsBinnedLines(identity_.product_id())) {
    value = static_cast<float>((value + scale.offset) / scale.clocks_per_count);
  }
  const std::uint32_t longest = timing_.MaxLongExposureClock();
  if (value > longest) {
    *exposure_clock = longest;
  } else {
    *exposure_clock = value >= 1 ? static_cast<std::uint32_t>(value) : 1;
  }
  return {};
}

Status ExposureControl::TimeFromClock(std::uint32_t exposure_clock, float* seconds) {
  ExposureScale scale;
  const Status status = ReadScale(&scale);
  if (!status.ok()) {
    return status;
  }
  const std::uint32_t limited = std::min(exposure_clock, timing_.MaxLongExposureClock());
  const double count = limited == 0 ? timing_.MaxShortExposureClock() : limited;
  *seconds =
      scale.frequency == 0
          ? 0.0F
          : static_cast<float>((scale.clocks_per_count * count - scale.offset) / scale.frequency);
  return {};
}

Status ExposureControl::MeasuredFrameRate(float* fps) {
  std::array<std::uint8_t, 4> data{};
  const Status status =
      registers_.ReadBlock(static_cast<std::uint16_t>(device::RegisterBlock::kMain),
                           kFrameRateFractionRegister, kFrameRateIntegerRegister, data.data());
  if (status.ok()) {
    *fps = static_cast<float>(LoadLe16(data, 2) + LoadLe16(data, 0) / 65536.0);
  }
  return status;
}

Status ExposureControl::FrameLengthClocks(std::uint64_t* clocks) {
  const ScanSettingsBlock settings = timing_.Settings();
  const std::uint64_t line = settings.clocks_per_line();
  std::uint64_t lines = settings.lines_per_frame();
  if (ExposureLengthensFrame(settings.scan_mode().mode)) {
    std::uint16_t gain = 0;
    std::uint32_t exposure = 0;
    const Status status = GetGainAndExposureClock(&gain, &exposure);
    if (!status.ok()) {
      return status;
    }
    lines = std::max(lines, line == 0 ? 0 : exposure / line);
  }
  *clocks = line * lines;
  return {};
}

Status ExposureControl::OutputFrameRate(float* fps) {
  *fps = 0;
  if (identity_.Has(Function::kMeasuresFrameRate)) {
    return MeasuredFrameRate(fps);
  }
  std::uint64_t frame_length = 0;
  Status status = FrameLengthClocks(&frame_length);
  if (!status.ok()) {
    return status;
  }
  PixelClock clock;
  status = timing_.GetClock(&clock);
  if (status.ok() && frame_length != 0) {
    *fps = static_cast<float>(clock.frequency / static_cast<double>(frame_length));
  }
  return status;
}

}  // namespace vexa::settings
