#include <algorithm>

#include "imaging/kernels/frame_kernels.hpp"
#include "imaging/luma.hpp"

namespace vexa::imaging {
namespace {

void Reverse(Sample* samples, std::size_t n) { std::reverse(samples, samples + n); }

void Exchange(Sample* a, Sample* b, std::size_t n) { std::swap_ranges(a, a + n, b); }

void Transpose(const Sample* in, std::ptrdiff_t in_stride, Sample* out, std::ptrdiff_t out_stride,
               std::size_t columns, std::size_t rows) {
  for (std::size_t y = 0; y < rows; ++y) {
    const Sample* row = in + static_cast<std::ptrdiff_t>(y) * in_stride;
    for (std::size_t x = 0; x < columns; ++x) {
      out[static_cast<std::ptrdiff_t>(x) * out_stride + static_cast<std::ptrdiff_t>(y)] = row[x];
    }
  }
}

void RowSums(const Sample* row, std::uint16_t* sums, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    sums[i] = static_cast<std::uint16_t>(row[i] + row[i + 1] + row[i + 2]);
  }
}

template <std::size_t kStep>
void LumaOfPixels(const Sample* pixels, Sample* luma, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    const Sample* pixel = pixels + i * kStep;
    luma[i] = static_cast<Sample>(Luma(pixel[0], pixel[1], pixel[2]));
  }
}

template <std::size_t kStep>
void Sharpen(const Neighbourhood& at, Sample* pixels, std::size_t n) {
  constexpr std::size_t kChannels = kStep == 1 ? 1 : 3;
  for (std::size_t i = 0; i < n; ++i) {
    const int level = at.luma[i];
    const int neighbours = at.sums[0][i] + at.sums[1][i] + at.sums[2][i] - level;
    const int distance = level - (neighbours + 4) / 8;
    const int step = distance < 0 ? -at.boost[-distance] : at.boost[distance];
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
      Sample& value = pixels[i * kStep + channel];
      value = static_cast<Sample>(std::clamp(value + step, 0, 255));
    }
  }
}

Sample Limited(Sample p, Sample a, Sample b, Sample c, Sample d) {
  const Sample second_largest =
      std::max(std::min(std::max(a, b), std::max(c, d)), std::max(std::min(a, b), std::min(c, d)));
  return std::min(p, second_largest);
}

Sample LimitedDiagonally(const Sample* const* rows, std::size_t i) {
  const Sample* above = rows[1] + i;
  const Sample* below = rows[3] + i;
  return Limited(rows[2][i], above[-1], above[1], below[-1], below[1]);
}

void LimitMono(const Sample* const* rows, Sample* out, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    out[i] = LimitedDiagonally(rows, i);
  }
}

void LimitBayer(const Sample* const* rows, bool green_first, Sample* out, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    const Sample* row = rows[2] + i;
    out[i] = green_first == (i % 2 == 0) ? LimitedDiagonally(rows, i)
                                         : Limited(*row, rows[0][i], rows[4][i], row[-2], row[2]);
  }
}

bool Subtract(const Sample* dark, Sample* samples, Sample* before, std::size_t n) {
  bool is_saturated = false;
  for (std::size_t i = 0; i < n; ++i) {
    before[i] = samples[i];
    is_saturated |= samples[i] >= kSaturated;
    samples[i] = static_cast<Sample>(std::max(0, samples[i] - dark[i]));
  }
  return is_saturated;
}

std::size_t FindDesaturated(const Sample* before, const Sample* after, std::size_t from,
                            std::size_t n) {
  while (from < n && !(before[from] >= kSaturated && after[from] < kSaturated)) {
    ++from;
  }
  return from;
}

void SumPairs(const Sample* samples, std::size_t n, std::uint64_t (&sums)[2]) {
  for (std::size_t i = 0; i < n; ++i) {
    sums[i % 2] += samples[i];
  }
}

}  // namespace

constinit const FrameKernels kReferenceFrameKernels = {
    .name = "reference",
    .reverse = Reverse,
    .exchange = Exchange,
    .transpose = Transpose,
    .row_sums = RowSums,
    .luma_bgr24 = LumaOfPixels<3>,
    .luma_bgr32 = LumaOfPixels<4>,
    .sharpen_mono = Sharpen<1>,
    .sharpen_bgr24 = Sharpen<3>,
    .sharpen_bgr32 = Sharpen<4>,
    .limit_mono = LimitMono,
    .limit_bayer = LimitBayer,
    .subtract = Subtract,
    .find_desaturated = FindDesaturated,
    .sum_pairs = SumPairs,
};

}  // namespace vexa::imaging
