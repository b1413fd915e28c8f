#include "output/jpeg/quant_table.hpp"

#include <algorithm>

#include "output/jpeg/kernels/aan_transform.hpp"

namespace vexa::output {

CodingStatus CJPEGEncoderQuantTable::Init(std::uint8_t identifier, const QuantValues& base,
                                          std::int32_t quality) {
  if (identifier > 3 || quality < 0 || quality > 100) {
    return CodingStatus::kOutOfRange;
  }
  identifier_ = identifier;
  precision_ = 0;
  raw_ = base;
  if (quality != 0) {
    const std::int32_t percent = quality < 50 ? 5000 / quality : 200 - 2 * quality;
    for (std::uint8_t& value : raw_) {
      value = static_cast<std::uint8_t>(std::clamp((value * percent + 50) / 100, 1, 255));
    }
  }
  BuildForwardTable();
  initialised_ = true;
  return CodingStatus::kOk;
}

void CJPEGEncoderQuantTable::BuildForwardTable() {
  // Halves are to be rounded away from zero whatever the last bit of the arithmetic makes of them,
  // hence a little more than the quotient. Every other rational value is 1/2040 or more away.
  constexpr double kUpwards = 1 + 0x1p-30;
  constexpr double kUpwardsSingle = 1 + 0x1p-20;
  for (std::size_t i = 0; i < kBlockSize; ++i) {
    const std::size_t natural = kZigZag[i];
    const std::size_t row = natural / 8;
    const std::size_t column = natural % 8;
    const double quant = raw_[i];
    const double quotient = 1 / (quant * kAanScale[row] * kAanScale[column]);
    // Sums and differences of samples only: single precision has no error there.
    const bool exact = row % 4 == 0 && column % 4 == 0;
    forward_.exact_factor[natural] = quotient * kUpwards;
    forward_.factor[8 * column + row] =
        static_cast<float>(exact ? quotient * kUpwardsSingle : quotient);
    forward_.doubt[8 * column + row] =
        exact ? 1.0F : static_cast<float>(0.5 - AanSingleError(row, column) / quant);
  }
}

}  // namespace vexa::output
