#include "simulator/register_file.hpp"

#include <algorithm>
#include <cmath>

namespace vexa::simulator {
namespace {

constexpr std::uint16_t kOutputPins = 0x000C;  // pins 2 and 3 drive, pins 0 and 1 listen
constexpr std::uint16_t kUnityDigitalGain = 0x0100;
constexpr std::uint16_t kPowerUpClamp = 16;  // in 12-bit counts
constexpr std::uint16_t kUnused = 0xFFFF;

bool WaitsForApply(std::uint16_t number) {
  switch (number) {
    case reg::kDigitalClamp:
    case reg::kVerticalBlanking:
    case reg::kSkipBin:
    case reg::kBinningSum:
    case reg::kMirror:
    case reg::kGamma:
    case reg::kDefectMode:
      return true;
    default:
      return number >= reg::kWhiteBalanceMode && number <= reg::kAgcMaxGain + 1;
  }
}

bool HasCapability(std::uint64_t mask, unsigned bit) { return (mask >> bit & 1) != 0; }

}  // namespace

RegisterFile::RegisterFile(const CameraConfig& config) {
  main_[reg::kPinDirection] = kOutputPins;
  main_[reg::kLed] = 1;
  main_[reg::kDigitalGain] = kUnityDigitalGain;
  main_[reg::kDigitalClamp] = kPowerUpClamp;
  std::ranges::copy(BalancedGains(config), main_.begin() + reg::kWhiteBalanceGain);
  main_[reg::kWhiteBalanceMode] = 1;
  main_[reg::kAeMinClock] = 1;
  main_[reg::kLevelTarget] = 128;
  main_[reg::kAgcMaxGain] = MaxGainValue(config.capabilities);
  for (unsigned word = 0; word < 4; ++word) {
    main_[reg::kCapabilities + word] =
        static_cast<std::uint16_t>(config.capabilities >> (16 * word) & 0xFFFF);
  }
  defects_.fill(kUnused);
  Apply();
}

bool RegisterFile::HasBlock(std::uint16_t block) {
  return block == kMainBlock || block == kIoaBlock || block == kItaBlock || block == kJbaBlock ||
         block == kDefectBlock;
}

std::uint16_t RegisterFile::Get(std::uint16_t block, std::uint16_t number) const {
  if (number >= kBlockSize) return 0;
  switch (block) {
    case kMainBlock:
      return main_[number];
    case kIoaBlock:
      return ioa_[number];
    case kItaBlock:
      return ita_[number];
    case kJbaBlock:
      return jba_[number];
    case kDefectBlock:
      return defects_[number];
    default:
      return 0;
  }
}

bool RegisterFile::Set(std::uint16_t block, std::uint16_t number, std::uint16_t value) {
  if (number >= kBlockSize) return false;
  switch (block) {
    case kMainBlock:
      main_[number] = value;
      if (!WaitsForApply(number)) active_main_[number] = value;
      return true;
    case kIoaBlock:
      ioa_[number] = value;
      return true;
    case kItaBlock:
      ita_[number] = value;
      return true;
    case kJbaBlock:
      jba_[number] = value;
      return true;
    case kDefectBlock:
      defects_[number] = value;
      return true;
    default:
      return false;
  }
}

void RegisterFile::Apply() {
  active_main_ = main_;
  active_defects_ = defects_;
}

std::vector<PixelPosition> RegisterFile::DefectTable() const {
  std::vector<PixelPosition> table;
  for (std::size_t i = 0; i < kBlockSize; i += 2) {
    if (active_defects_[i] == kUnused && active_defects_[i + 1] == kUnused) continue;
    table.push_back({active_defects_[i], active_defects_[i + 1]});
  }
  return table;
}

std::array<std::uint16_t, 4> BalancedGains(const CameraConfig& config) {
  const auto gain = [](double strength) {
    const double value = std::round(128.0 / std::max(strength, 1.0 / 64));
    return static_cast<std::uint16_t>(std::clamp(value, 1.0, 65535.0));
  };
  const std::uint16_t green = gain(config.illuminant[1]);
  return {gain(config.illuminant[0]), green, green, gain(config.illuminant[2])};
}

std::uint16_t MaxGainValue(std::uint64_t capabilities) {
  const bool bit16 = HasCapability(capabilities, 16);
  const bool bit49 = HasCapability(capabilities, 49);
  if (bit16 == bit49) return 255;  // 33.7 dB
  return bit16 ? 355 : 156;        // 25 dB; 36 dB
}

double GainDecibels(std::uint64_t capabilities, std::uint16_t value) {
  const bool bit16 = HasCapability(capabilities, 16);
  const bool bit49 = HasCapability(capabilities, 49);
  if (bit16 == bit49) return value * 0.132;
  if (bit16) return value * 0.07038;
  const double amplitude = value < 21 ? 8.0 * (value + 8) : 28.0 * (value - 12);
  return 20 * std::log10(amplitude / 64);
}

}  // namespace vexa::simulator
