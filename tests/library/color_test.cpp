#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "camera_fixture.hpp"

namespace vexa::test {
namespace {

using Bytes = std::vector<BYTE>;

class ColorTest : public CameraTest {
 protected:
  ColorTest() {
    Plug();
    camera_ = Open();
  }

  /// A channel's table under a curve.
  Bytes Curve(BYTE mode, WORD gamma, short brightness, BYTE contrast) {
    Bytes table(256);
    EXPECT_TRUE(Vexa_SetGammaModeEx(camera_, 0, mode, gamma, brightness, contrast, nullptr));
    BYTE mode_read = 9;
    WORD gamma_read = 0;
    short brightness_read = 0;
    BYTE contrast_read = 0;
    EXPECT_TRUE(Vexa_GetGammaModeEx(camera_, 0, &mode_read, &gamma_read, &brightness_read,
                                    &contrast_read, table.data()));
    EXPECT_EQ(std::make_tuple(mode_read, gamma_read, brightness_read, contrast_read),
              mode == 0 ? std::make_tuple(BYTE{0}, WORD{100}, short{0}, BYTE{0})
                        : std::make_tuple(mode, gamma, brightness, contrast));
    return table;
  }

  HANDLE camera_;
};

Bytes Noise(std::size_t size) {
  std::mt19937 random(5);
  Bytes noise(size);
  std::generate(noise.begin(), noise.end(), [&] { return static_cast<BYTE>(random()); });
  return noise;
}

Bytes Ramp() {
  Bytes ramp(256);
  std::iota(ramp.begin(), ramp.end(), BYTE{0});
  return ramp;
}

TEST_F(ColorTest, GammaCurves) {
  const Bytes ramp = Ramp();
  Bytes split(256, 255);
  std::fill_n(split.begin(), 128, BYTE{0});
  EXPECT_EQ(Curve(1, 100, 0, 0), ramp);
  EXPECT_EQ(Curve(2, 100, 0, 0), Bytes(ramp.rbegin(), ramp.rend()));
  EXPECT_EQ(Curve(1, 100, 0, 127), split);
  EXPECT_EQ(Curve(1, 100, 0, 200), split);
  EXPECT_EQ(Curve(1, 100, 300, 0), Bytes(256, 255));
  EXPECT_EQ(Curve(1, 100, -300, 0), Bytes(256, 0));
  EXPECT_EQ(Curve(0, 0, 7, 7), ramp);
  const struct {
    WORD gamma;
    short brightness;
    BYTE contrast, level, expected;
  } cases[] = {{200, 0, 0, 64, 128},   {50, 0, 0, 128, 64},    {100, 10, 0, 0, 10},
               {100, -10, 0, 10, 0},   {100, -10, 0, 11, 1},   {100, 0, 40, 40, 0},
               {100, 0, 40, 41, 1},    {100, 0, 40, 214, 254}, {100, 0, 40, 215, 255},
               {65535, 0, 0, 1, 253},  {1, 0, 0, 254, 172},    {100, 20, 20, 235, 255},
               {220, -5, 10, 100, 161}};
  for (const auto& [gamma, brightness, contrast, level, expected] : cases) {
    EXPECT_EQ(Curve(1, gamma, brightness, contrast)[level], expected)
        << gamma << " " << brightness << " " << +contrast << " " << +level;
  }
}

TEST_F(ColorTest, GammaRefusesAndKeeps) {
  const Bytes noise = Noise(256);
  EXPECT_TRUE(Vexa_SetGammaModeEx(camera_, 4, 255, 7, 8, 9, noise.data()));
  const struct {
    BYTE channel, mode;
    WORD gamma;
  } refused[] = {{5, 0, 100}, {255, 1, 100}, {4, 3, 100},  {4, 254, 100},
                 {4, 1, 0},   {4, 2, 0},     {4, 255, 100}};
  for (const auto& [channel, mode, gamma] : refused) {
    EXPECT_EQ(ErrorOf(Vexa_SetGammaModeEx(camera_, channel, mode, gamma, 0, 0, nullptr)), 87U)
        << +channel << " " << +mode;
  }
  BYTE mode = 0;
  WORD gamma = 0;
  Bytes table(256);
  EXPECT_TRUE(Vexa_GetGammaModeEx(camera_, 4, &mode, &gamma, nullptr, nullptr, table.data()));
  EXPECT_EQ(std::make_tuple(mode, gamma, table), std::make_tuple(BYTE{255}, WORD{100}, noise));
  EXPECT_TRUE(Vexa_GetGammaModeEx(camera_, 4, nullptr, nullptr, nullptr, nullptr, nullptr));
  EXPECT_EQ(ErrorOf(Vexa_GetGammaModeEx(camera_, 5, &mode, nullptr, nullptr, nullptr, nullptr)),
            87U);
}

TEST_F(ColorTest, RawGammaFollowsThePatternInWholeCells) {
  Bytes frame = Noise(7 * 5);
  const Bytes before = frame;
  EXPECT_TRUE(Vexa_RawColorGamma(camera_, 7, 5, 2, nullptr));  // all off: nothing is looked at
  std::array<Bytes, 5> tables;
  tables.fill(Ramp());
  for (const BYTE channel : {BYTE{2}, BYTE{4}}) {  // the others stay off and change nothing
    tables[channel] = Noise(256);
    std::rotate(tables[channel].begin(), tables[channel].begin() + channel, tables[channel].end());
    EXPECT_TRUE(Vexa_SetGammaModeEx(camera_, channel, 255, 0, 0, 0, tables[channel].data()));
  }
  // R, GR, GB and B are channels 1 to 4.
  const std::pair<WORD, std::array<BYTE, 4>> patterns[] = {{2, {1, 2, 3, 4}}, {3, {2, 1, 4, 3}},
                                                           {4, {3, 4, 1, 2}}, {5, {4, 3, 2, 1}},
                                                           {0, {1, 2, 3, 4}}, {77, {1, 2, 3, 4}}};
  for (const auto& [array, cell] : patterns) {
    Bytes expected = before;
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const std::size_t x = i % 7;
      const std::size_t y = i / 7;
      if (x < 6 && y < 4) {
        expected[i] = tables[cell[y % 2 * 2 + x % 2]][expected[i]];
      }
    }
    frame = before;
    EXPECT_TRUE(Vexa_RawColorGamma(camera_, 7, 5, array, frame.data()));
    EXPECT_EQ(frame, expected) << array;
  }
  frame = before;
  EXPECT_TRUE(Vexa_RawColorGamma(camera_, 7, 5, 1, frame.data()));
  EXPECT_TRUE(Vexa_RawColorGamma(camera_, 35, 1, 2, frame.data()));
  EXPECT_EQ(frame, before);
  EXPECT_FALSE(Vexa_RawColorGamma(camera_, 7, 5, 2, nullptr));
}

TEST_F(ColorTest, ImageGammaShiftsLuminance) {
  constexpr DWORD kPixels = 3000;
  Bytes image = Noise(kPixels * 4);
  image[0] = image[1] = image[2] = 77;
  const Bytes before = image;
  EXPECT_TRUE(Vexa_BGRGamma(camera_, kPixels, 1, 99, image.data()));
  EXPECT_EQ(image, before);
  const Bytes table = Curve(1, 180, -3, 12);
  EXPECT_EQ(ErrorOf(Vexa_BGRGamma(camera_, kPixels, 1, 2, image.data())), 87U);
  for (const DWORD bytes : {1U, 3U, 4U}) {
    Bytes expected = before;
    for (std::size_t i = 0; i < kPixels * bytes; i += bytes) {
      BYTE* p = &expected[i];
      const auto part = [](int weight, int v) { return (weight * v + 5000) / 10000; };
      const int luma = bytes == 1 ? 0
                                  : part(2989, p[2]) + part(1145, p[0]) + p[1] - part(2989, p[1]) -
                                        part(1145, p[1]);
      for (std::size_t c = 0; c < std::min<std::size_t>(bytes, 3); ++c) {
        const int shifted = p[c] + table[static_cast<std::size_t>(luma)] - luma;
        p[c] = bytes == 1 ? table[p[c]] : static_cast<BYTE>(std::clamp(shifted, 0, 255));
      }
    }
    image = before;
    EXPECT_TRUE(Vexa_BGRGamma(camera_, kPixels, 1,
                              bytes == 3   ? 4
                              : bytes == 4 ? 8
                                           : 1,
                              image.data()));
    EXPECT_TRUE(image == expected) << bytes;
    EXPECT_TRUE(bytes == 1 || image[0] == table[77]);  // grey stays grey
  }
}

using Matrix = std::array<short, 12>;
constexpr Matrix kIdentity = {100, 0, 0, 0, 0, 100, 0, 0, 0, 0, 100, 0};

/// What the tables of a user matrix alone make of a pixel: blue, green, red.
std::array<BYTE, 3> Mixed(const Matrix& matrix, const BYTE* bgr) {
  std::array<BYTE, 3> mixed{};
  for (std::size_t out = 0; out < 3; ++out) {
    const short* row = &matrix[4 * (2 - out)];
    int sum = 0;
    for (std::size_t in = 0; in < 3; ++in) {
      volatile float product = 0;  // single precision in every build
      for (int i = 0; i < bgr[2 - in]; ++i) {
        product = product + static_cast<float>(row[in]) / 100.0F;
      }
      sum += static_cast<int>(product + (in == 0 ? static_cast<float>(row[3]) / 100.0F : 0.0F));
    }
    mixed[out] = static_cast<BYTE>(std::clamp(sum, 0, 255));
  }
  return mixed;
}

TEST_F(ColorTest, MatrixAddsTruncatedProducts) {
  constexpr DWORD kPixels = 700;
  const Bytes before = Noise(kPixels * 4);
  const Matrix matrices[] = {kIdentity,
                             {0, 0, 0, 1000, 0, 100, 0, 0, 0, 0, 100, 0},
                             {200, 0, 0, 0, 0, 200, 0, 0, 0, 0, 200, 0},
                             {110, -35, 25, 0, -5, 255, -90, 0, 15, -70, 155, 0},
                             {120, -13, -7, -1050, -20, 130, -10, 33, 0, 0, 80, -50},
                             {32767, -32768, 0, 0, 0, 32767, -20000, 99, 5, 4, 3, 32767}};
  for (const Matrix& matrix : matrices) {
    EXPECT_TRUE(Vexa_SetColorMatrix(camera_, 255, matrix.data()));
    for (const DWORD bytes : {3U, 4U}) {
      Bytes expected = before;
      for (std::size_t i = 0; i < kPixels * bytes; i += bytes) {
        const auto mixed = Mixed(matrix, &before[i]);
        std::copy(mixed.begin(), mixed.end(), &expected[i]);
      }
      Bytes image = before;
      EXPECT_TRUE(
          Vexa_HueSaturationColorMatrix(camera_, kPixels, 1, bytes == 3 ? 4 : 8, image.data()));
      EXPECT_TRUE(image == expected) << matrix[0] << " " << bytes;
    }
  }
  Bytes image = before;
  EXPECT_TRUE(Vexa_HueSaturationColorMatrix(camera_, kPixels, 1, 1, image.data()));
  EXPECT_TRUE(Vexa_HueSaturationColorMatrix(camera_, kPixels, 1, 99, nullptr));
  EXPECT_EQ(image, before);
  EXPECT_FALSE(Vexa_HueSaturationColorMatrix(camera_, kPixels, 1, 4, nullptr));
}

TEST_F(ColorTest, HueAndSaturationKeepGreysAndLuminance) {
  const Bytes before = Noise(999);
  const auto corrected = [&](short hue, WORD saturation) {
    EXPECT_TRUE(Vexa_SetHueSaturationMode(camera_, 1, hue, saturation));
    Bytes image = before;
    EXPECT_TRUE(Vexa_HueSaturationColorMatrix(camera_, 333, 1, 4, image.data()));
    return image;
  };
  EXPECT_EQ(corrected(0, 100), before);
  for (const short hue : {short{0}, short{777}, short{-32768}}) {
    const Bytes grey = corrected(hue, 0);
    for (std::size_t i = 0; i < grey.size(); i += 3) {
      const double luma = 0.1145 * before[i] + 0.5866 * before[i + 1] + 0.2989 * before[i + 2];
      ASSERT_TRUE(grey[i] == grey[i + 1] && grey[i] == grey[i + 2]);
      ASSERT_NEAR(grey[i], luma - 1.5, 1.5001);  // three truncations
    }
  }
  // A third of a turn makes the next primary of each, weakened by what luminance allows.
  Bytes red = {0, 0, 200};
  EXPECT_TRUE(Vexa_SetHueSaturationMode(camera_, 1, -1200, 100));
  EXPECT_TRUE(Vexa_HueSaturationColorMatrix(camera_, 1, 1, 4, red.data()));
  Bytes level(3, 200);
  EXPECT_TRUE(Vexa_HueSaturationColorMatrix(camera_, 1, 1, 4, level.data()));
  for (const BYTE v : level) {
    EXPECT_NEAR(v, 200, 3);
  }
  EXPECT_GT(std::max(red[0], red[1]), red[2]);
  // The user's matrix comes first: what it has turned to grey stays grey.
  const Matrix grey_maker = {30, 50, 20, 0, 30, 50, 20, 0, 30, 50, 20, 0};
  EXPECT_TRUE(Vexa_SetColorMatrix(camera_, 255, grey_maker.data()));
  const Bytes mixed = corrected(300, 150);
  for (std::size_t i = 0; i < mixed.size(); i += 3) {
    ASSERT_NEAR(mixed[i], mixed[i + 2], 3);
  }
}

TEST_F(ColorTest, MatrixModesAreKeptApartAndRefused) {
  const Matrix matrix = {1, -2, 3, -4, 5, -6, 7, -8, 9, -10, 11, -12};
  EXPECT_TRUE(Vexa_SetColorMatrix(camera_, 255, matrix.data()));
  EXPECT_TRUE(Vexa_SetHueSaturationMode(camera_, 1, -450, 65535));
  const auto state = [&] {
    BYTE mode = 1;
    Matrix values{};
    BYTE hue_mode = 9;
    short hue = 9;
    WORD saturation = 9;
    EXPECT_TRUE(Vexa_GetColorMatrix(camera_, &mode, values.data()));
    EXPECT_TRUE(Vexa_GetHueSaturationMode(camera_, &hue_mode, &hue, &saturation));
    return std::make_tuple(mode, values, hue_mode, hue, saturation);
  };
  const auto set = std::make_tuple(BYTE{255}, matrix, BYTE{1}, short{-450}, WORD{65535});
  SetLastError(4711);
  for (const BYTE mode : {BYTE{1}, BYTE{2}, BYTE{254}}) {
    EXPECT_FALSE(Vexa_SetColorMatrix(camera_, mode, kIdentity.data()));
    EXPECT_FALSE(Vexa_SetHueSaturationMode(camera_, static_cast<BYTE>(mode + 1), 0, 100));
  }
  EXPECT_EQ(GetLastError(), 4711U);
  EXPECT_EQ(ErrorOf(Vexa_SetColorMatrix(camera_, 255, nullptr)), 87U);
  EXPECT_EQ(state(), set);
  EXPECT_TRUE(Vexa_SetColorMatrix(camera_, 0, nullptr));
  EXPECT_TRUE(Vexa_SetHueSaturationMode(camera_, 0, 5, 5));
  EXPECT_EQ(state(), std::make_tuple(BYTE{0}, kIdentity, BYTE{0}, short{0}, WORD{100}));
  EXPECT_TRUE(Vexa_GetColorMatrix(camera_, nullptr, nullptr));
}

}  // namespace
}  // namespace vexa::test
