/// \file
/// Coding a block with 64-bit words: the coefficients that are not zero are found by a bit mask,
/// and bits leave eight bytes at a time. Shared by the vector versions, each of which compiles it
/// for its processors.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "output/jpeg/kernels/jpeg_kernels.hpp"

namespace vexa::output {

/// For each row of a block and each set of columns of it, one bit per place in the zig-zag
/// sequence.
inline constexpr std::array<std::array<std::uint64_t, 256>, 8> kZigZagMasks = [] {
  std::array<std::array<std::uint64_t, 256>, 8> masks{};
  for (std::size_t place = 0; place < kBlockSize; ++place) {
    const std::size_t row = kZigZag[place] / 8U;
    const std::size_t column = kZigZag[place] % 8U;
    for (std::size_t columns = 0; columns < 256; ++columns) {
      masks[row][columns] |= std::uint64_t{columns >> column & 1} << place;
    }
  }
  return masks;
}();

/// Collects bits in a word and stores it when it is full. A template, so that each version has its
/// own.
template <typename Vector>
class WordBitWriter {
 public:
  WordBitWriter(std::uint8_t* out, const PendingBits& pending)
      : out_(out), word_(pending.bits), count_(pending.count) {}

  /// @param length at most 31.
  void Put(std::uint32_t bits, std::uint32_t length) {
    count_ += length;
    if (count_ <= 64) {
      word_ = word_ << length | bits;
      return;
    }
    count_ -= 64;  // of the bits go into the next word
    const std::uint64_t full = word_ << (length - count_) | bits >> count_;
    if (HasFullByte(full)) {
      StoreStuffed(full, 8);
    } else {
      Store(full);
      out_ += 8;
    }
    word_ = bits;
  }

  /// Stores all whole bytes.
  void Finish() {
    if (count_ == 0) {
      return;
    }
    const std::uint64_t upper = word_ << (64 - count_);
    if (HasFullByte(upper)) {
      StoreStuffed(upper, count_ / 8);
    } else {
      Store(upper);
      out_ += count_ / 8;
    }
    count_ %= 8;
  }

  std::uint8_t* out() const { return out_; }
  /// After Finish.
  PendingBits pending() const {
    return {.bits = static_cast<std::uint32_t>(word_) & ((1U << count_) - 1), .count = count_};
  }

 private:
  /// True for every word with a byte of 0xFF, and for a few others.
  static bool HasFullByte(std::uint64_t word) {
    constexpr std::uint64_t kTopBits = 0x8080808080808080;
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    return (word & ~(word + kOnes) & kTopBits) != 0;
  }

  void Store(std::uint64_t word) {
    if constexpr (std::endian::native == std::endian::little) {
      word = __builtin_bswap64(word);
    }
    std::memcpy(out_, &word, sizeof word);
  }

  void StoreStuffed(std::uint64_t word, std::uint32_t bytes) {
    for (; bytes > 0; --bytes, word <<= 8) {
      const auto byte = static_cast<std::uint8_t>(word >> 56);
      *out_++ = byte;
      if (byte == 0xFF) {
        *out_++ = 0;
      }
    }
  }

  std::uint8_t* out_;
  std::uint64_t word_;  // the low count_ bits; above them are bits that have been stored
  std::uint32_t count_;
};

/// JpegKernels::code_block. `Vector::NonZero` gives a byte per row with a bit per column of the
/// coefficients that are not zero.
template <typename Vector>
inline CodingStatus CodeBlockInWords(const CodedBlock& block) {
  if (*block.position > block.buffer_size - kRoomForBlock) {
    return CodingStatus::kCodingFailed;
  }
  WordBitWriter<Vector> writer(block.buffer + *block.position, *block.pending);
  const std::int16_t* const coefficients = block.coefficients;
  std::uint32_t all_bits = 0;  // to find a kNoCode afterwards
  const auto put_value = [&](const CodeTable& table, std::uint32_t run, std::int32_t value)
      __attribute__((always_inline)) {
    const std::int32_t sign = value >> 31;
    const auto low_bits = static_cast<std::uint32_t>(value + sign);
    const auto size = static_cast<std::uint32_t>(
        std::bit_width(static_cast<std::uint32_t>((value ^ sign) - sign)));
    const CodeEntry entry = table.At(run, size);
    all_bits |= entry.bits;
    writer.Put(entry.bits | (low_bits & ((1U << size) - 1)), entry.length);
  };

  put_value(*block.dc, 0, coefficients[0] - *block.predictor);
  const std::uint64_t rows = Vector::NonZero(coefficients);
  std::uint64_t places = 0;
  for (std::size_t row = 0; row < 8; ++row) {
    places |= kZigZagMasks[row][rows >> (8 * row) & 0xFF];
  }
  places &= ~std::uint64_t{1};
  std::uint32_t last = 0;
  while (places != 0) {
    const auto place = static_cast<std::uint32_t>(std::countr_zero(places));
    places &= places - 1;
    std::uint32_t run = place - last - 1;
    last = place;
    for (; run > 15; run -= 16) {
      const CodeEntry& zero_run = block.ac->At(15, 0);
      all_bits |= zero_run.bits;
      writer.Put(zero_run.bits, zero_run.length);
    }
    put_value(*block.ac, run, coefficients[kZigZag[place]]);
  }
  if (last != kBlockSize - 1) {
    const CodeEntry& end_of_block = block.ac->At(0, 0);
    all_bits |= end_of_block.bits;
    writer.Put(end_of_block.bits, end_of_block.length);
  }
  if ((all_bits & kNoCode) != 0) {
    return CodingStatus::kCodingFailed;
  }
  writer.Finish();
  *block.predictor = coefficients[0];
  *block.position = static_cast<std::int32_t>(writer.out() - block.buffer);
  *block.pending = writer.pending();
  return CodingStatus::kOk;
}

}  // namespace vexa::output
