/// \file
/// The typical tables of ITU-T T.81, annex K.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "output/jpeg/zigzag.hpp"

namespace vexa::output {

/// Base quantisation values in zig-zag order.
using QuantValues = std::array<std::uint8_t, kBlockSize>;
extern const QuantValues kLuminanceQuant;    // table K.1
extern const QuantValues kChrominanceQuant;  // table K.2

/// The lists that define a Huffman table.
struct HuffmanLists {
  std::array<std::uint8_t, 16> counts;   // of codes of each length from 1 (BITS)
  std::span<const std::uint8_t> values;  // the symbols by increasing length (HUFFVAL)
};
extern const HuffmanLists kLuminanceDc;    // table K.3
extern const HuffmanLists kChrominanceDc;  // table K.4
extern const HuffmanLists kLuminanceAc;    // table K.5
extern const HuffmanLists kChrominanceAc;  // table K.6

}  // namespace vexa::output
