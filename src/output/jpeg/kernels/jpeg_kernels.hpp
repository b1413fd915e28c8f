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

/// Where coded bits go.
struct CodeBuffer {
  std::uint8_t* bytes;
  std::int32_t size;
  std::int32_t* position;  // advanced by the bytes written
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

  /// Codes blocks (T.81, F.1.2.1 and F.1.2.2) as long as the buffer has room for any block
  /// (kRoomForBlock); takes them from the run. kCodingFailed when a coefficient is out of range or
  /// has no code in its table; what was coded by that call is lost.
  CodingStatus (*code_blocks)(BlockRun* run, const CodeBuffer& buffer);
};

}  // namespace vexa::output
