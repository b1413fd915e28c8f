/// \file
/// Tone curves that the host applies to frames and images.
#pragma once

#include <array>
#include <cstdint>

#include "imaging/bayer_tables.hpp"
#include "imaging/kernels/pixel_dispatch.hpp"
#include "platform/mutex.hpp"
#include "platform/status.hpp"

namespace vexa::imaging {

/// How a channel's table is made.
enum class GammaMode : std::uint8_t {
  kOff = 0,      ///< the identity
  kCurve = 1,    ///< from gamma, brightness and contrast
  kReverse = 2,  ///< the curve, read from its end
  kTable = 255,  ///< as the caller gives it
};

/// Channels: luminance, then the four positions of the Bayer cell in the order of BayerChannel.
inline constexpr std::uint8_t kGammaY = 0;
inline constexpr std::uint8_t kGammaChannels = 5;

/// What a channel's table was made from.
struct GammaSetting {
  std::uint8_t mode = static_cast<std::uint8_t>(GammaMode::kOff);
  std::uint16_t gamma = 100;    ///< hundredths: 200 is the exponent 0.5
  std::int16_t brightness = 0;  ///< levels added to the input
  std::uint8_t contrast = 0;    ///< levels cut off at each end, 127 at most count
};

/// The tables of one camera. Every operation holds the object's mutex, so that a frame is corrected
/// with one version of the tables; any thread may call any of them.
class Gamma {
 public:
  Gamma();

  /// Sets a channel. `table` (256 bytes) is read in mode kTable only. Modes kOff and kTable store
  /// gamma 100, brightness 0 and contrast 0. kInvalidParameter for an unknown channel or mode,
  /// gamma 0 in modes kCurve and kReverse, and a missing table; nothing is changed then.
  Status Set(std::uint8_t channel, const GammaSetting& setting, const std::uint8_t* table);

  /// Reads a channel; kInvalidParameter for an unknown one.
  Status Get(std::uint8_t channel, GammaSetting* setting, LookUpTable* table) const;

  /// Applies the four Bayer tables to a raw frame of width x height bytes, in place: whole 2 x 2
  /// cells only. Nothing happens while all four channels are off and to monochrome frames.
  /// kInvalidParameter for a buffer that is missing or larger than the address space.
  Status CorrectRaw(std::uint32_t width, std::uint32_t height, std::uint16_t color_array,
                    std::uint8_t* frame, const PixelKernels& kernels = BestPixelKernels()) const;

  /// Applies the luminance table in place: to the pixels of an 8-bit image, to the luminance of
  /// those of a BGR image (whose hue is kept). Nothing happens while the channel is off, whatever
  /// the format. kInvalidParameter for another format, and for a buffer as above.
  Status CorrectImage(std::uint32_t width, std::uint32_t height, std::uint32_t output_format,
                      std::uint8_t* image, const PixelKernels& kernels = BestPixelKernels()) const;

 private:
  bool RawIsOff() const;
  LookUpTable& TableOf(std::uint8_t channel);

  mutable platform::Mutex mutex_;
  std::array<GammaSetting, kGammaChannels> settings_;
  LookUpTable luminance_;
  BayerTables raw_;
};

}  // namespace vexa::imaging
