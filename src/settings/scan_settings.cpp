#include "settings/scan_settings.hpp"

#include <algorithm>

#include "platform/bytes.hpp"

namespace vexa::settings {
namespace {

constexpr std::uint8_t kRequestCode = 0x12;
constexpr std::size_t kTag = 2;
constexpr std::size_t kWidth = 6;
constexpr std::size_t kHeight = 10;
constexpr std::size_t kOffsetX = 14;
constexpr std::size_t kOffsetY = 18;
constexpr std::size_t kScanMode = 22;
constexpr std::size_t kLinesPerFrame = 26;
constexpr std::size_t kClocksPerLine = 28;
constexpr std::size_t kMaxGain = 30;
constexpr std::size_t kMinGain = 32;
constexpr std::size_t kShutterMaxClock = 36;
constexpr std::size_t kShortRemainder = 40;
constexpr std::size_t kShortLines = 44;
constexpr std::size_t kLongRemainder = 48;
constexpr std::size_t kLongLines = 52;

constexpr std::uint32_t kLongestExposureLines = 4090;

}  // namespace

bool ExposureLengthensFrame(std::uint16_t scan_mode) {
  return scan_mode == 0x0004 || scan_mode == 0x0020;
}

bool AllowsLongExposure(std::uint16_t scan_mode) {
  return scan_mode == 0x0001 || scan_mode == 0x0002 || scan_mode == 0x0040 || scan_mode == 0x0080 ||
         ExposureLengthensFrame(scan_mode);
}

ScanSettingsBlock::ScanSettingsBlock() {
  bytes_[0] = kSize;
  bytes_[1] = kRequestCode;
}

ScanSettingsBlock::ScanSettingsBlock(std::uint32_t tag, const ScanMode& scan_mode)
    : ScanSettingsBlock() {
  StoreLe32(bytes_, kTag, tag);
  StoreLe32(bytes_, kWidth, scan_mode.width);
  StoreLe32(bytes_, kHeight, scan_mode.height);
  StoreLe32(bytes_, kOffsetX, scan_mode.offset_x);
  StoreLe32(bytes_, kOffsetY, scan_mode.offset_y);
  StoreLe16(bytes_, kScanMode, scan_mode.mode);
}

ScanMode ScanSettingsBlock::scan_mode() const {
  return {.mode = LoadLe16(bytes_, kScanMode),
          .offset_x = LoadLe32(bytes_, kOffsetX),
          .offset_y = LoadLe32(bytes_, kOffsetY),
          .width = LoadLe32(bytes_, kWidth),
          .height = LoadLe32(bytes_, kHeight)};
}

std::uint16_t ScanSettingsBlock::lines_per_frame() const {
  return LoadLe16(bytes_, kLinesPerFrame);
}

std::uint16_t ScanSettingsBlock::clocks_per_line() const {
  return LoadLe16(bytes_, kClocksPerLine);
}

std::uint16_t ScanSettingsBlock::max_gain() const { return LoadLe16(bytes_, kMaxGain); }

std::uint16_t ScanSettingsBlock::min_gain() const { return LoadLe16(bytes_, kMinGain); }

std::uint32_t ScanSettingsBlock::shutter_max_clock() const {
  return LoadLe32(bytes_, kShutterMaxClock);
}

ExposureLimit ScanSettingsBlock::short_exposure() const {
  return {.lines = LoadLe32(bytes_, kShortLines), .remainder = LoadLe32(bytes_, kShortRemainder)};
}

ExposureLimit ScanSettingsBlock::long_exposure() const {
  return {.lines = LoadLe32(bytes_, kLongLines), .remainder = LoadLe32(bytes_, kLongRemainder)};
}

void ScanSettingsBlock::DeriveLimits() {
  const std::uint32_t lines = lines_per_frame();
  StoreLe32(bytes_, kShutterMaxClock, std::uint32_t{clocks_per_line()} - 1);
  StoreLe32(bytes_, kShortLines, lines);
  StoreLe32(bytes_, kShortRemainder, 0);
  StoreLe32(bytes_, kLongLines,
            AllowsLongExposure(scan_mode().mode) ? kLongestExposureLines : lines);
  StoreLe32(bytes_, kLongRemainder, 0);
}

}  // namespace vexa::settings
