/// \file
/// The camera's 16-bit registers.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/status.hpp"
#include "simulator/camera_settings.hpp"

namespace vexa::simulator {

/// Register numbers of block 0, which both addressing forms reach.
namespace reg {
inline constexpr std::uint16_t kPinDirection = 0x00;
inline constexpr std::uint16_t kPinPolarity = 0x01;
inline constexpr std::uint16_t kPinStatus = 0x02;
inline constexpr std::uint16_t kPinMode = 0x04;  // of pin 0; three more follow
inline constexpr std::uint16_t kLed = 0x0F;
inline constexpr std::uint16_t kDigitalGain = 0x14;
inline constexpr std::uint16_t kDigitalClamp = 21;
inline constexpr std::uint16_t kVerticalBlanking = 23;
inline constexpr std::uint16_t kSkipBin = 33;
inline constexpr std::uint16_t kBinningSum = 46;
inline constexpr std::uint16_t kTriggerMode = 0x30;    // 32 bits
inline constexpr std::uint16_t kExposureDelay = 0x32;  // 32 bits
inline constexpr std::uint16_t kReadOutDelay = 0x3C;   // 32 bits, the last of six
inline constexpr std::uint16_t kMirror = 63;
inline constexpr std::uint16_t kWhiteBalanceGain = 64;  // R, Gr, Gb, B
inline constexpr std::uint16_t kWhiteBalanceMode = 68;
inline constexpr std::uint16_t kAeMinClock = 71;  // 32 bits
inline constexpr std::uint16_t kLevelTarget = 74;
inline constexpr std::uint16_t kAgcMaxGain = 75;
inline constexpr std::uint16_t kGamma = 77;
inline constexpr std::uint16_t kDefectMode = 78;
inline constexpr std::uint16_t kCommand = 80;
inline constexpr std::uint16_t kFrameRateFraction = 86;
inline constexpr std::uint16_t kFrameRateInteger = 87;
inline constexpr std::uint16_t kSoftwareStatus = 0x66;
inline constexpr std::uint16_t kCapabilities = 0x68;  // 64 bits
}  // namespace reg

/// Block numbers.
inline constexpr std::uint16_t kMainBlock = 0;
inline constexpr std::uint16_t kIoaBlock = 16;
inline constexpr std::uint16_t kItaBlock = 32;
inline constexpr std::uint16_t kJbaBlock = 76;
inline constexpr std::uint16_t kDefectBlock = 129;

/// Five blocks of 128 registers, as last written, and the copies of the main and defect blocks
/// that are in force. Most registers of the main block take effect when written; those that
/// change the picture's shape wait for the apply command.
class RegisterFile {
 public:
  static constexpr std::size_t kBlockSize = 128;
  using Block = std::array<std::uint16_t, kBlockSize>;

  explicit RegisterFile(const CameraConfig& config);

  static bool HasBlock(std::uint16_t block);

  std::uint16_t Get(std::uint16_t block, std::uint16_t number) const;
  /// Stores a value; false when block or number do not exist.
  bool Set(std::uint16_t block, std::uint16_t number, std::uint16_t value);
  /// Takes over all registers that wait for it.
  void Apply();

  /// Value in force of a register (two for 32-bit values, low word first) of the main block.
  std::uint16_t Active(std::uint16_t number) const { return active_main_[number]; }
  std::uint32_t Active32(std::uint16_t number) const {
    return active_main_[number] | std::uint32_t{active_main_[number + 1u]} << 16;
  }
  /// Positions in force of the defect table, without unused entries (0xFFFF).
  std::vector<PixelPosition> DefectTable() const;

 private:
  Block main_{};
  Block ioa_{};
  Block ita_{};
  Block jba_{};
  Block defects_{};
  Block active_main_{};
  Block active_defects_{};
};

/// White-balance gains (128 is unity; R, Gr, Gb, B) that make grey things grey under the camera's
/// light.
std::array<std::uint16_t, 4> BalancedGains(const CameraConfig& config);

/// The highest analog gain value of a model and its gain in decibels above value 0: the three
/// curves of the family, chosen by capability bits 16 and 49.
std::uint16_t MaxGainValue(std::uint64_t capabilities);
double GainDecibels(std::uint64_t capabilities, std::uint16_t value);

}  // namespace vexa::simulator
