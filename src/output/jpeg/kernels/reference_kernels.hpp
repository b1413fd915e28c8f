/// \file
/// Pieces of the plain version that the others fall back on.
#pragma once

#include <cstddef>
#include <cstdint>

#include "output/jpeg/quant_table.hpp"

namespace vexa::output {

/// Transforms one block in double precision: 8 rows of 8 samples to 64 coefficients in natural
/// order.
void TransformExactly(const std::uint8_t* samples, std::ptrdiff_t line_step,
                      const ForwardTable& table, std::int16_t* coefficients);

}  // namespace vexa::output
