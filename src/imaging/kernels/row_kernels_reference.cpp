// The plain version of every inner loop, by which the others are judged.
#include <algorithm>

#include "imaging/kernels/dispatch.hpp"
#include "imaging/kernels/weight_tables.hpp"

namespace vexa::imaging {
namespace {

Sample HalfSum(int a, int b) { return static_cast<Sample>((a + b) >> 1); }

Sample FourTapAt(std::size_t a, std::size_t b, std::size_t c, std::size_t d) {
  const int value = weight_tables.FiveEighthsTable[a + b] + weight_tables.MinusEighthTable[c + d];
  return static_cast<Sample>(std::clamp(value, 0, 255));
}

/// missing(i) is the value that pixel i lacks.
template <class Missing>
void RowPass(const Sample* s, Sample* even, Sample* odd, std::size_t n, Missing missing) {
  for (std::size_t i = 0; i < n; i += 2) {
    even[i] = s[i];
    odd[i] = missing(i);
  }
  for (std::size_t i = 1; i < n; i += 2) {
    even[i] = missing(i);
    odd[i] = s[i];
  }
}

void RowMosaic(const Sample* s, Sample* even, Sample* odd, std::size_t n) {
  RowPass(s, even, odd, n, [](std::size_t) { return Sample{0}; });
}

void RowNearest(const Sample* s, Sample* even, Sample* odd, std::size_t n) {
  RowPass(s, even, odd, n, [=](std::size_t i) { return s[i ^ 1]; });
}

void RowMean(const Sample* s, Sample* even, Sample* odd, std::size_t n) {
  RowPass(s, even, odd, n, [=](std::size_t i) {
    const Sample* at = s + i;
    return HalfSum(at[-1], at[1]);
  });
}

void RowFourTap(const Sample* s, Sample* even, Sample* odd, std::size_t n) {
  RowPass(s, even, odd, n, [=](std::size_t i) {
    const Sample* at = s + i;
    return FourTapAt(at[-1], at[1], at[-3], at[3]);
  });
}

void Mean(const Sample* a, const Sample* b, Sample* out, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    out[i] = HalfSum(a[i], b[i]);
  }
}

void FourTap(const Sample* a, const Sample* b, const Sample* c, const Sample* d, Sample* out,
             std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    out[i] = FourTapAt(a[i], b[i], c[i], d[i]);
  }
}

void CellColor(const Sample* nearer, const Sample* farther, Sample* out, std::size_t n) {
  const auto column = [&](std::size_t i) { return 3 * nearer[i] + farther[i]; };
  for (std::size_t i = 0; i < n; i += 2) {
    out[i] = static_cast<Sample>((3 * column(i) + column(i + 2)) >> 4);
  }
  for (std::size_t i = 1; i < n; i += 2) {
    out[i] = static_cast<Sample>((3 * column(i + 1) + column(i - 1)) >> 4);
  }
}

void CellGreen(const Sample* a, const Sample* b, Sample* out, std::size_t n) {
  for (std::size_t i = 0; i < n; i += 2) {
    out[i] = HalfSum(a[i], b[i + 1]);
  }
  for (std::size_t i = 1; i < n; i += 2) {
    out[i] = HalfSum(a[i + 1], b[i]);
  }
}

void StoreBgr24(const Sample* blue, const Sample* green, const Sample* red, Sample* out,
                std::size_t n) {
  for (std::size_t i = 0; i < n; ++i, out += 3) {
    out[0] = blue[i];
    out[1] = green[i];
    out[2] = red[i];
  }
}

void StoreBgr32(const Sample* blue, const Sample* green, const Sample* red, Sample* out,
                std::size_t n) {
  for (std::size_t i = 0; i < n; ++i, out += 4) {
    out[0] = blue[i];
    out[1] = green[i];
    out[2] = red[i];
    out[3] = 0;
  }
}

}  // namespace

constinit const RowKernels kReferenceRowKernels = {
    .name = "reference",
    .row_mosaic = RowMosaic,
    .row_nearest = RowNearest,
    .row_mean = RowMean,
    .row_four_tap = RowFourTap,
    .mean = Mean,
    .four_tap = FourTap,
    .cell_color = CellColor,
    .cell_green = CellGreen,
    .store_bgr24 = StoreBgr24,
    .store_bgr32 = StoreBgr32,
};

}  // namespace vexa::imaging
