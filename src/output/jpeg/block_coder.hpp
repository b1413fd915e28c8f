/// \file
/// Huffman coding of blocks as the baseline process has it (ITU-T T.81, F.1.2): the code tables,
/// the bits that wait between blocks, and the end of a scan. Coding a block itself is one of the
/// inner loops (JpegKernels::code_block).
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
  std::uint32_t length;  // of code and additional bits, at most 31
};

/// Beyond the longest entry, so that it can be looked for after many entries were put together.
inline constexpr std::uint32_t kNoCode = 0x80000000;

/// Every symbol's entry. There is room for sizes above 15, which have no code: a coefficient that
/// is too large for any symbol finds that out where it looks for its code.
class CodeTable {
 public:
  /// @param run  zeros before the coefficient, 0 to 15; 0 for a DC difference.
  /// @param size number of additional bits, 0 to 31.
  const CodeEntry& At(std::size_t run, std::size_t size) const { return entries_[32 * run + size]; }

  /// Assigns the codes (T.81, annex C). kCodingFailed when the lists do not make a table: codes
  /// that do not fit their lengths or consist of 1-bits only, or a symbol that comes twice.
  CodingStatus Build(std::span<const std::uint8_t, 16> counts,
                     std::span<const std::uint8_t> values);

 private:
  std::array<CodeEntry, std::size_t{16} * 32> entries_;
};

/// Bits that do not fill a byte yet; they go before whatever is coded next.
struct PendingBits {
  std::uint32_t bits = 0;   // right-aligned
  std::uint32_t count = 0;  // 0 to 7
};

/// Room in the buffer that coding any block with any tables needs: 64 entries of 31 bits behind 7
/// pending ones are 249 bytes, each of which may be an 0xFF that takes a zero byte with it; 8 bytes
/// are stored at a time. With the typical tables 209 of the 249 can occur.
inline constexpr std::int32_t kRoomForBlock = 2 * 249 + 8;

/// Completes the pending bits to a byte with 1-bits and appends it. kCodingFailed when the buffer
/// has no room for it (two bytes).
CodingStatus FlushPendingBits(std::uint8_t* buffer, std::int32_t buffer_size,
                              std::int32_t* position, PendingBits* pending);

}  // namespace vexa::output
