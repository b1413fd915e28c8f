// The inner loops of the JPEG encoder: each version against what the standards say, and against
// the others.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <string>

#include "output/jpeg/huffman_table.hpp"
#include "output/jpeg/kernels/dispatch.hpp"
#include "output/jpeg/typical_tables.hpp"
#include "output/pictures.hpp"

namespace vexa::test {
namespace {

using namespace output;

constexpr auto kOk = CodingStatus::kOk;
constexpr auto kFailed = CodingStatus::kCodingFailed;
using Block = std::array<std::uint8_t, kBlockSize>;
using Coefficients = std::array<double, kBlockSize>;

// The forward DCT as T.81, A.3.3 defines it.
Coefficients TextbookDct(const Block& block) {
  static const auto kBasis = [] {
    std::array<std::array<double, 8>, 8> basis{};
    for (std::size_t k = 0; k < 8; ++k) {
      for (std::size_t x = 0; x < 8; ++x) {
        basis[k][x] = (k == 0 ? std::numbers::sqrt2 / 4 : 0.5) *
                      std::cos(static_cast<double>((2 * x + 1) * k) * std::numbers::pi / 16);
      }
    }
    return basis;
  }();
  Coefficients rows{};
  Coefficients result{};
  for (std::size_t i = 0; i < kBlockSize; ++i) {
    for (std::size_t x = 0; x < 8; ++x) {
      rows[i] += (block[i / 8 * 8 + x] - 128) * kBasis[i % 8][x];
    }
  }
  for (std::size_t i = 0; i < kBlockSize; ++i) {
    for (std::size_t y = 0; y < 8; ++y) {
      result[i] += rows[8 * y + i % 8] * kBasis[i / 8][y];
    }
  }
  return result;
}

constexpr std::size_t kKinds = 5;

// Blocks of noise, of two values, of the signs of the basis functions (which have the largest
// coefficients), of little contrast, and of a photograph.
std::vector<Block> Blocks() {
  std::mt19937 random(5);
  const Samples photograph = Photograph(512, 512, 1);
  const auto wave = [](std::size_t x, std::size_t k) {
    return std::cos(static_cast<double>((2 * x + 1) * k) * std::numbers::pi / 16);
  };
  std::vector<Block> blocks(4000 * kKinds);
  for (std::size_t b = 0; b < blocks.size(); ++b) {
    const std::size_t u = random() % 8;
    const std::size_t v = random() % 8;
    const std::size_t corner = 512 * (random() % 504) + random() % 504;
    for (std::size_t i = 0; i < kBlockSize; ++i) {
      const std::size_t x = i % 8;
      const std::size_t y = i / 8;
      const std::size_t values[kKinds] = {random() % 256, random() % 2 * 255,
                                          wave(x, u) * wave(y, v) >= 0 ? 255U : 0U,
                                          30 * u + random() % 16, photograph[corner + 512 * y + x]};
      blocks[b][i] = static_cast<std::uint8_t>(values[b % kKinds]);
    }
  }
  return blocks;
}

TEST(JpegKernels, TransformRoundsTheDctCorrectly) {
  const std::vector<Block> blocks = Blocks();
  std::vector<Coefficients> exact;
  for (const Block& block : blocks) {
    exact.push_back(TextbookDct(block));
  }
  for (const JpegKernels* kernels : UsableJpegKernels()) {
    for (const int quality : {100, 97, 90, 50, 1}) {
      SCOPED_TRACE(std::string(kernels->name) + " quality " + std::to_string(quality));
      CJPEGEncoderQuantTable table;
      ASSERT_EQ(table.Init(0, kLuminanceQuant, quality), kOk);
      std::size_t different = 0;
      for (std::size_t b = 0; b < blocks.size(); ++b) {
        alignas(32) std::array<std::int16_t, kBlockSize> result{};
        kernels->transform({.samples = blocks[b].data(),
                            .line_step = 8,
                            .block_step = 0,
                            .coefficients = result.data(),
                            .coefficient_step = 0,
                            .count = 1,
                            .table = &table.forward()});
        for (std::size_t place = 0; place < kBlockSize; ++place) {
          const std::size_t i = kZigZag[place];
          const double value = exact[b][i] / table.raw()[place];
          // The textbook's own error must not decide about halves, which go away from zero.
          const double rounded = std::trunc(value + std::copysign(0.5 + 1e-9, value));
          if (rounded != result[i]) {
            ++different;
            ASSERT_NEAR(std::abs(value - result[i]), 0.5, 0.001) << "block " << b << " at " << i;
          }
        }
      }
      EXPECT_LE(different * 100000, blocks.size() * kBlockSize);
    }
  }
}

TEST(JpegKernels, ColoursFollowTheStandard) {
  constexpr std::size_t kCount = 263;
  Samples bgr32 = NoisePicture(4 * kCount, 1);
  const std::uint8_t extremes[] = {255, 255, 255, 9, 0, 0, 0, 9, 0, 0, 255, 9, 255, 0, 0, 9};
  std::copy(std::begin(extremes), std::end(extremes), bgr32.begin());
  Samples bgr24;
  for (std::size_t i = 0; i < bgr32.size(); ++i) {
    if (i % 4 != 3) bgr24.push_back(bgr32[i]);
  }
  for (const JpegKernels* kernels : UsableJpegKernels()) {
    // Every length: whatever the vectors leave over, and nothing beyond the end.
    for (std::size_t n = 0; n <= kCount; ++n) {
      const Samples source24(bgr24.begin(), bgr24.begin() + static_cast<std::ptrdiff_t>(3 * n));
      const Samples source32(bgr32.begin(), bgr32.begin() + static_cast<std::ptrdiff_t>(4 * n));
      std::array<Samples, 3> p;
      p.fill(Samples(n + 1, 77));
      std::array<Samples, 3> q = p;
      kernels->convert_bgr24(source24.data(), p[0].data(), p[1].data(), p[2].data(), n);
      kernels->convert_bgr32(source32.data(), q[0].data(), q[1].data(), q[2].data(), n);
      ASSERT_EQ(p, q) << kernels->name << " " << n;
      for (std::size_t i = 0; i < n; ++i) {
        const std::uint8_t* pixel = &source32[4 * i];
        const double luminance = 0.299 * pixel[2] + 0.587 * pixel[1] + 0.114 * pixel[0];
        ASSERT_NEAR(p[0][i], luminance, 0.502) << kernels->name;
        ASSERT_NEAR(p[1][i], std::min(128 + (pixel[0] - luminance) / 1.772, 255.0), 0.502);
        ASSERT_NEAR(p[2][i], std::min(128 + (pixel[2] - luminance) / 1.402, 255.0), 0.502);
      }
      for (const Samples& plane : p) ASSERT_EQ(plane[n], 77);
      Samples halves(n / 2 + 1, 77);
      kernels->halve(source24.data(), halves.data(), n / 2);
      ASSERT_EQ(halves[n / 2], 77);
      for (std::size_t i = 0; i < n / 2; ++i) {
        ASSERT_EQ(halves[i], (source24[2 * i] + source24[2 * i + 1] + i % 2) / 2) << i;
      }
    }
  }
}

// The typical tables of luminance, ready for use.
struct LuminanceTables {
  LuminanceTables() {
    EXPECT_EQ(dc.Create(), kOk);
    EXPECT_EQ(ac.Create(), kOk);
    EXPECT_EQ(dc.Init(0, HuffmanClass::kDc, kLuminanceDc.counts, kLuminanceDc.values), kOk);
    EXPECT_EQ(ac.Init(0, HuffmanClass::kAc, kLuminanceAc.counts, kLuminanceAc.values), kOk);
  }
  CJPEGEncoderHuffmanTable dc;
  CJPEGEncoderHuffmanTable ac;
};

using CodedBlocks = std::vector<std::int16_t>;

// Codes blocks through a buffer of a given size, which it watches over, and flushes at the end.
CodingStatus Code(const JpegKernels& kernels, const CodedBlocks& blocks, const CodeTable& dc,
                  const CodeTable& ac, Samples* bytes, std::int32_t size = kRoomForBlock) {
  constexpr std::size_t kGuard = 64;
  Samples buffer(static_cast<std::size_t>(size) + kGuard, 0xA5);
  CMemoryBuffer aligned;
  EXPECT_EQ(aligned.Allocate(static_cast<std::int32_t>(2 * blocks.size())), kOk);
  auto* coefficients = reinterpret_cast<std::int16_t*>(aligned.data());
  std::copy(blocks.begin(), blocks.end(), coefficients);
  ComponentCoder coder{.dc = &dc, .ac = &ac};
  ComponentCoder* const pattern[] = {&coder};
  PendingBits pending;
  std::int32_t position = 0;
  bytes->clear();
  BlockRun run{coefficients, blocks.size() / kBlockSize, pattern, 0};
  do {
    const std::size_t before = run.count;
    const CodingStatus status =
        kernels.code_blocks(&run, {buffer.data(), size, &position, &pending});
    if (status != kOk) return status;
    EXPECT_LT(run.count, before) << "there was room";
    EXPECT_LT(pending.count, 8U);
    EXPECT_EQ(std::count(buffer.end() - kGuard, buffer.end(), 0xA5), kGuard) << kernels.name;
    bytes->insert(bytes->end(), buffer.begin(), buffer.begin() + position);
    position = 0;
  } while (run.count > 0);
  EXPECT_EQ(FlushPendingBits(buffer.data(), 2, &position, &pending), kOk);
  bytes->insert(bytes->end(), buffer.begin(), buffer.begin() + position);
  return kOk;
}

// Bits as bytes, completed with 1-bits, with a zero byte behind each 0xFF.
Samples Pack(std::string bits) {
  std::erase(bits, ' ');
  bits.resize((bits.size() + 7) / 8 * 8, '1');
  Samples bytes;
  for (std::size_t i = 0; i < bits.size(); i += 8) {
    bytes.push_back(static_cast<std::uint8_t>(std::stoi(bits.substr(i, 8), nullptr, 2)));
    if (bytes.back() == 0xFF) bytes.push_back(0);
  }
  return bytes;
}

TEST(JpegKernels, BlocksAreCodedAsTheStandardHasIt) {
  struct Case {
    const char* what;
    std::vector<std::pair<std::size_t, std::int16_t>> coefficients;  // place in the zig-zag, value
    std::string bits;
  };
  const Case cases[] = {
      {"nothing", {}, "00 1010"},
      {"differences", {{0, 5}, {64, 5}, {128, -2}}, "100 101 1010  00 1010  100 000 1010"},
      {"no end of block", {{63, 1}}, "00 11111111001 11111111001 11111111001 1111111111101011 1"},
      {"a long run", {{18, -1}}, "00 11111111001 1100 0 1010"},
      {"a run of 15", {{16, 1}}, "00 1111111111110101 1 1010"},
      {"a long run between", {{1, 1}, {18, 2}}, "00 00 1 11111111001 01 10 1010"},
      {"largest",
       {{0, -1024}, {1, 1023}},
       "111111110 01111111111 1111111110000011 1111111111 1010"},
      {"ends in an 0xFF", {{0, 7}, {1, 1023}}, "100 111 1111111110000011 1111111111 1010"},
  };
  const LuminanceTables tables;
  for (const JpegKernels* kernels : UsableJpegKernels()) {
    for (const Case& test : cases) {
      CodedBlocks blocks(kBlockSize);
      for (const auto& [place, value] : test.coefficients) {
        blocks.resize(std::max(blocks.size(), (place / kBlockSize + 1) * kBlockSize));
        blocks[place / kBlockSize * kBlockSize + kZigZag[place % kBlockSize]] = value;
      }
      Samples bytes;
      ASSERT_EQ(Code(*kernels, blocks, tables.dc.codes(), tables.ac.codes(), &bytes), kOk);
      EXPECT_EQ(bytes, Pack(test.bits)) << kernels->name << ": " << test.what;
    }
  }
  std::uint8_t end[2] = {};
  std::int32_t position = 0;
  PendingBits ones{.bits = 0x7F, .count = 7};
  EXPECT_EQ(FlushPendingBits(end, 1, &position, &ones), kFailed);
  EXPECT_EQ(FlushPendingBits(end, 2, &position, &ones), kOk);
  EXPECT_EQ(end[0], 0xFF);
  EXPECT_EQ(position, 2);
  EXPECT_EQ(ones.count, 0U);
}

TEST(JpegKernels, VersionsCodeAlikeAndStayInTheBuffer) {
  std::mt19937 random(9);
  const LuminanceTables tables;
  const auto code = [&](const JpegKernels& kernels, const CodedBlocks& blocks, std::int32_t size) {
    Samples bytes;
    EXPECT_EQ(Code(kernels, blocks, tables.dc.codes(), tables.ac.codes(), &bytes, size), kOk);
    return bytes;
  };
  for (std::uint32_t round = 0; round < 200; ++round) {
    CodedBlocks blocks(kBlockSize * (1 + random() % 40));
    for (std::int16_t& coefficient : blocks) {
      const std::int32_t limit = 1 << random() % 11;
      if (random() % 64 <= round % 65) {
        coefficient = static_cast<std::int16_t>(
            round % 10 == 0 ? 1023
                            : static_cast<std::int32_t>(random() % 2048) % limit -
                                  static_cast<std::int32_t>(random() % 2) * (limit - 1));
      }
    }
    const Samples expected = code(kReferenceJpegKernels, blocks, 1 << 20);
    for (const JpegKernels* kernels : UsableJpegKernels()) {
      for (const std::int32_t size : {kRoomForBlock, kRoomForBlock + 77, 4096, 1 << 20}) {
        ASSERT_EQ(code(*kernels, blocks, size), expected) << kernels->name << " " << size;
      }
    }
  }
}

TEST(JpegKernels, RefuseWhatHasNoCode) {
  const LuminanceTables tables;
  CJPEGEncoderHuffmanTable only_end;
  ASSERT_EQ(only_end.Create(), kOk);
  const std::uint8_t symbols[] = {0};
  ASSERT_EQ(only_end.Init(3, HuffmanClass::kAc, std::array<std::uint8_t, 16>{1}, symbols), kOk);
  Samples bytes;
  for (const JpegKernels* kernels : UsableJpegKernels()) {
    SCOPED_TRACE(kernels->name);
    for (const int value : {1024, 2047, 32767, -1025, -32768}) {
      for (const std::size_t place : {0U, 1U, 63U}) {
        CodedBlocks block(kBlockSize);
        block[place] = static_cast<std::int16_t>(value);
        EXPECT_EQ(Code(*kernels, block, tables.dc.codes(), tables.ac.codes(), &bytes), kFailed);
      }
    }
    CodedBlocks block(kBlockSize);
    EXPECT_EQ(Code(*kernels, block, tables.dc.codes(), only_end.codes(), &bytes), kOk);
    block[40] = 1;
    EXPECT_EQ(Code(*kernels, block, tables.dc.codes(), only_end.codes(), &bytes), kFailed);
    // Without room nothing is taken and nothing written.
    PendingBits pending;
    std::int32_t position = 1;
    BlockRun run{block.data(), 1, {}, 0};
    EXPECT_EQ(kernels->code_blocks(&run, {nullptr, kRoomForBlock, &position, &pending}), kOk);
    EXPECT_EQ(run.count, 1U);
    EXPECT_EQ(position, 1);
  }
}

TEST(HuffmanTable, RefusesListsThatMakeNoTable) {
  struct Case {
    const char* what;
    HuffmanClass table_class;
    std::array<std::uint8_t, 16> counts;
    std::vector<std::uint8_t> values;
  };
  const Case cases[] = {
      {"all codes of one bit", HuffmanClass::kAc, {2}, {1, 2}},
      {"no code left", HuffmanClass::kAc, {1, 1, 2}, {1, 2, 3, 4}},
      {"too few symbols", HuffmanClass::kAc, {1, 1}, {1}},
      {"a symbol twice", HuffmanClass::kAc, {1, 1}, {1, 1}},
      {"no DC symbol", HuffmanClass::kDc, {1}, {16}},
  };
  for (const Case& test : cases) {
    CJPEGEncoderHuffmanTable table;
    EXPECT_EQ(table.Init(0, test.table_class, test.counts, test.values), kFailed) << "no memory";
    ASSERT_EQ(table.Create(), kOk);
    EXPECT_EQ(table.Init(0, test.table_class, test.counts, test.values), kFailed) << test.what;
  }
}

}  // namespace
}  // namespace vexa::test
