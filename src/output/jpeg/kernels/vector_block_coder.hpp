/// \file
/// Coding a block with 64-bit words: the coefficients that are not zero are found by a bit mask,
/// and bits leave eight bytes at a time. Shared by the vector versions, each of which compiles it
/// for its processors.
#pragma once

#include <algorithm>
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

/// Puts bits into memory as they come, with a store for each and without a branch: how many bits
/// there are to store cannot be predicted. A template, so that each version has its own.
template <typename Vector>
class RawBitWriter {
 public:
  RawBitWriter(std::uint8_t* out, const PendingBits& pending)
      : out_(out),
        word_(std::uint64_t{pending.bits} << 32 << (32 - pending.count)),
        count_(pending.count) {}

  /// @param length 1 to 57.
  void Put(std::uint64_t bits, std::uint32_t length) {
    count_ += length;
    word_ |= bits << (64 - count_);
    StoreBigEndian(out_, word_);
    out_ += count_ / 8;
    word_ <<= count_ & 56U;
    count_ %= 8;
  }

  std::uint8_t* out() const { return out_; }
  PendingBits pending() const {
    return {.bits = static_cast<std::uint32_t>(word_ >> 32 >> (32 - count_)), .count = count_};
  }

 private:
  static void StoreBigEndian(std::uint8_t* out, std::uint64_t word) {
    if constexpr (std::endian::native == std::endian::little) {
      word = __builtin_bswap64(word);
    }
    std::memcpy(out, &word, sizeof word);
  }

  std::uint8_t* out_;
  std::uint64_t word_;   // the upper count_ bits; zeros below
  std::uint32_t count_;  // 0 to 7
};

/// Additional bits of a coefficient.
struct AdditionalBits {
  std::uint16_t bits;
  std::uint16_t size;
};

/// Of the coefficients from -kCoefficientLimit on.
inline constexpr std::array<AdditionalBits, 2 * kCoefficientLimit> kAdditionalBits = [] {
  std::array<AdditionalBits, 2 * kCoefficientLimit> table{};
  for (std::int32_t value = -kCoefficientLimit; value < kCoefficientLimit; ++value) {
    const auto size = std::bit_width(static_cast<std::uint32_t>(value < 0 ? -value : value));
    const std::int32_t bits = value < 0 ? value + (1 << size) - 1 : value;
    table[static_cast<std::size_t>(value + kCoefficientLimit)] = {
        .bits = static_cast<std::uint16_t>(bits), .size = static_cast<std::uint16_t>(size)};
  }
  return table;
}();

/// Goes through the AC coefficients of a block that are not zero in zig-zag order.
template <typename Vector>
class Places {
 public:
  explicit Places(const std::int16_t* coefficients) : coefficients_(coefficients) {
    const std::uint64_t rows = Vector::NonZero(coefficients);
    for (std::size_t row = 0; row < 8; ++row) {
      places_ |= kZigZagMasks[row][rows >> (8 * row) & 0xFF];
    }
    places_ >>= 1;
  }

  bool left() const { return places_ != 0; }
  std::uint32_t zeros() const { return static_cast<std::uint32_t>(std::countr_zero(places_)); }
  std::ptrdiff_t Take() {
    const std::uint32_t zeros = this->zeros();
    natural_ += zeros;
    places_ >>= zeros;
    places_ >>= 1;
    return coefficients_[*natural_++];
  }
  std::size_t next() const { return static_cast<std::size_t>(natural_ - kZigZag.data()); }

 private:
  const std::int16_t* coefficients_;
  std::uint64_t places_ = 0;
  const std::uint8_t* natural_ = kZigZag.data() + 1;
};

/// JpegKernels::code_blocks. `Vector` provides:
///   NonZero(c)    a byte for each row of coefficients, in it a bit for each that is not zero
///   AreSmall(c)   whether all 64 lie in the range of kAdditionalBits
///   CopyFindingFullBytes(in, out)  copies kCopied bytes, at most 32, and gives a bit for each that
///                 is 0xFF
template <typename Vector>
class VectorBlockCoder {
 public:
  static CodingStatus CodeBlocks(BlockRun* run, const CodeBuffer& buffer) {
    // Coded here first, then copied with the zero bytes put in.
    std::uint8_t raw[kRawSize];
    const std::int32_t room = std::min((buffer.size - *buffer.position) / 2, kRawSize);
    const std::int16_t* coefficients = run->coefficients;
    VectorBlockCoder coder(raw, *buffer.pending);
    for (; run->count > 0 && coder.writer_.out() - raw + kLongestBlock <= room; --run->count) {
      if (!Vector::AreSmall(coefficients)) [[unlikely]] {
        return CodingStatus::kCodingFailed;
      }
      coder.PutBlock(coefficients, run->pattern[run->place]);
      coefficients += kBlockSize;
      run->place = run->place + 1 == run->pattern.size() ? 0 : run->place + 1;
    }
    if ((coder.all_bits_ & kNoCode) != 0) {
      return CodingStatus::kCodingFailed;
    }
    run->coefficients = coefficients;
    *buffer.pending = coder.writer_.pending();
    *buffer.position += CopyStuffed(raw, coder.writer_.out(), buffer.bytes + *buffer.position);
    return CodingStatus::kOk;
  }

 private:
  static constexpr std::int32_t kRawSize = 2048;

  VectorBlockCoder(std::uint8_t* raw, const PendingBits& pending) : writer_(raw, pending) {}

  static std::int32_t CopyStuffed(const std::uint8_t* in, const std::uint8_t* end,
                                  std::uint8_t* const out) {
    std::uint8_t* to = out;
    while (in < end) {
      const std::uint32_t full_bytes = Vector::CopyFindingFullBytes(in, to);
      std::ptrdiff_t bytes = std::min<std::ptrdiff_t>(Vector::kCopied, end - in);
      if (full_bytes != 0 && std::countr_zero(full_bytes) < bytes) [[unlikely]] {
        bytes = std::countr_zero(full_bytes) + 1;
        to[bytes] = 0;
        ++to;
      }
      in += bytes;
      to += bytes;
    }
    return static_cast<std::int32_t>(to - out);
  }

  void PutBlock(const std::int16_t* coefficients, ComponentCoder* coder) {
    PutDifference(*coder->dc, coefficients[0] - coder->predictor);
    coder->predictor = coefficients[0];
    const CodeTable& ac = *coder->ac;
    Places<Vector> places(coefficients);
    while (places.left()) {
      // Two coefficients are put at once, unless many zeros lie between them.
      Code code = NextCode(&places, ac);
      if (places.left() && places.zeros() <= kLongestRun) {
        const Code second = NextCode(&places, ac);
        code = {code.bits << second.length | second.bits, code.length + second.length};
      }
      writer_.Put(code.bits, code.length);
    }
    if (places.next() != kBlockSize) {
      Put(ac.At(0, 0), 0);
    }
  }

  static constexpr std::uint32_t kLongestRun = 15;

  struct Code {
    std::uint64_t bits;
    std::uint32_t length;
  };

  Code NextCode(Places<Vector>* places, const CodeTable& ac) {
    std::uint32_t zeros = places->zeros();
    for (; zeros > kLongestRun; zeros -= kLongestRun + 1) [[unlikely]] {
        Put(ac.At(kLongestRun, 0), 0);
      }
    const AdditionalBits& additional = kAdditionalBits.data()[kCoefficientLimit + places->Take()];
    const CodeEntry& entry = ac.At(zeros, additional.size);
    all_bits_ |= entry.bits;
    return {entry.bits | additional.bits, entry.length};
  }

  void PutDifference(const CodeTable& dc, std::int32_t difference) {
    const std::int32_t sign = difference >> 31;
    const auto size = static_cast<std::uint32_t>(
        std::bit_width(static_cast<std::uint32_t>((difference ^ sign) - sign)));
    Put(dc.At(0, size), static_cast<std::uint32_t>(difference + sign) & ((1U << size) - 1));
  }

  void Put(const CodeEntry& entry, std::uint32_t additional_bits) {
    all_bits_ |= entry.bits;
    writer_.Put(entry.bits | additional_bits, entry.length);
  }

  RawBitWriter<Vector> writer_;
  std::uint32_t all_bits_ = 0;  // of all entries, to find a kNoCode afterwards
};

}  // namespace vexa::output
