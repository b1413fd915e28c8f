/// \file
/// One look-up table for each position of the Bayer cell, applied to raw frames.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "imaging/kernels/pixel_dispatch.hpp"

namespace vexa::imaging {

/// A new value for each 8-bit value.
using LookUpTable = std::array<std::uint8_t, 256>;

/// Indices into BayerTables: the sample's colour, for green with that of its row's other samples.
enum BayerChannel : std::size_t { kBayerR = 0, kBayerGr = 1, kBayerGb = 2, kBayerB = 3 };
using BayerTables = std::array<LookUpTable, 4>;

/// Replaces every sample of an 8-bit raw frame by its table's entry, in place.
///
/// Works on whole 2 x 2 cells: an odd last row or column stays as it is, and so does a frame
/// without a whole cell. `frame` holds width x height bytes, rows without padding. Colour array
/// codes other than GRBG, GBRG and BGGR are taken for RGGB (callers sort out monochrome).
/// Keeps no state; any thread may call it.
void ApplyBayerTables(const BayerTables& tables, std::uint32_t width, std::uint32_t height,
                      std::uint16_t color_array, std::uint8_t* frame,
                      const PixelKernels& kernels = BestPixelKernels());

}  // namespace vexa::imaging
