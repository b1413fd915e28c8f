#include "imaging/sharpness.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "imaging/frames.hpp"
#include "imaging/luma.hpp"
#include "library/allocation_counter.hpp"
#include "library/camera_fixture.hpp"

namespace vexa::imaging {
namespace {

using test::Bytes;

/// The rule, pixel by pixel, from the image as it was.
Bytes Sharpened(const Bytes& image, int w, int h, std::size_t step, const BoostTable& boost) {
  const auto luma = [&](int x, int y) {
    const std::uint8_t* p = &image[static_cast<std::size_t>(y * w + x) * step];
    return step == 1 ? int{p[0]} : static_cast<int>(Luma(p[0], p[1], p[2]));
  };
  Bytes out = image;
  for (int y = 1; y < h - 1; ++y) {
    for (int x = 1; x < w - 1; ++x) {
      int sum = -luma(x, y);
      for (int k = 0; k < 9; ++k) {
        sum += luma(x + k % 3 - 1, y + k / 3 - 1);
      }
      const int d = luma(x, y) - (sum + 4) / 8;
      const int t = boost[static_cast<std::size_t>(std::abs(d))] * (d < 0 ? -1 : 1);
      for (std::size_t c = 0; c < (step == 1 ? 1 : 3); ++c) {
        auto& value = out[static_cast<std::size_t>(y * w + x) * step + c];
        value = static_cast<std::uint8_t>(std::clamp(value + t, 0, 255));
      }
    }
  }
  return out;
}

TEST(Sharpness, EveryVersionFollowsTheRuleOnAllSizes) {
  const BoostTable tables[] = {MakeBoostTable(100, 0), MakeBoostTable(130, 11),
                               MakeBoostTable(9, 3), MakeBoostTable(65535, 140)};
  test::ForAllSizes([&](int w, int h) {
    const auto kind = static_cast<unsigned>(w + 2 * h);
    for (const std::size_t step : {1U, 3U, 4U}) {
      const BoostTable& boost = tables[(static_cast<std::size_t>(w) + step + kind / 4) % 4];
      const Bytes image = test::MakeFrame(static_cast<std::size_t>(w * h) * step, kind);
      const Bytes expected = Sharpened(image, w, h, step, boost);
      for (const FrameKernels* kernels : UsableFrameKernels()) {
        test::GuardedFrame actual(image, kind % 5);
        ASSERT_TRUE(SharpenImage(boost, static_cast<std::uint32_t>(w),
                                 static_cast<std::uint32_t>(h),
                                 static_cast<std::uint32_t>(step == 1   ? 1
                                                            : step == 3 ? 4
                                                                        : 8),
                                 actual.data(), *kernels)
                        .ok());
        ASSERT_TRUE(actual.Contents() == expected && actual.Intact())
            << w << "x" << h << " step " << step << " " << kernels->name;
      }
    }
  });
}

TEST(Sharpness, LuminanceOfEveryVersionIsThatOfTheTables) {
  // Every level of each colour, alone and over every 15th of the others.
  Bytes pixels;
  Bytes expected;
  for (int i = 0; i < 3 * 256 * 18 * 18; ++i) {
    const int free = i % 3;
    const int others[] = {i / 768 % 18 * 15, i / 768 / 18 * 15};
    std::uint8_t bgr[3];
    for (int c = 0; c < 3; ++c) {
      bgr[c] = static_cast<std::uint8_t>(c == free ? i / 3 % 256 : others[c > free ? c - 1 : c]);
    }
    pixels.insert(pixels.end(), bgr, bgr + 3);
    const double red = std::floor(0.2989 * bgr[2] + 0.5) - std::floor(0.2989 * bgr[1] + 0.5);
    const double blue = std::floor(0.1145 * bgr[0] + 0.5) - std::floor(0.1145 * bgr[1] + 0.5);
    expected.push_back(static_cast<std::uint8_t>(bgr[1] + red + blue));
  }
  for (const FrameKernels* kernels : UsableFrameKernels()) {
    Bytes luma(expected.size());
    kernels->luma_bgr24(pixels.data(), luma.data(), luma.size());
    EXPECT_TRUE(luma == expected) << kernels->name;
  }
}

TEST(Sharpness, BoostRoundsProductsFromTheThresholdOn) {
  EXPECT_EQ(MakeBoostTable(65535, 255), BoostTable{});
  EXPECT_EQ(MakeBoostTable(0, 0), BoostTable{});
  for (const int gain : {1, 50, 99, 100, 110, 137, 250, 1000, 65535}) {
    for (const int coring : {0, 10, 254}) {
      const BoostTable table =
          MakeBoostTable(static_cast<std::uint16_t>(gain), static_cast<std::uint8_t>(coring));
      for (int d = 0; d < 256; ++d) {
        const int hundredths = d <= coring ? 0 : (d - coring) * gain;
        const int rounded = std::min((hundredths + 50) / 100, 255);
        // Ties go by how the sums of single precision fall, unless the factor is exact in it.
        const bool tie = hundredths % 100 == 50 && gain % 25 != 0;
        const int actual = table[static_cast<std::size_t>(d)];
        ASSERT_TRUE(actual == rounded || (tie && actual == rounded - 1))
            << gain << " " << coring << " " << d << ": " << actual;
      }
    }
  }
  // 1.3 in single precision is a little more than 1.3; added up, its multiples fall to both sides.
  EXPECT_EQ(MakeBoostTable(130, 0)[25], 32);
  EXPECT_EQ(MakeBoostTable(130, 0)[105], 137);
}

class SharpnessTest : public test::CameraTest {
 protected:
  SharpnessTest() {
    Plug();
    camera_ = Open();
    SetLastError(0);
  }
  HANDLE camera_;
};

TEST_F(SharpnessTest, SettingsTakeEffectAtTheNextCall) {
  BYTE mode = 9;
  WORD gain = 9;
  BYTE coring = 9;
  ASSERT_TRUE(Vexa_GetSharpnessMode(camera_, &mode, &gain, &coring));
  EXPECT_EQ(mode + gain + coring, 0);

  Bytes spot(25);
  spot[12] = 200;
  Bytes image = spot;
  EXPECT_TRUE(Vexa_Sharpness(camera_, 5, 5, 77, nullptr));  // off: whatever the arguments
  ASSERT_TRUE(Vexa_SetSharpnessMode(camera_, 200, 100, 0));
  ASSERT_TRUE(Vexa_Sharpness(camera_, 5, 5, VEXA_OUTPUT_MONO8, image.data()));
  Bytes sharp = spot;
  sharp[12] = 255;
  EXPECT_EQ(image, sharp);
  ASSERT_TRUE(Vexa_SetSharpnessMode(camera_, 1, 10, 199));
  image = spot;
  ASSERT_TRUE(Vexa_Sharpness(camera_, 5, 5, VEXA_OUTPUT_MONO8, image.data()));
  EXPECT_EQ(image, spot);  // one level beyond the threshold, times 0.1

  ASSERT_TRUE(Vexa_SetSharpnessMode(camera_, 0, 60000, 255));
  ASSERT_TRUE(Vexa_GetSharpnessMode(camera_, &mode, nullptr, nullptr));
  ASSERT_TRUE(Vexa_GetSharpnessMode(camera_, nullptr, &gain, &coring));
  EXPECT_EQ(mode, 0);
  EXPECT_EQ(gain, 60000);
  EXPECT_EQ(coring, 255);
}

TEST_F(SharpnessTest, RefusalsLeaveTheImage) {
  ASSERT_TRUE(Vexa_SetSharpnessMode(camera_, 1, 100, 0));
  const Bytes original = test::MakeFrame(40 * 40 * 4, 0);
  Bytes image = original;
  EXPECT_TRUE(Vexa_Sharpness(camera_, 2, 0xFFFFFFFF, VEXA_OUTPUT_BGR32, nullptr));
  EXPECT_TRUE(Vexa_Sharpness(camera_, 0xFFFFFFFF, 2, VEXA_OUTPUT_BGR32, nullptr));
  const struct {
    DWORD side, format;
    BYTE* image;
  } refused[] = {
      {40, 2, image.data()}, {2, 0, image.data()}, {40, 1, nullptr}, {0xFFFFFFFF, 1, image.data()}};
  for (const auto& [side, format, buffer] : refused) {
    SetLastError(0);
    EXPECT_FALSE(Vexa_Sharpness(camera_, side, side, format, buffer));
    EXPECT_EQ(GetLastError(), 87U);
  }
  {
    const test::AllocationLimit limit(40 * 8 - 1);
    EXPECT_FALSE(Vexa_Sharpness(camera_, 40, 40, VEXA_OUTPUT_BGR32, image.data()));
    EXPECT_EQ(GetLastError(), 8U);
  }
  EXPECT_EQ(image, original);
  const std::uint64_t before = test::AllocatedBytes();
  EXPECT_TRUE(Vexa_Sharpness(camera_, 40, 40, VEXA_OUTPUT_BGR32, image.data()));
  EXPECT_EQ(test::AllocatedBytes() - before, 40U * 8);
  SetLastError(0);
  EXPECT_FALSE(Vexa_Sharpness(INVALID_HANDLE_VALUE, 40, 40, 1, image.data()));
  EXPECT_FALSE(Vexa_SetSharpnessMode(INVALID_HANDLE_VALUE, 1, 1, 1));
  EXPECT_FALSE(Vexa_GetSharpnessMode(INVALID_HANDLE_VALUE, nullptr, nullptr, nullptr));
  EXPECT_EQ(GetLastError(), 87U);
}

}  // namespace
}  // namespace vexa::imaging
