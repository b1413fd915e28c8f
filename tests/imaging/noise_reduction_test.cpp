#include "imaging/noise_reduction.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "imaging/frames.hpp"
#include "library/allocation_counter.hpp"
#include "library/camera_fixture.hpp"

namespace vexa::imaging {
namespace {

using test::Bytes;

/// The rules, sample by sample, in signed coordinates.
struct Model {
  int w, h, array;

  bool Inside(int x, int y, int border = 0) const {
    return x >= border && y >= border && x < w - border && y < h - border;
  }
  std::size_t At(int x, int y) const { return static_cast<std::size_t>(y * w + x); }

  int Median(const Bytes& frame, int x, int y) const {
    const bool diagonal = array == 1 ? Inside(x, y, 1) : (x + y) % 2 == 1;
    const int distance = array == 1 || diagonal ? 1 : 2;
    std::vector<int> values = {frame[At(x, y)]};
    values.reserve(5);
    for (int k = 0; k < 4; ++k) {
      const int dx = (diagonal ? k % 2 * 2 - 1 : k < 2 ? k * 2 - 1 : 0) * distance;
      const int dy = (diagonal ? k / 2 * 2 - 1 : k < 2 ? 0 : k * 2 - 5) * distance;
      if (Inside(x + dx, y + dy)) values.push_back(frame[At(x + dx, y + dy)]);
    }
    std::sort(values.begin(), values.end());
    const std::size_t n = values.size();
    return n % 2 == 1 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
  }

  Bytes WithoutImpulses(const Bytes& frame) const {
    Bytes out = frame;
    for (int i = 0; i < w * h; ++i) {
      auto& value = out[static_cast<std::size_t>(i)];
      value = static_cast<std::uint8_t>(std::min<int>(value, Median(frame, i % w, i / w)));
    }
    return out;
  }

  Bytes Excess(Bytes dark) const {
    int smallest[4] = {256, 256, 256, 256};
    const auto place = [&](int i) { return i / w % 2 * 2 + i % w % 2; };
    for (int i = 0; i < w * h; ++i) {
      const bool complete = i % w < w / 2 * 2 && i / w < h / 2 * 2;
      int& least = smallest[place(i)];
      if (complete) least = std::min<int>(least, dark[static_cast<std::size_t>(i)]);
    }
    for (int i = 0; i < w * h && w > 1 && h > 1; ++i) {
      auto& value = dark[static_cast<std::size_t>(i)];
      value = static_cast<std::uint8_t>(std::max(0, value - smallest[place(i)]));
    }
    return dark;
  }

  Bytes WithoutDark(const Bytes& frame, const Bytes& dark) const {
    Bytes out = frame;
    for (std::size_t i = 0; i < out.size(); ++i) {
      out[i] = static_cast<std::uint8_t>(std::max(0, out[i] - dark[i]));
    }
    for (int i = 0; i < w * h && array <= 2; ++i) {
      const int x = i % w;
      const int y = i / w;
      auto& value = out[At(x, y)];
      if (Inside(x, y, array) && frame[At(x, y)] >= 253 && value < 253) {
        value = static_cast<std::uint8_t>(std::max<int>(value, Median(out, x, y)));
      }
    }
    return out;
  }
};

constexpr auto kImpulse = static_cast<std::uint32_t>(NoiseReductionMode::kImpulse);
constexpr auto kDarkFrame = static_cast<std::uint32_t>(NoiseReductionMode::kDarkFrame);
constexpr auto kStore = static_cast<std::uint32_t>(NoiseReductionMode::kStoreDarkFrame);

TEST(NoiseReduction, EveryVersionFollowsTheRulesOnAllSizes) {
  test::ForAllSizes([](int w, int h) {
    const auto size = static_cast<std::size_t>(w * h);
    const auto kind = static_cast<unsigned>(w + 2 * h);
    const Bytes frame = test::MakeFrame(size, kind);
    Bytes dark = test::MakeFrame(size, 4 * kind);
    for (auto& sample : dark) sample = static_cast<std::uint8_t>(3 + sample % 16);
    for (const int array : {1, 2, 5, 4}) {
      const Model model{w, h, array};
      const Bytes limited = array == 4 ? frame : model.WithoutImpulses(frame);
      const Bytes subtracted = model.WithoutDark(frame, model.Excess(dark));
      for (const FrameKernels* kernels : UsableFrameKernels()) {
        CNoiseReduction noise_reduction(*kernels);
        const auto apply = [&](std::uint32_t mode, const Bytes& before, const Bytes& after,
                               bool succeeds) {
          test::GuardedFrame actual(before, kind % 5);
          ASSERT_EQ(noise_reduction
                        .Apply(mode, {static_cast<std::uint32_t>(w), static_cast<std::uint32_t>(h),
                                      static_cast<std::uint16_t>(array), actual.data()})
                        .ok(),
                    succeeds);
          ASSERT_TRUE(actual.Contents() == after && actual.Intact())
              << w << "x" << h << " array " << array << " mode " << mode << " " << kernels->name;
        };
        apply(kImpulse, frame, limited, array != 4);
        apply(kStore, dark, dark, true);
        apply(kDarkFrame, frame, subtracted, array <= 2);
      }
    }
  });
}

class NoiseReductionTest : public test::CameraTest {
 protected:
  NoiseReductionTest() {
    Plug();
    camera_ = Open();
    SetLastError(0);
  }
  BOOL Run(std::uint32_t mode, DWORD width, DWORD height, DWORD array, Bytes* frame) {
    return Vexa_NoiseReduction(camera_, mode, width, height, array, frame->data());
  }
  HANDLE camera_;
};

TEST_F(NoiseReductionTest, KnownFrames) {
  // Dark excess of 10 in the middle, of 5 at its right; the bright pixel takes its neighbours'
  // level, a dark one does not.
  Bytes dark(25, 7);
  dark[12] = 17;
  dark[13] = 12;
  ASSERT_TRUE(Run(kStore, 5, 5, 1, &dark));
  Bytes frame(25, 250);
  frame[12] = 255;
  Bytes expected(25, 250);
  expected[13] = 245;
  ASSERT_TRUE(Run(kDarkFrame, 5, 5, 0x10001, &frame));
  EXPECT_EQ(frame, expected);
  ASSERT_TRUE(Run(VEXA_NOISE_REDUCTION_OFF, 9, 9, 9, &frame));
  EXPECT_EQ(frame, expected);

  for (const std::uint32_t mode : {kImpulse, kStore, kDarkFrame}) {  // no pixels, no work
    EXPECT_TRUE(Run(mode, 0, 0xFFFFFFFF, 1, &frame));
  }
}

TEST_F(NoiseReductionTest, RefusalsLeaveTheFrame) {
  const Bytes original = test::MakeFrame(40 * 40, 3);
  Bytes frame = original;
  const auto refused = [&](std::uint32_t mode, DWORD width, DWORD height, DWORD array) {
    SetLastError(0);
    EXPECT_FALSE(Run(mode, width, height, array, &frame)) << mode << " " << array;
    const DWORD error = GetLastError();
    EXPECT_EQ(frame, original);
    return error;
  };
  EXPECT_EQ(refused(kDarkFrame, 40, 40, 1), 87U);
  for (const DWORD array : {0, 3, 4, 6}) EXPECT_EQ(refused(kImpulse, 40, 40, array), 87U);
  for (const std::uint32_t mode : {3U, 4U, 0x80000001U, 0xFFFFFFFFU}) {
    EXPECT_EQ(refused(mode, 40, 40, 1), 87U);
  }
  EXPECT_EQ(refused(kStore, 0xFFFFFFFF, 0xFFFFFFFF, 1), 87U);
  EXPECT_FALSE(Vexa_NoiseReduction(camera_, kStore, 40, 40, 1, nullptr));
  EXPECT_FALSE(Vexa_NoiseReduction(INVALID_HANDLE_VALUE, 0, 40, 40, 1, frame.data()));

  ASSERT_TRUE(Run(kStore, 40, 40, 2, &frame));
  EXPECT_EQ(refused(kDarkFrame, 40, 39, 2), 87U);
  EXPECT_EQ(refused(kDarkFrame, 20, 40, 2), 87U);
  EXPECT_EQ(refused(kDarkFrame, 40, 40, 1), 87U);
  for (const std::uint32_t mode : {kImpulse, kDarkFrame, kStore}) {
    SetLastError(0);
    BOOL result = 1;
    {
      const test::AllocationLimit limit(40 * 3 - 1);
      result = Run(mode, 40, 40, 2, &frame);
    }
    EXPECT_FALSE(result);
    EXPECT_EQ(GetLastError(), 8U);
    EXPECT_EQ(frame, original);
  }
  EXPECT_EQ(refused(kDarkFrame, 40, 40, 2), 87U);  // the store that failed leaves none

  HANDLE another = (Plug(), Open());
  test::FailAllocation(1);
  EXPECT_FALSE(Vexa_NoiseReduction(another, kImpulse, 40, 40, 1, frame.data()));
  test::FailAllocation(0);
  EXPECT_EQ(GetLastError(), 8U);
  EXPECT_EQ(frame, original);
}

}  // namespace
}  // namespace vexa::imaging
