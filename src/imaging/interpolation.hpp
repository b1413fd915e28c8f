/// \file
/// Colour interpolation (demosaicing): an 8-bit raw frame becomes a BGR image.
#pragma once

#include <cstdint>

#include "imaging/kernels/dispatch.hpp"
#include "platform/status.hpp"

namespace vexa::imaging {

/// How missing colours are found.
enum class InterpolationMethod : std::uint8_t {
  kNone = 0,         ///< the raw value in blue, green and red
  kMosaic = 1,       ///< the raw value in its own colour, 0 in the others
  kNearest = 2,      ///< one colour per 2 x 2 cell, green per row of the cell
  kBilinear = 3,     ///< means of two neighbours, along rows, then along columns
  kFourTap = 4,      ///< (-1, 5, 5, -1) / 8, along rows, then along columns
  kCellCentred = 5,  ///< bilinear at the centre of the cell right below the pixel
};

/// Layouts that host-side image functions write.
enum class OutputFormat : std::uint32_t { kMono8 = 1, kBgr24 = 4, kBgr32 = 8 };

/// A conversion as the caller asks for it: codes unchecked, buffers dense (no padding between
/// rows), first row on top.
struct InterpolationRequest {
  std::uint32_t width = 0;   ///< pixels
  std::uint32_t height = 0;  ///< pixels
  std::uint16_t color_array = 0;
  std::uint8_t method = 0;
  std::uint32_t output_format = 0;
  const std::uint8_t* source = nullptr;  ///< width x height bytes
  std::uint8_t* destination = nullptr;   ///< width x height pixels of the output format
};

/// Interpolates the frame. Checks in this order, the first that applies decides:
///  1. kInvalidParameter if the output format is unknown. Format kMono8 is a copy of the frame
///     whatever method and colour array are; it goes on with check 5.
///  2. kInvalidParameter if the colour array is not one of 1..5, or the method is above 5. Method
///     kNone and colour array kMono (with any method) make a grey picture of any size, and go on
///     with check 5.
///  3. Nothing is written, and that is a success, if the height is below 2.
///  4. kInvalidParameter if the frame is smaller than the method needs: width 2 and height 4 for
///     kBilinear, width and height 6 for kFourTap, width 2 for kCellCentred.
///  5. Success without looking at the buffers if there are no pixels.
///  6. kInvalidParameter if a buffer is missing or larger than the address space.
/// A refused call leaves the destination untouched.
///
/// kMosaic and kNearest work on whole 2 x 2 cells: an odd last column or row is not written. The
/// other methods write every pixel, of odd sizes too. kBgr32 is what widening a kBgr24 image in
/// place makes, with no exception for pixels that are not written: whatever bytes stand where
/// their BGR24 is move along, and their fourth byte becomes 0.
///
/// Keeps no state; any thread may call it. Source and destination must not overlap, except that
/// kMono8 copies between overlapping buffers too.
Status InterpolateColor(const InterpolationRequest& request,
                        const RowKernels& kernels = BestRowKernels());

}  // namespace vexa::imaging
