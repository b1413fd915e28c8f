/// \file
/// A Huffman table of a JPEG file, and what the coder carries from block to block.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "output/coding_status.hpp"
#include "output/jpeg/block_coder.hpp"
#include "output/memory_buffer.hpp"

namespace vexa::output {

enum class HuffmanClass : std::uint8_t { kDc = 0, kAc = 1 };

/// A table as the file carries it, and the codes made from it.
class CJPEGEncoderHuffmanTable {
 public:
  CJPEGEncoderHuffmanTable() = default;
  virtual ~CJPEGEncoderHuffmanTable() = default;
  CJPEGEncoderHuffmanTable(const CJPEGEncoderHuffmanTable&) = delete;
  CJPEGEncoderHuffmanTable& operator=(const CJPEGEncoderHuffmanTable&) = delete;

  /// Allocates the memory for the codes; kNoMemory.
  CodingStatus Create();

  /// Takes over a table and makes its codes; after Create.
  /// @param identifier the table's destination, 0 to 3.
  /// @param counts     codes of each length from 1 to 16.
  /// @param values     as many symbols as the counts add up to (more are ignored).
  /// @return kCodingFailed when these make no valid table.
  CodingStatus Init(std::uint8_t identifier, HuffmanClass table_class,
                    std::span<const std::uint8_t, 16> counts, std::span<const std::uint8_t> values);

  CodingStatus Destroy();

  std::uint8_t identifier() const { return identifier_; }
  HuffmanClass table_class() const { return class_; }
  const std::array<std::uint8_t, 16>& counts() const { return counts_; }
  /// The symbols in use.
  std::span<const std::uint8_t> values() const;
  /// After a successful Init.
  const CodeTable& codes() const;

 private:
  AlignedBlock code_table_;
  std::uint8_t identifier_ = 0;
  HuffmanClass class_ = HuffmanClass::kDc;
  std::array<std::uint8_t, 16> counts_{};
  std::array<std::uint8_t, 256> values_{};
};

/// The pending bits of a scan.
class CJPEGEncoderHuffmanState {
 public:
  CJPEGEncoderHuffmanState() = default;
  virtual ~CJPEGEncoderHuffmanState() = default;
  CJPEGEncoderHuffmanState(const CJPEGEncoderHuffmanState&) = delete;
  CJPEGEncoderHuffmanState& operator=(const CJPEGEncoderHuffmanState&) = delete;

  /// Allocates the memory; kNoMemory.
  CodingStatus Create();
  /// Drops pending bits, as a scan begins; after Create.
  void Reset();
  CodingStatus Destroy();

  /// After Create.
  PendingBits& pending();

 private:
  AlignedBlock block_;
};

}  // namespace vexa::output
