/// \file
/// Huffman coding of blocks as the baseline process has it (ITU-T T.81, F.1.2): the code tables,
/// what is carried from block to block, and the end of a scan. Coding the blocks themselves is one
/// of the inner loops (JpegKernels::code_blocks).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "output/coding_status.hpp"
#include "output/jpeg/zigzag.hpp"

namespace vexa::output {

/// What is written for a symbol: its code with room behind it for the symbol's additional bits, the
/// low four bits of the symbol being their number.
struct CodeEntry {
  std::uint32_t bits;    // kNoCode: the table has no code for the symbol
  std::uint32_t length;  // of code and additional bits, 1 to 31
};

/// Beyond the longest entry, so that it can be looked for after many entries were put together.
inline constexpr std::uint32_t kNoCode = 0x80000000;

/// Coefficients from -1024 to 1023 are coded; samples of 8 bits give no others, and the baseline
/// process has no codes for others.
inline constexpr std::int32_t kCoefficientLimit = 1024;

/// Every symbol's entry.
class CodeTable {
 public:
  /// @param run  zeros before the coefficient, 0 to 15; 0 for a DC difference.
  /// @param size number of additional bits, 0 to 15.
  const CodeEntry& At(std::size_t run, std::size_t size) const { return entries_[16 * run + size]; }

  /// Assigns the codes (T.81, annex C). kCodingFailed when the lists do not make a table: codes
  /// that do not fit their lengths or consist of 1-bits only, or a symbol that comes twice.
  CodingStatus Build(std::span<const std::uint8_t, 16> counts,
                     std::span<const std::uint8_t> values);

 private:
  std::array<CodeEntry, 256> entries_;
};

/// Bits that do not fill a byte yet; they go before whatever is coded next.
struct PendingBits {
  std::uint32_t bits = 0;   // right-aligned
  std::uint32_t count = 0;  // 0 to 7
};

/// How the blocks of a component are coded.
struct ComponentCoder {
  const CodeTable* dc = nullptr;
  const CodeTable* ac = nullptr;
  std::int16_t predictor = 0;  // the DC value of the component's last block, a coded coefficient
};

/// Blocks that are coded one after the other, and what is left of them.
struct BlockRun {
  const std::int16_t* coefficients;          // 64 each in natural order, aligned to 16 bytes
  std::size_t count;                         // blocks
  std::span<ComponentCoder* const> pattern;  // the component of each block of an MCU
  std::size_t place;                         // in the pattern, of the next block
};

/// Bytes that coding a block can take before zero bytes are put in: 64 codes of 16 bits with 11
/// additional ones behind 7 pending bits are 217 bytes; up to 32 more are stored along with them.
inline constexpr std::int32_t kLongestBlock = 256;

/// Room in the buffer that any block can be coded in: each byte may be an 0xFF that takes a zero
/// byte with it.
inline constexpr std::int32_t kRoomForBlock = 2 * kLongestBlock;

/// Completes the pending bits to a byte with 1-bits and appends it. kCodingFailed when the buffer
/// has no room for it (two bytes).
CodingStatus FlushPendingBits(std::uint8_t* buffer, std::int32_t buffer_size,
                              std::int32_t* position, PendingBits* pending);

}  // namespace vexa::output
