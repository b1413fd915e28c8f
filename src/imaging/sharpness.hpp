/// \file
/// Sharpening: an unsharp mask with a threshold and a gain, in the caller's buffer.
#pragma once

#include <array>
#include <cstdint>

#include "imaging/kernels/frame_kernels.hpp"
#include "platform/mutex.hpp"
#include "platform/status.hpp"

namespace vexa::imaging {

/// How far a pixel moves away from its neighbours' mean, for each distance from it.
using BoostTable = std::array<std::uint8_t, 256>;

/// Zero up to the threshold `coring`; from there on `gain` hundredths for each level more, rounded
/// and at most 255. The products come from adding the factor again and again in single precision,
/// so that ties round as that sum happens to fall.
BoostTable MakeBoostTable(std::uint16_t gain, std::uint8_t coring);

/// Sharpens a VEXA_OUTPUT_MONO8, _BGR24 or _BGR32 image of width x height pixels, rows without
/// padding, by a table. Colours move by the step of their luminance; the outermost rows and columns
/// and all of an image below 3 x 3 stay. kInvalidParameter for other formats and for images that no
/// buffer can hold. Takes 8 bytes per column for the time of the call, and throws std::bad_alloc
/// when there are none; the image is then unchanged.
Status SharpenImage(const BoostTable& boost, std::uint32_t width, std::uint32_t height,
                    std::uint32_t output_format, std::uint8_t* image,
                    const FrameKernels& kernels = BestFrameKernels());

/// The sharpness settings of a camera. Any thread may call; an image is sharpened with one version
/// of the settings from first to last.
class Sharpness {
 public:
  struct Mode {
    std::uint8_t mode = 0;    ///< 0 is off, everything else on
    std::uint16_t gain = 0;   ///< hundredths
    std::uint8_t coring = 0;  ///< levels

    friend bool operator==(const Mode&, const Mode&) = default;
  };

  void SetMode(const Mode& mode);
  Mode GetMode() const;

  /// SharpenImage() with the present settings; nothing, with success, while the mode is 0.
  Status Apply(std::uint32_t width, std::uint32_t height, std::uint32_t output_format,
               std::uint8_t* image) const;

 private:
  mutable platform::Mutex mutex_;
  Mode mode_;
  BoostTable boost_{};
};

}  // namespace vexa::imaging
