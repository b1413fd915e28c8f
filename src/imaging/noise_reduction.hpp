/// \file
/// Noise reduction of 8-bit raw frames in the caller's buffer: impulses and the dark frame.
#pragma once

#include <cstdint>
#include <memory>

#include "imaging/kernels/frame_kernels.hpp"
#include "platform/status.hpp"

namespace vexa::imaging {

/// VEXA_NOISE_REDUCTION_ codes.
enum class NoiseReductionMode : std::uint32_t {
  kOff = 0,
  kImpulse = 1,
  kDarkFrame = 2,
  kStoreDarkFrame = 0x80000000,
};

/// A raw frame: width x height bytes, rows without padding.
struct RawFrame {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint16_t color_array = 0;  ///< VEXA_COLOR_ARRAY_ code
  std::uint8_t* samples = nullptr;
};

/// The noise reduction of one camera, with its dark frame. No lock: calls must not overlap.
class CNoiseReduction {
 public:
  explicit CNoiseReduction(const FrameKernels& kernels = BestFrameKernels()) : kernels_(kernels) {}
  virtual ~CNoiseReduction() = default;
  CNoiseReduction(const CNoiseReduction&) = delete;
  CNoiseReduction& operator=(const CNoiseReduction&) = delete;

  /// Does what `mode`, a VEXA_NOISE_REDUCTION_ code, says. kInvalidParameter for other modes and
  /// for frames that no buffer can hold, and:
  ///
  /// kImpulse: for colour arrays other than monochrome, RGGB and BGGR; the frame is unchanged.
  /// kDarkFrame: when the stored frame, if there is one, has another size or colour array (the
  /// frame is unchanged), and for colour arrays other than monochrome and RGGB, whose saturated
  /// samples cannot be repaired (the dark frame is subtracted all the same).
  ///
  /// Throws std::bad_alloc, with the frame unchanged, when there is no memory for a copy: of three
  /// rows, or of the dark frame, of which then none is stored any more.
  Status Apply(std::uint32_t mode, const RawFrame& frame);

 private:
  struct DarkFrame {
    std::unique_ptr<std::uint8_t[]> samples;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t color_array = 0;
  };

  Status StoreDarkFrame(const RawFrame& frame);
  Status SubtractDarkFrame(const RawFrame& frame) const;

  const FrameKernels& kernels_;
  DarkFrame dark_;
};

/// The impulse filter; see CNoiseReduction::Apply().
Status ReduceImpulses(const RawFrame& frame, const FrameKernels& kernels);

/// Subtracts a dark frame of the same size and repairs saturated samples; see
/// CNoiseReduction::Apply().
Status SubtractDark(const std::uint8_t* dark, const RawFrame& frame, const FrameKernels& kernels);

}  // namespace vexa::imaging
