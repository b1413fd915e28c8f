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

/// Interpolates the frame. kInvalidParameter, with the destination untouched, when
/// (checked in this order)
///  1. the output format is unknown; format kMono8 is a copy of the frame, whatever method and
///     colour array are, and skips checks 2 to 4;
///  2. the colour array is not one of 1..5, or the method above 5. Method kNone and colour array
///     kMono both mean a grey picture: the method is not looked at with kMono. They have no
///     smallest size;
///  3. (height below 2: methods 1 to 5 write no pixels and succeed, whatever the width is)
///  4. the frame is smaller than the method needs: width 2 and height 4 for kBilinear, width and
///     height 6 for kFourTap, width 2 for kCellCentred;
///  5. anything is to be read or written and a buffer is missing or larger than the address space.
///
/// kMosaic and kNearest work on whole 2 x 2 cells: an odd last column or row is not written. The
/// other methods write every pixel, of odd sizes too. kBgr32 stands for kBgr24 widened in place,
/// and the pixels that kBgr24 leaves unwritten are no exception: their bytes move with the
/// others, and their fourth byte becomes 0.
///
/// Keeps no state; any thread may call it. Source and destination must not overlap, except that
/// kMono8 copies between overlapping buffers too.
Status InterpolateColor(const InterpolationRequest& request,
                        const RowKernels& kernels = BestRowKernels());

}  // namespace vexa::imaging
