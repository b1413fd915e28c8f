#include "settings/sensor_timing.hpp"

#include <array>
#include <mutex>

#include "platform/bytes.hpp"

namespace vexa::settings {
namespace {

using device::Function;
using device::Request;

constexpr std::uint8_t kVerticalBlankingRegister = 23;
constexpr std::uint8_t kSkippingAndBinningRegister = 33;

constexpr std::uint8_t kClockBlockSize = 10;
constexpr std::uint8_t kClockRequestCode = 0x22;
constexpr std::size_t kClockMode = 2;
constexpr std::size_t kClockFrequency = 6;

std::uint32_t Clocks(std::uint32_t line_clocks, const ExposureLimit& limit) {
  return line_clocks * limit.lines + limit.remainder;
}

}  // namespace

Status SensorTiming::Refresh() {
  ScanSettingsBlock block = Settings();
  const Status status = channel_.Read(Request::kScanSettings, block.bytes());
  if (!identity_.Has(Function::kSuppliesTimingLimits)) {
    block.DeriveLimits();
  }
  const std::lock_guard lock(mutex_);
  settings_ = block;
  return status;
}

ScanSettingsBlock SensorTiming::Settings() const {
  const std::lock_guard lock(mutex_);
  return settings_;
}

Status SensorTiming::SetClock(const PixelClock& clock) {
  std::array<std::uint8_t, kClockBlockSize> block{kClockBlockSize, kClockRequestCode};
  StoreLe32(block, kClockMode, clock.mode);
  StoreLe32(block, kClockFrequency, clock.frequency);
  return channel_.Write(Request::kClock, block);
}

Status SensorTiming::GetClock(PixelClock* clock) {
  std::array<std::uint8_t, kClockBlockSize> block{};
  const Status status = channel_.Read(Request::kClock, block);
  if (status.ok()) {
    *clock = {.mode = LoadLe32(block, kClockMode), .frequency = LoadLe32(block, kClockFrequency)};
  }
  return status;
}

Status SensorTiming::SetScanMode(const ScanMode& scan_mode) {
  const ScanSettingsBlock block(identity_.scan_settings_tag(), scan_mode);
  const Status status = channel_.Write(Request::kScanSettings, block.bytes());
  return status.ok() ? Refresh() : status;
}

Status SensorTiming::SetSkippingAndBinning(const SkippingAndBinning& value) {
  const auto nibble = [](std::uint8_t number, int shift) { return (number & 0xF) << shift; };
  const auto word = static_cast<std::uint16_t>(
      nibble(value.horizontal_skipping, 12) | nibble(value.horizontal_binning, 8) |
      nibble(value.vertical_skipping, 4) | nibble(value.vertical_binning, 0));
  const Status status = registers_.WriteAndApply(kSkippingAndBinningRegister, word);
  return status.ok() ? Refresh() : status;
}

Status SensorTiming::GetSkippingAndBinning(SkippingAndBinning* value) {
  *value = {};
  std::uint16_t word = 0;
  const Status status = registers_.Read(kSkippingAndBinningRegister, &word);
  if (status.ok()) {
    const auto nibble = [word](int shift) {
      return static_cast<std::uint8_t>((word >> shift) & 0xF);
    };
    *value = {.horizontal_skipping = nibble(12),
              .vertical_skipping = nibble(4),
              .horizontal_binning = nibble(8),
              .vertical_binning = nibble(0)};
  }
  return status;
}

Status SensorTiming::SetVerticalBlanking(std::uint16_t lines) {
  if (!identity_.Has(Function::kVerticalBlanking)) {
    return error::kInvalidParameter;
  }
  const Status status = registers_.WriteAndApply(kVerticalBlankingRegister, lines);
  return status.ok() ? Refresh() : status;
}

Status SensorTiming::GetVerticalBlanking(std::uint16_t* lines) {
  if (!identity_.Has(Function::kVerticalBlanking)) {
    return error::kInvalidParameter;
  }
  return registers_.Read(kVerticalBlankingRegister, lines);
}

std::uint32_t SensorTiming::ExposureLineClocks() const {
  return Settings().shutter_max_clock() + 1;
}

std::uint32_t SensorTiming::MaxShortExposureClock() const {
  const ScanSettingsBlock settings = Settings();
  return Clocks(settings.shutter_max_clock() + 1, settings.short_exposure());
}

std::uint32_t SensorTiming::MaxLongExposureClock() const {
  const ScanSettingsBlock settings = Settings();
  return Clocks(settings.shutter_max_clock() + 1, settings.long_exposure());
}

}  // namespace vexa::settings
