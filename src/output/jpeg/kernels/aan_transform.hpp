/// \file
/// The forward DCT in one dimension, in the form of Arai, Agui and Nakajima (Transactions of the
/// IEICE E-71, 1988): 5 multiplications, because its results carry factors that the quantiser takes
/// out again.
#pragma once

#include <array>
#include <cstddef>

namespace vexa::output {

/// The factors of the results in two dimensions, one for the vertical and one for the horizontal
/// frequency: result = DCT * kAanScale[row] * kAanScale[column]; sqrt(8) times 1 for frequency 0
/// and sqrt(2) cos(k pi / 16) for frequency k.
inline constexpr std::array<double, 8> kAanScale = {
    2.8284271247461900976, 3.9231411216129217965, 3.6955181300451470245, 3.3258784492101809483,
    2.8284271247461900976, 2.2222809320784088990, 1.5307337294603590869, 0.7803612880645130714,
};

/// Upper bound of what a result of two passes in single precision, divided by its scale, differs
/// from the DCT; twice the most that a search among blocks of extreme contrast found. The small
/// scale of the highest frequency raises the errors there.
constexpr double AanSingleError(std::size_t row, std::size_t column) {
  return row == 7 || column == 7 ? 1.0 / 1024 : 1.0 / 2048;
}

/// Replaces eight samples by their transform. `Lane` is the arithmetic, `Value` a Lane or a vector
/// of them.
template <typename Lane, typename Value>
inline void AanTransform(Value (&d)[8]) {
  constexpr Lane kCos4 = static_cast<Lane>(0.70710678118654752440L);          // cos(4 pi / 16)
  constexpr Lane kCos6 = static_cast<Lane>(0.38268343236508977173L);          // cos(6 pi / 16)
  constexpr Lane kCos2LessCos6 = static_cast<Lane>(0.54119610014619698440L);  // of 2 and 6 pi / 16
  constexpr Lane kCos2AndCos6 = static_cast<Lane>(1.30656296487637652786L);

  const Value sum_07 = d[0] + d[7];
  const Value sum_16 = d[1] + d[6];
  const Value sum_25 = d[2] + d[5];
  const Value sum_34 = d[3] + d[4];
  const Value difference_07 = d[0] - d[7];
  const Value difference_16 = d[1] - d[6];
  const Value difference_25 = d[2] - d[5];
  const Value difference_34 = d[3] - d[4];

  const Value outer = sum_07 + sum_34;
  const Value inner = sum_16 + sum_25;
  const Value outer_slope = sum_07 - sum_34;
  const Value turned = (sum_16 - sum_25 + outer_slope) * kCos4;
  d[0] = outer + inner;
  d[4] = outer - inner;
  d[2] = outer_slope + turned;
  d[6] = outer_slope - turned;

  const Value early = difference_34 + difference_25;
  const Value middle = (difference_25 + difference_16) * kCos4;
  const Value late = difference_16 + difference_07;
  const Value shared = (early - late) * kCos6;
  const Value low = early * kCos2LessCos6 + shared;
  const Value high = late * kCos2AndCos6 + shared;
  const Value plus = difference_07 + middle;
  const Value minus = difference_07 - middle;
  d[5] = minus + low;
  d[3] = minus - low;
  d[1] = plus + high;
  d[7] = plus - high;
}

}  // namespace vexa::output
