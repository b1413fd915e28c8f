// Timing, exposure, gain, and the sizes and time-outs that follow from settings.

#include <array>
#include <cmath>

#include "platform/bytes.hpp"
#include "settings/gain_curve.hpp"
#include "settings_fixture.hpp"
#include "transfer/frame_layout.hpp"
#include "transfer/trigger_waits.hpp"

namespace vexa::test {
namespace {

using simulator::CameraConfig;
using simulator::ForProduct;
using ::testing::ElementsAre;

class TimingTest : public SettingsTest {};

TEST_F(TimingTest, ScanModeAndExposureLimits) {
  HANDLE camera = OpenComplete();
  EXPECT_TRUE(Vexa_SetScanMode(camera, 1, 16, 8, 640, 480));
  const Lines wire = Wire(*twin_);
  ASSERT_EQ(wire.size(), 2U);
  EXPECT_EQ(wire[0].substr(0, 91),
            "40 12 0000 0000 [40 12 53 43 56 31 80 02 00 00 E0 01 00 00 10 00 00 00 08 00 00 00 "
            "01 00 00");
  WORD lines = 0, clocks = 0;
  EXPECT_TRUE(Vexa_GetFrameClock(camera, &lines, &clocks));
  EXPECT_EQ(Get(camera, Vexa_GetShutterMaxClock), clocks - 1U);
  EXPECT_EQ(Get(camera, Vexa_GetMaxShortExposureClock), DWORD{lines} * clocks);
  EXPECT_EQ(Get(camera, Vexa_GetMaxLongExposureClock), 4090U * clocks);
  // In the skipping and binning mode the longest exposure is one frame.
  EXPECT_TRUE(Vexa_SetScanMode(camera, 0x8000, 0, 0, 640, 480));
  EXPECT_TRUE(Vexa_GetFrameClock(camera, &lines, &clocks));
  EXPECT_EQ(Get(camera, Vexa_GetMaxLongExposureClock), DWORD{lines} * clocks);
}

TEST_F(TimingTest, GainAndExposureShareABlockWhoseRestGoesBackAsItCame) {
  HANDLE camera = OpenComplete();
  const DWORD line = Get(camera, Vexa_GetShutterMaxClock) + 1;
  const auto block = [&] {
    std::array<BYTE, 64> bytes{};
    EXPECT_TRUE(Vexa_VendorRequest(camera, 0xC0, 0x21, 0, 0, 64, bytes.data(), nullptr));
    return bytes;
  };
  std::array<BYTE, 64> expected = block();
  EXPECT_TRUE(Vexa_SetExposureClock(camera, 70000 * line + 500));  // more lines than 16 bits hold
  StoreLe16(expected, 2, 70000 & 0xFFFF);
  StoreLe16(expected, 4, 500);
  StoreLe16(expected, 10, 1);
  EXPECT_EQ(block(), expected);
  EXPECT_EQ(Get(camera, Vexa_GetExposureClock), 70000 * line + 500);
  EXPECT_TRUE(Vexa_SetGain(camera, 0xFE));
  StoreLe16(expected, 6, 0xFE);
  EXPECT_EQ(block(), expected);
  EXPECT_EQ(Get(camera, Vexa_GetGain), 0xFE);
  Wire(*twin_);
  DWORD clock = 5;
  WORD gain = 5;
  twin_->FailControl({.request = 0x21, .device_to_host = true}, 121, 4);
  EXPECT_FALSE(Vexa_GetExposureClock(camera, &clock) || Vexa_SetExposureClock(camera, 1) ||
               Vexa_GetGain(camera, &gain) || Vexa_SetGain(camera, 1));
  EXPECT_TRUE(clock == 5 && gain == 5) << "a failed read stores nothing";
  EXPECT_EQ(Wire(*twin_).size(), 4U) << "nothing is written after a failed read";
}

TEST_F(TimingTest, ExposureTimesAndFrameRate) {
  HANDLE camera = OpenComplete();
  DWORD frequency = 0, clock = 0;
  float seconds = -1, fps = 9;
  ASSERT_TRUE(Vexa_SetScanMode(camera, 4, 0, 0, 640, 480));
  ASSERT_TRUE(Vexa_GetClock(camera, nullptr, &frequency));
  const DWORD longest = Get(camera, Vexa_GetMaxLongExposureClock);
  const DWORD shortest = Get(camera, Vexa_GetMaxShortExposureClock);
  struct Case {
    float seconds;
    double clock;
  };
  for (const Case& test :
       {Case{0, 1}, Case{-1, 1}, Case{NAN, 1}, Case{1e9F, double(longest)},
        Case{INFINITY, double(longest)}, Case{0.001F, frequency * double(0.001F)}}) {
    EXPECT_TRUE(Vexa_GetExposureClockFromTime(camera, test.seconds, &clock));
    EXPECT_EQ(clock, static_cast<DWORD>(test.clock)) << test.seconds;
  }
  EXPECT_TRUE(Vexa_GetExposureTimeFromClock(camera, 0, &seconds));
  EXPECT_FLOAT_EQ(seconds, static_cast<float>(double(shortest) / frequency));
  EXPECT_TRUE(Vexa_GetExposureTimeFromClock(camera, 0xFFFFFFFF, &seconds));
  EXPECT_FLOAT_EQ(seconds, static_cast<float>(double(longest) / frequency));

  // In this mode an exposure of three frames makes the rate a third.
  ASSERT_TRUE(Vexa_SetExposureClock(camera, 10));
  EXPECT_FLOAT_EQ(Get(camera, Vexa_GetOutputFPS), static_cast<float>(double(frequency) / shortest));
  ASSERT_TRUE(Vexa_SetExposureClock(camera, 3 * shortest));
  EXPECT_FLOAT_EQ(Get(camera, Vexa_GetOutputFPS),
                  static_cast<float>(double(frequency) / (3.0 * shortest)));
  twin_->FailControl({.request = 0x22}, 121, 1);
  EXPECT_FALSE(Vexa_GetOutputFPS(camera, &fps));
  EXPECT_EQ(fps, 0.0F);
  twin_->FailControl({.request = 0x22}, 121, 1);
  EXPECT_EQ(ErrorOf(Vexa_GetExposureClockFromTime(camera, 1, &clock)), 121U);
}

TEST_F(TimingTest, ExposureOfTheLargeSensorsCountsBinnedLines) {
  HANDLE camera = OpenComplete(0x0111);
  DWORD frequency = 0, clock = 0, width = 0;
  float seconds = 0;
  ASSERT_TRUE(Vexa_GetClock(camera, nullptr, &frequency));
  struct Case {
    BYTE horizontal, vertical;
    double blanking, k;
  };
  for (const Case& test : {Case{0, 0, 450, 0}, Case{1, 0, 430, 0}, Case{0, 1, 796, 1},
                           Case{3, 2, 1458, 3}, Case{2, 5, 1458, 3}}) {
    ASSERT_TRUE(Vexa_SetSkippingAndBinning(camera, 0, 0, test.horizontal, test.vertical));
    ASSERT_TRUE(Vexa_GetScanMode(camera, nullptr, nullptr, nullptr, &width, nullptr));
    const double period = 2 * std::max(std::floor(width / 2.0) + test.blanking, 346 * test.k + 486);
    const double offset = 416 * test.k + 426;
    EXPECT_TRUE(Vexa_GetExposureClockFromTime(camera, 0.01F, &clock));
    EXPECT_EQ(clock, static_cast<DWORD>(
                         static_cast<float>((frequency * double(0.01F) + offset) / period)));
    EXPECT_TRUE(Vexa_GetExposureTimeFromClock(camera, clock, &seconds));
    EXPECT_FLOAT_EQ(seconds, static_cast<float>((period * clock - offset) / frequency));
  }
  twin_->FailControl({.request = 0x80}, 121, 1);
  EXPECT_FALSE(Vexa_GetExposureTimeFromClock(camera, 1, &seconds));
}

TEST_F(TimingTest, FrameRateMeasuredByTheCamera) {
  CameraConfig config = ForProduct(0x0109);
  config.capabilities |= 1ULL << 20;
  HANDLE camera = OpenOnly(config);
  const float fps = Get(camera, Vexa_GetOutputFPS);
  EXPECT_THAT(Wire(*twin_), ElementsAre("C0 80 00D6 0000 +4"));
  EXPECT_EQ(fps,
            static_cast<float>(twin_->PeekRegister(0, 87) + twin_->PeekRegister(0, 86) / 65536.0));
}

#if VEXA_TESTS_LOOK_INSIDE
TEST_F(TimingTest, GainCurves) {
  using settings::GainCurve;
  struct Case {
    GainCurve curve;
    std::uint16_t gain;
    double decibel;
  };
  for (const Case& test :
       {Case{GainCurve::kLinear, 0, -2.36}, Case{GainCurve::kLinear, 100, 10.84},
        Case{GainCurve::kLinearOffset, 0, 11.00864}, Case{GainCurve::kTwoSegment, 0, 0},
        Case{GainCurve::kTwoSegment, 20, 20 * std::log10(3.5)},
        Case{GainCurve::kTwoSegment, 21, 20 * std::log10(3.9375)}}) {
    const float decibel = settings::GainToDecibel(test.curve, test.gain);
    EXPECT_NEAR(decibel, test.decibel, 1e-5);
    const int back = settings::DecibelToGain(test.curve, decibel, 1023);
    EXPECT_TRUE(back == test.gain || back == test.gain - 1) << back;
  }
  const auto decibel_of = [](double n) { return static_cast<float>(20 * std::log10(n / 64)); };
  EXPECT_EQ(settings::DecibelToGain(GainCurve::kTwoSegment, decibel_of(184.5), 1023), 15);
  EXPECT_EQ(settings::DecibelToGain(GainCurve::kTwoSegment, decibel_of(252.5), 1023), 21);
  for (const GainCurve curve :
       {GainCurve::kLinear, GainCurve::kLinearOffset, GainCurve::kTwoSegment}) {
    EXPECT_EQ(settings::DecibelToGain(curve, -200, 500), 0);
    EXPECT_EQ(settings::DecibelToGain(curve, NAN, 500), 0);
    EXPECT_EQ(settings::DecibelToGain(curve, 1e30F, 500), 500);
  }
}

TEST_F(TimingTest, FrameSizes) {
  constexpr double kFactors[16] = {1, 2, 2, 2, 2, 1, 2, 2, 2, 2, 3, 4, 1.5, 2, 3, 1};
  for (std::uint32_t bit = 0; bit < 16; ++bit) {
    EXPECT_EQ(transfer::ImageSize(1U << bit, 64, 48), 64 * 48 * kFactors[bit]) << bit;
  }
  EXPECT_EQ(transfer::ImageSize(3, 64, 48), 64U * 48) << "no format";
  EXPECT_EQ(transfer::ImageSize(0x1000, 3, 3), 13U);

  using device::UsbSpeed;
  struct Layout {
    std::uint32_t header, image;
    UsbSpeed speed;
    std::uint32_t limit;
    std::size_t buffer, read;
  };
  for (const Layout& test : {Layout{64, 1310720, UsbSpeed::kHigh, 0x80000, 1311232, 0x80000},
                             {0, 1000, UsbSpeed::kSuper, 0x80000, 16384, 16384},
                             {64, 448, UsbSpeed::kHigh, 0x80000, 1024, 1024},
                             {64, 449, UsbSpeed::kFull, 0x80000, 1024, 1024},
                             {64, 32704, UsbSpeed::kSuper, 4096, 33792, 4096}}) {
    const auto layout = transfer::MakeFrameLayout(test.header, test.image, test.speed, test.limit);
    EXPECT_EQ(layout.buffer, test.buffer);
    EXPECT_EQ(layout.read_length, test.read);
  }
  EXPECT_THROW(static_cast<void>(transfer::MakeFrameLayout(64, ~0ULL / 2, UsbSpeed::kHigh, 4096)),
               std::bad_alloc);
  EXPECT_EQ(transfer::CombineTimeOuts(1000, 5000), 6000U);
  EXPECT_EQ(transfer::CombineTimeOuts(0xFFFFFFF0, 0x20), 0xFFFFFFFEU);
  EXPECT_EQ(transfer::CombineTimeOuts(0xFFFFFFF0, 0x0F), 0xFFFFFFFEU);
  EXPECT_EQ(transfer::CombineTimeOuts(INFINITE, 1), INFINITE);
}
#endif

}  // namespace
}  // namespace vexa::test
