/// \file
/// Frames in the layouts that cameras transfer become images in the layouts of the host.
#pragma once

#include <cstdint>

#include "imaging/kernels/pixel_dispatch.hpp"
#include "platform/status.hpp"

namespace vexa::imaging {

/// A conversion as the caller asks for it: codes unchecked, buffers dense, first row on top,
/// source and destination not overlapping.
struct ConversionRequest {
  std::uint32_t width = 0;   ///< pixels
  std::uint32_t height = 0;  ///< pixels
  std::uint32_t transfer_format = 0;
  std::uint32_t output_format = 0;  ///< ignored by ConvertTo8Bits
  const std::uint8_t* source = nullptr;
  std::uint8_t* destination = nullptr;
};

/// Reduces a raw or monochrome frame to 8 bits per pixel. The deeper formats of one bit give the
/// high 8 of their significant bits, without limiting larger words; every other code counts as 8
/// bits and is copied, except that the colour formats are refused.
///
/// kInvalidParameter for BGR24, BGR30 and the YUV formats; for buffers that are missing or larger
/// than the address space, unless there are no pixels. Keeps no state; any thread may call it.
Status ConvertTo8Bits(const ConversionRequest& request,
                      const PixelKernels& kernels = BestPixelKernels());

/// Converts a frame to the output format; the fourth byte of BGR32 pixels keeps its value. A
/// transfer format that is none of the known ones writes nothing, and that is a success.
///
/// kInvalidParameter for an unknown output format; for a YUV frame whose width is not a multiple of
/// 4, whose rows end inside a group; and for buffers as above. Keeps no state; any thread may call
/// it.
Status ConvertToImage(const ConversionRequest& request,
                      const PixelKernels& kernels = BestPixelKernels());

}  // namespace vexa::imaging
