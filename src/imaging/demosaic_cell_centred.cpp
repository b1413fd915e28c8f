// The method that interpolates at the centre of the cell of which a pixel is the top left one.
// Red and blue each lie on every second column and row, so that the centre is half a pixel away
// from the near line of samples and one and a half from the far one on the other side.
#include <algorithm>
#include <array>

#include "imaging/demosaic.hpp"

namespace vexa::imaging {
namespace {

struct Lines {
  std::size_t nearer;
  std::size_t farther;
};

/// The lines of the given parity on both sides of position + 1/2; one outside 0..count-1 is
/// replaced by the nearest inside. count is at least 2.
Lines LinesAround(std::size_t position, std::size_t parity, std::size_t count) {
  const std::size_t last = (count - 1) - ((count - 1 - parity) & 1);
  if ((position & 1) == parity) {
    return {position, std::min(position + 2, last)};
  }
  const std::size_t below = std::min(position + 1, last);
  return {below, position == 0 ? below : position - 1};
}

/// A stretch of columns of one output row.
class CellRow {
 public:
  CellRow(const BayerFrame& frame, const RowKernels& kernels, std::size_t x, std::size_t y,
          std::size_t n)
      : frame_(frame), kernels_(kernels), x_(x), y_(y), n_(n) {}

  /// The colour that lies in rows of the given parity.
  void Color(std::size_t row_parity, Sample* out) const {
    const std::size_t parity = frame_.ColorParity(row_parity);
    const Lines rows = LinesAround(y_, row_parity, frame_.height);
    const Sample* nearer = frame_.Row(rows.nearer);
    const Sample* farther = frame_.Row(rows.farther);
    const auto pixel = [&](Lines columns) {
      const int near_sum = 3 * nearer[columns.nearer] + farther[columns.nearer];
      const int far_sum = 3 * nearer[columns.farther] + farther[columns.farther];
      return static_cast<Sample>((3 * near_sum + far_sum) >> 4);
    };
    // The inner loop starts on a column of the colour and reads two columns ahead.
    const std::size_t end = x_ + n_;
    const std::size_t first = std::min(x_ + parity, end);
    const std::size_t last = std::clamp(frame_.width - 2, first, end);
    for (std::size_t x = x_; x < first; ++x) {
      out[x - x_] = pixel(LinesAround(x, parity, frame_.width));
    }
    kernels_.cell_color(nearer + first, farther + first, out + (first - x_), last - first);
    for (std::size_t x = last; x < end; ++x) {
      out[x - x_] = pixel(LinesAround(x, parity, frame_.width));
    }
    // With green in the corner, the colour below the corner takes no part of column 2 in even rows.
    if (frame_.green_first && row_parity == 1 && x_ == 0 && (y_ & 1) == 0) {
      out[0] = pixel({0, 0});
    }
  }

  void Green(Sample* out) const {
    const Sample* row = frame_.Row(y_);
    const std::size_t parity = frame_.ColorParity(y_) ^ 1;
    const std::size_t last_column = frame_.width - 1;
    const std::size_t n = std::min(n_, last_column - x_);
    if (y_ == frame_.height - 1) {
      for (std::size_t x = x_; x < x_ + n; ++x) {
        out[x - x_] = row[x + ((x & 1) ^ parity)];
      }
    } else {
      const Sample* a = row + x_;
      const Sample* b = a + frame_.width;
      kernels_.cell_green(parity == 0 ? a : b, parity == 0 ? b : a, out, n);
    }
    if (n < n_) {
      out[n] = frame_.green_first && y_ == 0 ? frame_.Row(1)[last_column]
                                             : row[last_column - ((last_column & 1) ^ parity)];
    }
  }

 private:
  const BayerFrame& frame_;
  const RowKernels& kernels_;
  std::size_t x_;
  std::size_t y_;
  std::size_t n_;
};

}  // namespace

void DemosaicCellCentred(const BayerFrame& frame, const BgrImage& image,
                         const RowKernels& kernels) {
  std::array<Sample, kStripWidth> first;
  std::array<Sample, kStripWidth> green;
  std::array<Sample, kStripWidth> second;
  for (std::size_t y = 0; y < frame.height; ++y) {
    for (std::size_t x = 0; x < frame.width; x += kStripWidth) {
      const std::size_t n = std::min(kStripWidth, frame.width - x);
      const CellRow row(frame, kernels, x, y, n);
      row.Color(0, first.data());
      row.Color(1, second.data());
      row.Green(green.data());
      image.Write(x, y, n, first.data(), green.data(), second.data());
    }
  }
}

}  // namespace vexa::imaging
