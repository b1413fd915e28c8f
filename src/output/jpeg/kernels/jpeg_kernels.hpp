/// \file
/// The inner loops of the JPEG encoder.
#pragma once

#include <cstddef>
#include <cstdint>

#include "output/coding_status.hpp"
#include "output/jpeg/block_coder.hpp"
#include "output/jpeg/quant_table.hpp"

namespace vexa::output {

/// Blocks in a row of samples, and where their coefficients go.
struct BlockRow {
  const std::uint8_t* samples;  // of the first block; 8 rows of 8
  std::ptrdiff_t line_step;     // samples from row to row
  std::ptrdiff_t block_step;    // samples from block to block
  std::int16_t* coefficients;   // 64 of the first block in natural order, aligned to 16 bytes
  std::ptrdiff_t coefficient_step;
  std::size_t count;
  const ForwardTable* table;
};

/// A block to code, and what is carried from one to the next.
struct CodedBlock {
  const std::int16_t* coefficients;  // 64 in natural order, aligned to 16 bytes
  std::uint8_t* buffer;
  std::int32_t buffer_size;
  std::int32_t* position;   // in the buffer, advanced by the bytes written
  std::int16_t* predictor;  // the last block's DC value, replaced by this one's
  const CodeTable* dc;
  const CodeTable* ac;
  PendingBits* pending;
};

/// One version of every inner loop; all versions give the same results.
struct JpegKernels {
  const char* name;

  /// BGR to the planes of YCbCr as ITU-T T.871 has it, in 16-bit fixed point. n pixels, 3 or 4
  /// bytes each.
  void (*convert_bgr24)(const std::uint8_t* bgr, std::uint8_t* y, std::uint8_t* cb,
                        std::uint8_t* cr, std::size_t n);
  void (*convert_bgr32)(const std::uint8_t* bgr, std::uint8_t* y, std::uint8_t* cb,
                        std::uint8_t* cr, std::size_t n);

  /// out[i] = (in[2 i] + in[2 i + 1] + i % 2) / 2 for n results: the bias alternates so that the
  /// plane becomes neither brighter nor darker.
  void (*halve)(const std::uint8_t* in, std::uint8_t* out, std::size_t n);

  /// Level shift, forward DCT and quantisation (T.81, A.3.1, A.3.3 and A.3.4), halves away from
  /// zero.
  void (*transform)(const BlockRow& row);

  /// Codes one block (T.81, F.1.2.1 and F.1.2.2). kCodingFailed, with nothing carried over and the
  /// position as before, when fewer than kRoomForBlock bytes are free or a table has no code for
  /// what the block holds.
  CodingStatus (*code_block)(const CodedBlock& block);
};

}  // namespace vexa::output
