// The JPEG encoder as a whole: the segments of its files, its memory, and what it refuses.

#include <gtest/gtest.h>

#include <string>

#include "library/allocation_counter.hpp"
#include "output/encoding.hpp"
#include "output/jpeg/typical_tables.hpp"
#include "output/pictures.hpp"

namespace vexa::test {
namespace {

using namespace output;

constexpr auto kOk = CodingStatus::kOk;

Samples Encoded(const Samples& picture, int width, int height, int channels, int quality,
                const JpegKernels& kernels = BestJpegKernels()) {
  MemoryStream stream;
  EXPECT_EQ(Encode(stream, picture.data(), width, height, channels, quality, kernels), kOk);
  return stream.bytes;
}

// Segments in the form that they have in a file.
struct SegmentList {
  SegmentList& Add(std::span<const std::uint8_t> more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
    return *this;
  }
  SegmentList& Add(const Samples& more) { return Add(std::span(more)); }
  SegmentList& AddHuffman(std::uint8_t length, std::uint8_t id, const HuffmanLists& lists) {
    return Add({0xFF, 0xC4, 0, length, id}).Add(lists.counts).Add(lists.values);
  }
  Samples bytes;
};

TEST(JpegEncoder, FilesHaveTheSegmentsThatTheStandardsAskFor) {
  constexpr int kWidth = 0x123;
  constexpr int kHeight = 0x203;
  const Samples start = {0xFF, 0xD8, 0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F',
                         0,    1,    2,    0,    0, 1,  0,   1,   0,   0};
  const Samples picture = NoisePicture(3 * kWidth * kHeight, 1);
  // Without scaling the tables of the standard are in the file as they are.
  SegmentList grey;
  grey.Add(start)
      .Add({0xFF, 0xDB, 0, 67, 0})
      .Add(kLuminanceQuant)
      .Add({0xFF, 0xC0, 0, 11, 8, 2, 3, 1, 0x23, 1, 0, 0x21, 0})
      .AddHuffman(31, 0, kLuminanceDc)
      .AddHuffman(181, 0x10, kLuminanceAc)
      .Add({0xFF, 0xDA, 0, 8, 1, 0, 0, 0, 63, 0});
  SegmentList colour;
  colour.Add(start)
      .Add({0xFF, 0xDB, 0, 67, 0})
      .Add(kLuminanceQuant)
      .Add({0xFF, 0xDB, 0, 67, 1})
      .Add(kChrominanceQuant)
      .Add({0xFF, 0xC0, 0, 17, 8, 2, 3, 1, 0x23, 3, 0, 0x21, 0, 1, 0x11, 1, 2, 0x11, 1})
      .AddHuffman(31, 0, kLuminanceDc)
      .AddHuffman(181, 0x10, kLuminanceAc)
      .AddHuffman(31, 1, kChrominanceDc)
      .AddHuffman(181, 0x11, kChrominanceAc)
      .Add({0xFF, 0xDA, 0, 12, 3, 0, 0, 1, 0x11, 2, 0x11, 0, 63, 0});
  for (const auto& [channels, segments] : {std::pair{1, &grey}, {3, &colour}}) {
    const Samples file = Encoded(picture, kWidth, kHeight, channels, 0);
    const Samples& expected = segments->bytes;
    ASSERT_GT(file.size(), expected.size() + 2);
    EXPECT_EQ(Samples(file.begin(), file.begin() + std::ssize(expected)), expected);
    EXPECT_EQ(Samples(file.end() - 2, file.end()), (Samples{0xFF, 0xD9}));
    for (std::size_t i = expected.size(); i + 2 < file.size(); ++i) {
      ASSERT_TRUE(file[i] != 0xFF || file[i + 1] == 0) << "no marker inside the scan, " << i;
    }
  }
}

TEST(JpegEncoder, VersionsWriteTheSameFiles) {
  for (const auto& [width, height] : {std::pair{1, 1}, {16, 8}, {17, 9}, {200, 61}, {523, 40}}) {
    const auto size = static_cast<std::size_t>(4 * width * height);
    for (const Samples& picture : {NoisePicture(size, 3), Photograph(width, height, 4)}) {
      for (const int channels : {1, 3, 4}) {
        for (const int quality : {1, 60, 93, 100}) {
          const Samples expected =
              Encoded(picture, width, height, channels, quality, kReferenceJpegKernels);
          for (const JpegKernels* kernels : UsableJpegKernels()) {
            ASSERT_EQ(Encoded(picture, width, height, channels, quality, *kernels), expected)
                << kernels->name << " " << width << " x " << height << " x " << channels
                << " quality " << quality;
          }
        }
      }
    }
  }
}

TEST(JpegEncoder, FourthBytesAndGapsBetweenRowsDoNotMatter) {
  constexpr int kWidth = 37;
  constexpr int kHeight = 21;
  const Samples bgr24 = Photograph(kWidth, kHeight, 3);
  Samples bgr32;
  Samples spaced;
  for (std::size_t i = 0; i < bgr24.size(); ++i) {
    bgr32.push_back(bgr24[i]);
    if (i % 3 == 2) bgr32.push_back(static_cast<std::uint8_t>(i));
    spaced.push_back(bgr24[i]);
    if (i % (3 * kWidth) == 3 * kWidth - 1) spaced.resize(spaced.size() + 5, 200);
  }
  const Samples expected = Encoded(bgr24, kWidth, kHeight, 3, 80);
  EXPECT_EQ(Encoded(bgr32, kWidth, kHeight, 4, 80), expected);
  MemoryStream stream;
  ASSERT_EQ(
      Encode(stream, spaced.data(), kWidth, kHeight, 3, 80, BestJpegKernels(), 3 * kWidth + 5),
      kOk);
  EXPECT_EQ(stream.bytes, expected);
}

TEST(JpegEncoder, TheLastPixelsFillTheLastBlocks) {
  constexpr std::size_t kPaddedWidth = 32;
  constexpr std::size_t kPaddedHeight = 16;
  for (const auto& [width, height] : {std::pair{25, 9}, {31, 15}, {26, 16}}) {
    for (const int channels : {1, 3}) {
      const Samples picture = NoisePicture(static_cast<std::size_t>(width * height * channels), 6);
      Samples padded;
      for (std::size_t i = 0; i < kPaddedWidth * kPaddedHeight; ++i) {
        const int x = std::min(static_cast<int>(i % kPaddedWidth), width - 1);
        const int y = std::min(static_cast<int>(i / kPaddedWidth), height - 1);
        const auto pixel = picture.begin() + (y * width + x) * channels;
        padded.insert(padded.end(), pixel, pixel + channels);
      }
      Samples expected = Encoded(padded, kPaddedWidth, kPaddedHeight, channels, 90);
      // But for the sizes in the frame header, behind the quantisation tables.
      const std::size_t frame = channels == 1 ? 89 : 158;
      expected[frame + 6] = static_cast<std::uint8_t>(height);
      expected[frame + 8] = static_cast<std::uint8_t>(width);
      EXPECT_EQ(Encoded(picture, width, height, channels, 90), expected)
          << width << " x " << height << " x " << channels;
    }
  }
}

// A stream that only counts.
class Sink : public MemoryStream {
 public:
  CodingStatus Write(const std::uint8_t*, std::int32_t count, std::int32_t* written) override {
    *written = count;
    return kOk;
  }
};

TEST(JpegEncoder, MemoryIsThatOfOneRowOfBlocks) {
  const Samples picture = NoisePicture(20000 * 64, 4);
  Sink sink;
  std::uint64_t before = AllocatedBytes();
  ASSERT_EQ(Encode(sink, picture.data(), 20000, 64, 1, 90), kOk);
  EXPECT_LT(AllocatedBytes() - before + sizeof(CJPEGEncoder), 1U << 20);
  // The widest colour picture; what one row of MCUs takes does not grow with the height.
  before = AllocatedBytes();
  ASSERT_EQ(Encode(sink, picture.data(), 65535, 1, 4, 90), kOk);
  EXPECT_LT(AllocatedBytes() - before, 5U << 20);
  before = AllocatedBytes();
  ASSERT_EQ(Encode(sink, picture.data(), 1, 65535, 4, 90), kOk);
  EXPECT_LT(AllocatedBytes() - before, 100U << 10);
}

TEST(JpegEncoder, ShortWritesEndIt) {
  const Samples picture = NoisePicture(3 * 200 * 50, 4);
  const Samples whole = Encoded(picture, 200, 50, 3, 95);
  for (const std::size_t limit : {std::size_t{0}, std::size_t{1}, std::size_t{622},
                                  std::size_t{700}, std::size_t{9000}, whole.size() - 1}) {
    MemoryStream stream(limit);
    EXPECT_EQ(Encode(stream, picture.data(), 200, 50, 3, 95), CodingStatus::kShortWrite) << limit;
    EXPECT_EQ(stream.bytes, Samples(whole.begin(), whole.begin() + static_cast<long>(limit)));
  }
}

TEST(JpegEncoder, RefusesWhatItCannotEncode) {
  constexpr auto kOutOfRange = CodingStatus::kOutOfRange;
  const Samples picture(64);
  MemoryStream stream;
  struct Case {
    int width, height, channels, quality, line_step;
  };
  for (const Case& test : {Case{0, 1, 1, 50, 8}, Case{1, 0, 1, 50, 8}, Case{65536, 1, 1, 50, 65536},
                           Case{1, 65536, 1, 50, 1}, Case{-1, 1, 1, 50, 1}, Case{4, 4, 2, 50, 8},
                           Case{4, 4, 5, 50, 20}, Case{4, 4, 1, -1, 4}, Case{4, 4, 1, 101, 4},
                           Case{4, 4, 3, 50, 11}}) {
    EXPECT_EQ(Encode(stream, picture.data(), test.width, test.height, test.channels, test.quality,
                     BestJpegKernels(), test.line_step),
              kOutOfRange)
        << test.width << " x " << test.height << " x " << test.channels;
  }
  EXPECT_EQ(Encode(stream, nullptr, 4, 4, 1, 50), kOutOfRange);

  CJPEGEncoder encoder;
  EXPECT_EQ(encoder.SetDestination(&stream), kOk);
  EXPECT_EQ(encoder.WriteHeader(), kOutOfRange);
  EXPECT_EQ(encoder.SetSource(picture.data(), 8, 8, 8, 1, SourceColor::kGrey, 0, 8), kOk);
  struct Parameters {
    int mode, color, sampling, restart;
    bool optimise;
  };
  for (const Parameters& p : {Parameters{1, 4, 1, 0, false},
                              {2, 1, 1, 0, false},
                              {1, 1, 2, 0, false},
                              {1, 1, 1, 8, false},
                              {1, 1, 1, 0, true}}) {
    EXPECT_EQ(encoder.SetParams(static_cast<JpegMode>(p.mode), static_cast<JpegColor>(p.color),
                                static_cast<JpegSampling>(p.sampling), p.restart, p.optimise, 90),
              kOutOfRange);
  }
  EXPECT_EQ(encoder.WriteData(), kOutOfRange);
  EXPECT_TRUE(stream.bytes.empty());
}

}  // namespace
}  // namespace vexa::test
