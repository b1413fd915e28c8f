/// \file
/// Transform and quantisation in single precision, with vectors of 4 or 8 lanes. A block in which a
/// rounding could depend on the error of single precision is done again in double, so that the
/// results are those of the plain version.
#pragma once

#include <cstdint>

#include "output/jpeg/kernels/aan_transform.hpp"
#include "output/jpeg/kernels/jpeg_kernels.hpp"
#include "output/jpeg/kernels/reference_kernels.hpp"

namespace vexa::output {

/// JpegKernels::transform. `Vector` provides:
///   Floats, Ints          vectors of kLanes numbers of 32 bits
///   Load(samples)         kLanes samples as Floats
///   Transpose(halves)     an 8 x 8 matrix; halves[h][i] is part h of row i
///   StoreColumns(c, out)  the low 16 bits of 8 columns, c[i] holding kLanes rows of column i, as
///                         kLanes rows of 8
///   Any(mask)             whether any lane of an Ints is not zero
template <typename Vector>
struct VectorTransform {
  using Floats = typename Vector::Floats;
  using Ints = typename Vector::Ints;
  static constexpr std::size_t kLanes = Vector::kLanes;
  static constexpr std::size_t kParts = 8 / kLanes;

  static void Transform(const BlockRow& row) {
    const std::uint8_t* samples = row.samples;
    std::int16_t* coefficients = row.coefficients;
    for (std::size_t i = 0; i < row.count; ++i) {
      if (!TransformBlock(samples, row.line_step, *row.table, coefficients)) [[unlikely]] {
        TransformExactly(samples, row.line_step, *row.table, coefficients);
      }
      samples += row.block_step;
      coefficients += row.coefficient_step;
    }
  }

 private:
  /// False when a rounding is in doubt.
  static bool TransformBlock(const std::uint8_t* samples, std::ptrdiff_t line_step,
                             const ForwardTable& table, std::int16_t* coefficients) {
    Floats parts[kParts][8];
    for (std::size_t part = 0; part < kParts; ++part) {
      for (std::ptrdiff_t line = 0; line < 8; ++line) {
        parts[part][line] = Vector::Load(samples + line * line_step + part * kLanes);
      }
      AanTransform<float>(parts[part]);
      // The level shift of the eight samples; differences do not have it.
      parts[part][0] -= 8 * 128.0F;
    }
    Vector::Transpose(parts);
    Ints doubts{};
    for (std::size_t part = 0; part < kParts; ++part) {
      AanTransform<float>(parts[part]);
      doubts |= Quantise(parts[part], table, part * kLanes, coefficients + part * kLanes * 8);
    }
    return !Vector::Any(doubts);
  }

  /// @param column the transform's results: column[i] holds kLanes rows of column i, from `first`.
  static Ints Quantise(const Floats (&column)[8], const ForwardTable& table, std::size_t first,
                       std::int16_t* coefficients) {
    // Adding this leaves no bits for a fraction, and the integer in the low bits.
    constexpr float kRounder = 0x1.8p23F;
    Ints doubts{};
    Ints rounded[8];
    for (std::size_t i = 0; i < 8; ++i) {
      const auto& factor = reinterpret_cast<const Floats&>(table.factor[8 * i + first]);
      const auto& doubt = reinterpret_cast<const Floats&>(table.doubt[8 * i + first]);
      const Floats value = column[i] * factor;
      const Floats shifted = value + kRounder;
      const Floats away = value - (shifted - kRounder);
      doubts |= (Ints)(away >= doubt) | (Ints)(-away >= doubt);
      rounded[i] = (Ints)shifted;
    }
    Vector::StoreColumns(rounded, coefficients);
    return doubts;
  }
};

}  // namespace vexa::output
