/// \file
/// Mirrors, quarter turns and transposes of 8-bit frames in the caller's buffer.
#pragma once

#include <cstdint>

#include "imaging/kernels/frame_kernels.hpp"
#include "platform/status.hpp"

namespace vexa::imaging {

/// Size and colour array code of a frame, before and after.
struct FrameShape {
  std::uint32_t width = 0;   ///< pixels
  std::uint32_t height = 0;  ///< pixels
  std::uint16_t color_array = 0;

  friend bool operator==(const FrameShape&, const FrameShape&) = default;
};

/// Mirrors or turns a frame of width x height bytes, rows without padding, and brings `shape` up to
/// date.
///
/// `operation` is a VEXA_MIRROR_, VEXA_ROTATE_ or VEXA_TRANSPOSE_ code, all others do nothing;
/// `rotation` a VEXA_ROTATION_ code. With a quarter turn only the mirror bits 0 and 1 of the
/// operation count, whatever its other bits are; the mirror comes first. kInvalidParameter for
/// other `rotation` codes and for a frame that no buffer can hold. Quarter turns and transposes
/// need a copy of the frame for the time of the call and throw std::bad_alloc when there is no
/// memory for it. Frame and shape change only when the call succeeds. Keeps no state; any thread
/// may call it.
Status MirrorOrRotate(std::uint8_t operation, std::uint8_t rotation, FrameShape* shape,
                      std::uint8_t* frame, const FrameKernels& kernels = BestFrameKernels());

}  // namespace vexa::imaging
