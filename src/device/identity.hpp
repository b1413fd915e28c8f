/// \file
/// Who the camera is and what it can do, read once when it is opened.
#pragma once

#include <array>
#include <cstdint>

#include "device/control_channel.hpp"
#include "platform/status.hpp"

namespace vexa::device {

/// Optional functions that the library itself asks for.
enum class Function : std::uint32_t {
  kSoftSubTrigger = 1,
  kGainCurve1 = 16,
  kMeasuresFrameRate = 20,
  kVerticalBlanking = 21,
  kHorizontalMirror = 22,
  kVerticalMirror = 23,
  kWhiteBalance = 24,
  kCameraGainControl = 25,
  kCameraExposureControl = 26,
  kSuppliesTimingLimits = 48,
  kGainCurve2 = 49,
  kDigitalClamp = 55,
  kCameraGamma = 57,
  kDefectPixelCorrection = 59,
  kBinningSum = 61,
};

/// The camera information block and the capability mask.
class CameraIdentity {
 public:
  /// Reads both from the camera. A maximum size that the camera leaves open in either direction is
  /// replaced by the model's in both. Fails when the camera does not answer.
  Status Read(ControlChannel& channel);

  std::uint16_t version_word_a() const { return Word(2); }
  std::uint16_t product_id() const { return Word(4); }
  std::uint16_t variant() const { return Word(6); }
  std::uint16_t firmware() const { return Word(8); }
  /// Colour array of the sensor, before mirroring.
  std::uint16_t sensor_color_array() const { return Word(10); }
  /// Bytes in front of the image data of every frame.
  std::uint16_t frame_header_size() const { return Word(12); }
  std::uint32_t scan_settings_tag() const { return DoubleWord(14); }
  std::uint32_t transfer_format_mask() const { return DoubleWord(18); }
  std::uint16_t scan_mode_mask() const { return Word(26); }
  std::uint32_t clock_mode_mask() const { return DoubleWord(40); }
  std::uint32_t max_width() const { return DoubleWord(kMaxWidthOffset); }
  std::uint32_t max_height() const { return DoubleWord(kMaxHeightOffset); }

  bool HasRegisterAccess() const;
  /// Whether the model has an optional function, by number: the capability mask with the
  /// exceptions per model, and the functions above 255 that are not in the mask.
  bool HasFunction(std::uint32_t function) const;
  bool Has(Function function) const { return HasFunction(static_cast<std::uint32_t>(function)); }

 private:
  static constexpr std::size_t kInformationSize = 64;
  static constexpr std::size_t kMaxWidthOffset = 56;
  static constexpr std::size_t kMaxHeightOffset = 60;

  std::uint16_t Word(std::size_t offset) const;
  std::uint32_t DoubleWord(std::size_t offset) const;
  bool MaskBit(std::uint32_t bit) const;

  std::array<std::uint8_t, kInformationSize> information_{};  // reply of request 0x11
  std::array<std::uint8_t, 8> capabilities_{};                // four 16-bit words, bit 0 first
};

}  // namespace vexa::device
