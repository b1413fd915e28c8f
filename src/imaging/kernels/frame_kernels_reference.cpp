#include <algorithm>

#include "imaging/kernels/frame_kernels.hpp"

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

}  // namespace

constinit const FrameKernels kReferenceFrameKernels = {
    .name = "reference",
    .reverse = Reverse,
    .exchange = Exchange,
    .transpose = Transpose,
};

}  // namespace vexa::imaging
