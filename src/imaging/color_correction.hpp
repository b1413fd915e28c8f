/// \file
/// Colour matrix, hue and saturation of BGR images.
#pragma once

#include <array>
#include <cstdint>

#include "imaging/kernels/pixel_dispatch.hpp"
#include "platform/mutex.hpp"
#include "platform/status.hpp"

namespace vexa::imaging {

/// Where the user's colour matrix comes from.
enum class ColorMatrixMode : std::uint8_t { kOff = 0, kUser = 255 };

enum class HueSaturationMode : std::uint8_t { kOff = 0, kOn = 1 };

/// Three rows for the outputs red, green and blue, each with the factors of the inputs red, green
/// and blue and an offset, in hundredths (the offset in hundredths of a level).
using UserColorMatrix = std::array<std::int16_t, 12>;

inline constexpr UserColorMatrix kIdentityColorMatrix = {100, 0,   0,   0,  //
                                                         0,   100, 0,   0,  //
                                                         0,   0,   100, 0};

struct ColorMatrixSetting {
  std::uint8_t mode = static_cast<std::uint8_t>(ColorMatrixMode::kOff);
  UserColorMatrix matrix = kIdentityColorMatrix;
};

struct HueSaturationSetting {
  std::uint8_t mode = static_cast<std::uint8_t>(HueSaturationMode::kOff);
  std::int16_t hue = 0;            ///< tenths of a degree
  std::uint16_t saturation = 100;  ///< hundredths
};

/// A 3 x 3 matrix in single precision: rows output red, green, blue; columns input red, green,
/// blue.
using ColorMatrix = std::array<std::array<float, 3>, 3>;

/// Turns hues and scales the distance from grey, at constant luminance.
ColorMatrix HueSaturationMatrix(std::int16_t hue, std::uint16_t saturation);

/// The colour state of one camera. Every operation holds the object's mutex, so that an image is
/// corrected with one version of the tables; any thread may call any of them.
class ColorCorrection {
 public:
  /// `matrix` is read in mode kUser only; kOff stores the identity. kLastErrorKept for another
  /// mode, kInvalidParameter for a missing matrix; nothing is changed then.
  Status SetMatrix(std::uint8_t mode, const UserColorMatrix* matrix);
  ColorMatrixSetting Matrix() const;

  /// Mode kOff stores hue 0 and saturation 100. kLastErrorKept for another mode than the two;
  /// nothing is changed then.
  Status SetHueSaturation(const HueSaturationSetting& setting);
  HueSaturationSetting HueSaturation() const;

  /// Corrects a BGR24 or BGR32 image in place; the fourth byte of BGR32 keeps its value. Nothing
  /// happens, and that is a success, to other formats and while both modes are off.
  /// kInvalidParameter for a buffer that is missing or larger than the address space.
  Status Correct(std::uint32_t width, std::uint32_t height, std::uint32_t output_format,
                 std::uint8_t* image, const PixelKernels& kernels = BestPixelKernels()) const;

 private:
  void BuildTables();

  mutable platform::Mutex mutex_;
  ColorMatrixSetting matrix_;
  HueSaturationSetting hue_saturation_;
  ColorMix mix_{};  // built by the first Set; not read while both modes are off
};

}  // namespace vexa::imaging
