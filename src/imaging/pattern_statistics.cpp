#include "imaging/pattern_statistics.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

#include "imaging/color_array.hpp"

namespace vexa::imaging {
namespace {

// Of the samples in even and in odd places of a row.
using PairSums = std::uint64_t[2];

// Sums of words of 16 bits in fields of 32.
class Lanes {
 public:
  // So many words fill a field at most to its end.
  static constexpr std::size_t kLongest = 0x10001;

  void Add(std::uint64_t words) { fields_ += words & 0x0000FFFF'0000FFFF; }
  std::uint64_t Sum() const { return (fields_ & 0xFFFFFFFF) + (fields_ >> 32); }

 private:
  std::uint64_t fields_ = 0;
};

void SumWords(const std::uint8_t* samples, std::size_t count, PairSums& sums) {
  static_assert(std::endian::native == std::endian::little, "samples are little-endian");
  constexpr std::size_t kAtOnce = 4;
  std::size_t i = 0;
  while (count - i >= kAtOnce) {
    Lanes even;
    Lanes odd;
    const std::size_t end = i + std::min((count - i) / kAtOnce, Lanes::kLongest) * kAtOnce;
    for (; i < end; i += kAtOnce) {
      std::uint64_t words = 0;
      std::memcpy(&words, samples + 2 * i, sizeof(words));
      even.Add(words);
      odd.Add(words >> 16);
    }
    sums[0] += even.Sum();
    sums[1] += odd.Sum();
  }
  for (; i < count; ++i) {
    sums[i % 2] += samples[2 * i] | unsigned{samples[2 * i + 1]} << 8;
  }
}

// Region [x, end_x) x [y, end_y) of a frame.
struct Region {
  std::uint64_t x, y, end_x, end_y;
};

using Sums = std::array<std::uint64_t, kPatternPositions>;

Sums SumRegion(const AverageRequest& request, const Region& region, const FrameKernels& kernels) {
  const bool has_words = request.transfer_format != 1;
  Sums sums{};
  for (std::uint64_t y = region.y; y < region.end_y; ++y) {
    const auto first = static_cast<std::size_t>(y * request.width + region.x);
    const auto count = static_cast<std::size_t>(region.end_x - region.x);
    PairSums row{};
    if (has_words) {
      SumWords(request.frame + 2 * first, count, row);
    } else {
      kernels.sum_pairs(request.frame + first, count, row);
    }
    const auto left = static_cast<std::size_t>(2 * (y & 1) + (region.x & 1));
    sums[left] += row[0];
    sums[left ^ 1] += row[1];
  }
  return sums;
}

// How many of the numbers in [first, end) have a parity.
std::uint64_t CountOf(std::uint64_t parity, std::uint64_t first, std::uint64_t end) {
  return (end + 1 - parity) / 2 - (first + 1 - parity) / 2;
}

float Mean(std::uint64_t sum, std::uint64_t count) {
  return count == 0 ? 0.0F
                    : static_cast<float>(static_cast<double>(sum) / static_cast<double>(count));
}

Region RegionOf(const AverageRequest& request) {
  const auto end = [](std::uint64_t first, std::uint64_t size, std::uint64_t limit) {
    return std::max(first, std::min(first + size, limit));
  };
  return {.x = request.x,
          .y = request.y,
          .end_x = end(request.x, request.region_width, request.width),
          .end_y = end(request.y, request.region_height, request.height)};
}

}  // namespace

bool FindPatternColors(std::uint16_t color_array, PatternColors* colors) {
  if (color_array < static_cast<std::uint16_t>(ColorArray::kMono) ||
      color_array > static_cast<std::uint16_t>(ColorArray::kBggr)) {
    return false;
  }
  const std::size_t phase = std::max<std::size_t>(color_array, 2) - 2;
  // Counted from RGGB the phase is the place of red; its neighbours in the row and in the column
  // are green, and blue lies across.
  *colors = {.red = phase, .green = {phase ^ 1, phase ^ 2}, .blue = phase ^ 3};
  return true;
}

Status AveragePixelValue(const AverageRequest& request, std::array<float, kPatternPositions>* mean,
                         const FrameKernels& kernels) {
  PatternColors colors{};
  const std::uint32_t format = request.transfer_format;
  const bool known_format = std::has_single_bit(format) && format <= 16;
  if (!FindPatternColors(request.color_array, &colors) || !known_format) {
    return error::kInvalidParameter;
  }
  const Region region = RegionOf(request);
  const Sums sums = SumRegion(request, region, kernels);
  if (request.color_array == static_cast<std::uint16_t>(ColorArray::kMono)) {
    const std::uint64_t count = (region.end_x - region.x) * (region.end_y - region.y);
    *mean = {Mean(sums[0] + sums[1] + sums[2] + sums[3], count)};
    return {};
  }
  for (std::size_t k = 0; k < kPatternPositions; ++k) {
    (*mean)[k] = Mean(
        sums[k], CountOf(k & 1, region.x, region.end_x) * CountOf(k >> 1, region.y, region.end_y));
  }
  return {};
}

namespace {

// A sample that equals the one before it would have to wait until that one's count is stored, so
// that neighbours of one position count in different copies.
constexpr std::size_t kCopies = 4;
using HistogramCopies = std::array<std::array<Histogram, kCopies>, kPatternPositions>;

void CountRow(const std::uint8_t* row, std::size_t pairs, std::array<Histogram, kCopies>& left,
              std::array<Histogram, kCopies>& right) {
  const std::size_t whole = pairs / kCopies * kCopies;
  std::size_t i = 0;
  for (; i < whole; i += kCopies) {
    for (std::size_t copy = 0; copy < kCopies; ++copy) {
      ++left[copy][row[2 * (i + copy)]];
      ++right[copy][row[2 * (i + copy) + 1]];
    }
  }
  for (; i < pairs; ++i) {
    ++left[0][row[2 * i]];
    ++right[0][row[2 * i + 1]];
  }
}

}  // namespace

PatternStatistics MeasurePattern(std::uint32_t width, std::uint32_t height,
                                 const std::uint8_t* frame) {
  HistogramCopies copies{};
  const std::size_t pairs = width / 2;
  const std::size_t rows = height / 2 * std::size_t{2};
  for (std::size_t y = 0; y < rows; ++y) {
    const std::size_t left = 2 * (y & 1);
    CountRow(frame + y * width, pairs, copies[left], copies[left + 1]);
  }
  PatternStatistics statistics{};
  const double cells = static_cast<double>(pairs) * static_cast<double>(rows / 2);
  for (std::size_t k = 0; k < kPatternPositions; ++k) {
    std::uint64_t sum = 0;
    for (std::size_t value = 0; value < statistics.histograms[k].size(); ++value) {
      for (const Histogram& copy : copies[k]) {
        statistics.histograms[k][value] += copy[value];
      }
      sum += value * std::uint64_t{statistics.histograms[k][value]};
    }
    statistics.means[k] = cells > 0 ? static_cast<double>(sum) / cells : 0;
  }
  return statistics;
}

}  // namespace vexa::imaging
