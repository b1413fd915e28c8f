#include "output/jpeg/kernels/reference_kernels.hpp"

#include <algorithm>
#include <bit>
#include <cmath>

#include "output/jpeg/kernels/aan_transform.hpp"
#include "output/jpeg/kernels/dispatch.hpp"

namespace vexa::output {
namespace {

template <std::size_t kPixelSize>
void ConvertBgr(const std::uint8_t* bgr, std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr,
                std::size_t n) {
  // The factors of T.871 times 65536, rounded; 128 and the rounding in one addend.
  constexpr std::int32_t kHalf = 32768;
  constexpr std::int32_t kMiddle = (128 << 16) + kHalf - 1;
  for (std::size_t i = 0; i < n; ++i, bgr += kPixelSize) {
    const std::int32_t b = bgr[0];
    const std::int32_t g = bgr[1];
    const std::int32_t r = bgr[2];
    y[i] = static_cast<std::uint8_t>((19595 * r + 38470 * g + 7471 * b + kHalf) >> 16);
    cb[i] = static_cast<std::uint8_t>((-11059 * r - 21709 * g + 32768 * b + kMiddle) >> 16);
    cr[i] = static_cast<std::uint8_t>((32768 * r - 27439 * g - 5329 * b + kMiddle) >> 16);
  }
}

void Halve(const std::uint8_t* in, std::uint8_t* out, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    out[i] = static_cast<std::uint8_t>((in[2 * i] + in[2 * i + 1] + static_cast<int>(i % 2)) >> 1);
  }
}

void Transform(const BlockRow& row) {
  const std::uint8_t* samples = row.samples;
  std::int16_t* coefficients = row.coefficients;
  for (std::size_t i = 0; i < row.count; ++i) {
    TransformExactly(samples, row.line_step, *row.table, coefficients);
    samples += row.block_step;
    coefficients += row.coefficient_step;
  }
}

/// Puts bits into the buffer byte by byte.
class BitWriter {
 public:
  BitWriter(std::uint8_t* out, const PendingBits& pending) : out_(out), pending_(pending) {}

  void Put(std::uint32_t bits, std::uint32_t length) {
    const std::uint64_t all = std::uint64_t{pending_.bits} << length | bits;
    std::uint32_t count = pending_.count + length;
    for (; count >= 8; count -= 8) {
      const auto byte = static_cast<std::uint8_t>(all >> (count - 8) & 0xFF);
      *out_++ = byte;
      if (byte == 0xFF) {
        *out_++ = 0;
      }
    }
    pending_ = {.bits = static_cast<std::uint32_t>(all & ((1U << count) - 1)), .count = count};
  }

  const std::uint8_t* out() const { return out_; }
  const PendingBits& pending() const { return pending_; }

 private:
  std::uint8_t* out_;
  PendingBits pending_;
};

/// Puts the code of a coefficient or difference behind a run of zeros; false if it has none.
bool PutValue(const CodeTable& table, std::size_t run, std::int32_t value, BitWriter* writer) {
  const auto size = static_cast<std::uint32_t>(
      std::bit_width(static_cast<std::uint32_t>(value < 0 ? -value : value)));
  const CodeEntry& entry = table.At(run, size);
  if (entry.bits == kNoCode) {
    return false;
  }
  const auto low_bits = static_cast<std::uint32_t>(value < 0 ? value - 1 : value);
  writer->Put(entry.bits | (low_bits & ((1U << size) - 1)), entry.length);
  return true;
}

bool PutAcCoefficients(const std::int16_t* coefficients, const CodeTable& table,
                       BitWriter* writer) {
  constexpr std::size_t kLongestRun = 15;
  std::size_t zeros = 0;
  bool complete = true;
  for (std::size_t place = 1; place < kBlockSize; ++place) {
    const std::int32_t value = coefficients[kZigZag[place]];
    if (value == 0) {
      ++zeros;
      continue;
    }
    for (; zeros > kLongestRun; zeros -= kLongestRun + 1) {
      complete = PutValue(table, kLongestRun, 0, writer) && complete;  // ZRL
    }
    complete = PutValue(table, zeros, value, writer) && complete;
    zeros = 0;
  }
  return (zeros == 0 || PutValue(table, 0, 0, writer)) && complete;  // EOB
}

bool PutBlock(const std::int16_t* coefficients, ComponentCoder* coder, BitWriter* writer) {
  const bool in_range =
      std::all_of(coefficients, coefficients + kBlockSize, [](std::int16_t coefficient) {
        return coefficient >= -kCoefficientLimit && coefficient < kCoefficientLimit;
      });
  if (!in_range) {
    return false;
  }
  const std::int32_t difference = coefficients[0] - coder->predictor;
  coder->predictor = coefficients[0];
  return PutValue(*coder->dc, 0, difference, writer) &&
         PutAcCoefficients(coefficients, *coder->ac, writer);
}

CodingStatus CodeBlocks(BlockRun* run, const CodeBuffer& buffer) {
  BitWriter writer(buffer.bytes + *buffer.position, *buffer.pending);
  while (run->count > 0 && buffer.bytes + buffer.size - writer.out() >= kRoomForBlock) {
    if (!PutBlock(run->coefficients, run->pattern[run->place], &writer)) {
      return CodingStatus::kCodingFailed;
    }
    run->coefficients += kBlockSize;
    run->place = (run->place + 1) % run->pattern.size();
    --run->count;
  }
  *buffer.position = static_cast<std::int32_t>(writer.out() - buffer.bytes);
  *buffer.pending = writer.pending();
  return CodingStatus::kOk;
}

}  // namespace

void TransformExactly(const std::uint8_t* samples, std::ptrdiff_t line_step,
                      const ForwardTable& table, std::int16_t* coefficients) {
  double columns[8][8];  // [column][row]
  for (std::ptrdiff_t column = 0; column < 8; ++column) {
    for (std::ptrdiff_t row = 0; row < 8; ++row) {
      columns[column][row] = samples[row * line_step + column] - 128.0;
    }
    AanTransform<double>(columns[column]);
  }
  for (std::size_t row = 0; row < 8; ++row) {
    double line[8];
    for (std::size_t column = 0; column < 8; ++column) {
      line[column] = columns[column][row];
    }
    AanTransform<double>(line);
    for (std::size_t column = 0; column < 8; ++column) {
      const std::size_t i = 8 * row + column;
      const double value = line[column] * table.exact_factor[i];
      coefficients[i] = static_cast<std::int16_t>(value + std::copysign(0.5, value));
    }
  }
}

constinit const JpegKernels kReferenceJpegKernels = {
    .name = "reference",
    .convert_bgr24 = ConvertBgr<3>,
    .convert_bgr32 = ConvertBgr<4>,
    .halve = Halve,
    .transform = Transform,
    .code_blocks = CodeBlocks,
};

}  // namespace vexa::output
