// What libjpeg makes of our files.

#include "output/host/decode_jpeg.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "output/encoding.hpp"
#include "output/jpeg/typical_tables.hpp"
#include "output/pictures.hpp"

namespace vexa::test {
namespace {

// Mean square of the differences in all channels.
double MeanSquare(const Samples& a, const Samples& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    sum += std::pow(a[i] - b[i], 2);
  }
  return sum / static_cast<double>(a.size());
}

DecodedJpeg ThereAndBack(const Samples& picture, int width, int height, int channels, int quality) {
  MemoryStream stream;
  EXPECT_EQ(Encode(stream, picture.data(), width, height, channels, quality),
            output::CodingStatus::kOk);
  DecodedJpeg decoded;
  EXPECT_NO_THROW(decoded = DecodeJpeg(stream.bytes));
  EXPECT_EQ(decoded.warnings, 0);
  EXPECT_TRUE(decoded.jfif);
  EXPECT_EQ(decoded.color_space, channels == 1 ? JCS_GRAYSCALE : JCS_YCbCr);
  EXPECT_EQ(decoded.width, static_cast<unsigned>(width));
  EXPECT_EQ(decoded.height, static_cast<unsigned>(height));
  EXPECT_EQ(decoded.pixels.size(),
            picture.size() / (channels == 4 ? 4U : 1U) * (channels == 4 ? 3U : 1U));
  return decoded;
}

// A ramp in every colour; nothing is lost by sub-sampling it.
Samples Ramp(int width, int height, int channels) {
  Samples picture;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int values[] = {40 + x + 2 * y, 200 - x - y, 60 + 2 * x, 255};
      for (int channel = 0; channel < channels; ++channel) {
        picture.push_back(static_cast<std::uint8_t>(values[channel]));
      }
    }
  }
  return picture;
}

TEST(JpegDecoding, EverySizeReadsBackWithoutAWarning) {
  const std::pair<int, int> sizes[] = {{1, 1},   {2, 1},  {1, 9},   {7, 8},  {8, 7},
                                       {15, 16}, {17, 9}, {33, 31}, {48, 3}, {65, 64}};
  for (const auto& [width, height] : sizes) {
    for (const int channels : {1, 3, 4}) {
      SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height) + " x " +
                   std::to_string(channels));
      const Samples ramp = Ramp(width, height, channels);
      const DecodedJpeg decoded = ThereAndBack(ramp, width, height, channels, 100);
      const Samples expected = channels == 4 ? Ramp(width, height, 3) : ramp;
      ASSERT_EQ(decoded.pixels.size(), expected.size());
      // Rounding of colours and coefficients, and what the reader interpolates.
      for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_NEAR(decoded.pixels[i], expected[i], channels == 1 ? 1 : 4) << i;
      }
      // The hardest content, which fills the buffers.
      ThereAndBack(NoisePicture(ramp.size(), 8), width, height, channels, 100);
    }
  }
}

TEST(JpegDecoding, QualityDecidesHowNearThePictureIs) {
  constexpr int kWidth = 301;
  constexpr int kHeight = 203;
  for (const int channels : {1, 3}) {
    const Samples picture = Photograph(kWidth, kHeight, channels);
    // The bounds are what these pictures came to, and a little more.
    double last = 0;
    for (int quality = 100; quality > 0; --quality) {
      const double error =
          MeanSquare(ThereAndBack(picture, kWidth, kHeight, channels, quality).pixels, picture);
      // The noise of the colours goes with the sub-sampling.
      const double most = quality == 100  ? (channels == 1 ? 0.15 : 6.5)
                          : quality >= 50 ? 15
                          : quality >= 10 ? 55
                                          : 205;
      ASSERT_LT(error, most) << quality;
      ASSERT_GT(error, 0.8 * last) << quality;
      last = error;
    }
    // 0: the tables of the standard, which are those of 50.
    EXPECT_EQ(ThereAndBack(picture, kWidth, kHeight, channels, 0).pixels,
              ThereAndBack(picture, kWidth, kHeight, channels, 50).pixels);
  }
}

TEST(JpegDecoding, TablesAreThoseOfLibjpeg) {
  jpeg_compress_struct peer{};
  jpeg_error_mgr errors{};
  peer.err = jpeg_std_error(&errors);
  jpeg_create_compress(&peer);
  peer.in_color_space = JCS_RGB;
  peer.input_components = 3;
  jpeg_set_defaults(&peer);
  const Samples pixel(3);
  for (int quality = 1; quality <= 100; ++quality) {
    jpeg_set_quality(&peer, quality, TRUE);
    MemoryStream stream;
    ASSERT_EQ(Encode(stream, pixel.data(), 1, 1, 3, quality), output::CodingStatus::kOk);
    for (std::size_t i = 0; i < output::kBlockSize; ++i) {
      const std::size_t natural = output::kZigZag[i];
      ASSERT_EQ(stream.bytes[25 + i], peer.quant_tbl_ptrs[0]->quantval[natural]) << quality;
      ASSERT_EQ(stream.bytes[94 + i], peer.quant_tbl_ptrs[1]->quantval[natural]) << quality;
    }
  }
  for (const auto& [ours, theirs] : {std::pair{&output::kLuminanceDc, peer.dc_huff_tbl_ptrs[0]},
                                     {&output::kLuminanceAc, peer.ac_huff_tbl_ptrs[0]},
                                     {&output::kChrominanceDc, peer.dc_huff_tbl_ptrs[1]},
                                     {&output::kChrominanceAc, peer.ac_huff_tbl_ptrs[1]}}) {
    EXPECT_TRUE(std::equal(ours->counts.begin(), ours->counts.end(), theirs->bits + 1));
    EXPECT_TRUE(std::equal(ours->values.begin(), ours->values.end(), theirs->huffval));
  }
  jpeg_destroy_compress(&peer);
}

}  // namespace
}  // namespace vexa::test
