/// \file
/// Measurements on raw frames, separately for the four positions of the 2 x 2 filter pattern.
#pragma once

#include <array>
#include <cstdint>

#include "imaging/kernels/frame_kernels.hpp"
#include "platform/status.hpp"

namespace vexa::imaging {

/// Position of a pixel in its cell, counted from the frame's first pixel: 2 * (y mod 2) + x mod 2.
inline constexpr std::size_t kPatternPositions = 4;

/// Where the colours of a colour array lie in a cell.
struct PatternColors {
  std::size_t red;
  std::array<std::size_t, 2> green;  // of the red row, of the blue row
  std::size_t blue;
};

/// False for codes other than 1 to 5. Monochrome is taken for RGGB.
bool FindPatternColors(std::uint16_t color_array, PatternColors* colors);

/// A part of a raw frame whose mean sample values are wanted.
struct AverageRequest {
  std::uint32_t width = 0;  // of the frame
  std::uint32_t height = 0;
  std::uint16_t color_array = 0;
  std::uint32_t transfer_format = 0;  // 1: bytes; 2, 4, 8, 16: little-endian words
  const std::uint8_t* frame = nullptr;
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  std::uint32_t region_width = 0;  // cut at the frame's edges
  std::uint32_t region_height = 0;
};

/// Means of the four positions; of a monochrome frame the mean of all samples and three times 0. A
/// position without samples has the mean 0. kInvalidParameter, and nothing changed, for another
/// colour array or transfer format.
Status AveragePixelValue(const AverageRequest& request, std::array<float, kPatternPositions>* mean,
                         const FrameKernels& kernels = BestFrameKernels());

/// How often each value of 8-bit samples occurs.
using Histogram = std::array<std::uint32_t, 256>;

/// Histograms and mean values of the positions; the means of a frame without a whole cell are 0.
struct PatternStatistics {
  std::array<Histogram, kPatternPositions> histograms;
  std::array<double, kPatternPositions> means;
};

/// Measures the whole cells of an 8-bit raw frame: an odd last row or column does not count.
PatternStatistics MeasurePattern(std::uint32_t width, std::uint32_t height,
                                 const std::uint8_t* frame);

}  // namespace vexa::imaging
