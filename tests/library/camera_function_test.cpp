// Image functions of the camera: what goes over the wire, what is refused, and what the camera
// makes of them.

#include <cmath>
#include <functional>

#include "transfer_fixture.hpp"

namespace vexa::test {
namespace {

using simulator::CameraConfig;
using simulator::ForProduct;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using Gains = std::array<WORD, 4>;

constexpr std::uint64_t Bit(unsigned function) { return std::uint64_t{1} << function; }
const std::string kApply = "40 80 0050 0000 [01 00]";

class CameraFunctionTest : public TransferTest {
 protected:
  /// The default: a model without white balance in the camera that has all other functions.
  HANDLE OpenWith(std::uint64_t capabilities = ~Bit(24) & ~Bit(48)) {
    CameraConfig config = ForProduct(0x0510);
    config.capabilities = capabilities;
    config.illuminant = {0.5, 1.0, 2.0};  // default gains 256, 128, 128, 64
    return camera_ = OpenOnly(config);
  }

  Gains GetGains() {
    Gains g{};
    EXPECT_TRUE(Vexa_GetWhiteBalanceGain(camera_, &g[0], &g[1], &g[2], &g[3]));
    return g;
  }

  /// A frame that was made with the present settings.
  std::vector<BYTE> Grab() {
    std::vector<BYTE> pixels;
    Recorder& recorder = Record();
    recorder.on_frame = [&](const Recorder::Frame& frame) {
      pixels.assign(frame.image, frame.image + std::size_t{frame.width} * frame.height);
    };
    EXPECT_TRUE(Vexa_ClearBuffer(camera_));
    EXPECT_TRUE(Vexa_StartTransfer(camera_));
    EXPECT_TRUE(recorder.AwaitFrames(1));
    EXPECT_TRUE(Vexa_StopTransfer(camera_));
    return pixels;
  }
};

TEST_F(CameraFunctionTest, RequestsOnTheWire) {
  HANDLE camera = OpenWith();
  DWORD x = 0, y = 0;
  const std::vector<WireCase> cases = {
      {[&] { return Vexa_SetBinningSumMode(camera, 1); }, {"40 80 002E 0000 [01 00]", kApply}},
      {[&] { return Get(camera, Vexa_GetBinningSumMode) == 1; }, {"C0 80 00AE 0000 +2"}},
      {[&] { return Vexa_SetCameraGammaValue(camera, 0x10003F); },
       {"40 80 004D 0000 [3F 00]", kApply}},
      {[&] { return Get(camera, Vexa_GetCameraGammaValue) == 63; }, {"C0 80 00CD 0000 +2"}},
      {[&] { return Vexa_SetDigitalClamp(camera, 0xF00000FF); },
       {"40 80 0015 0000 [FF 00]", kApply}},
      {[&] { return Get(camera, Vexa_GetDigitalClamp) == 255; }, {"C0 80 0095 0000 +2"}},
      {[&] { return Get(camera, Vexa_GetEnableDefectPixelCorrectionCount) == 64; }, {}},
      {[&] { return Vexa_SetDefectPixelCorrectionMode(camera, 0xFFFF1234); },
       {"40 80 004E 0000 [34 12]", kApply}},
      {[&] { return Get(camera, Vexa_GetDefectPixelCorrectionMode) == 0x1234; },
       {"C0 80 00CE 0000 +2"}},
      {[&] { return Vexa_SetDefectPixelCorrectionPosition(camera, 0x1003F, 0x50102, 0xFFFF); },
       {"40 80 007E 0081 [02 01 FF FF]", kApply}},
      {[&] {
         return Vexa_GetDefectPixelCorrectionPosition(camera, 63, &x, &y) && x == 0x102 &&
                y == 0xFFFF;
       },
       {"C0 80 00FE 0081 +4"}},
      {[&] {
         return Vexa_SetWhiteBalanceGain(camera, 1, 2, 3, 4) &&
                Vexa_SetWhiteBalanceMode(camera, 0x102) && GetGains() == Gains{1, 2, 3, 4} &&
                Get(camera_, Vexa_GetWhiteBalanceMode) == 2;
       },
       {}},
  };
  ExpectOnWire(*twin_, cases);
}

TEST_F(CameraFunctionTest, RefusesWithoutSending) {
  OpenWith();
  ExpectRefused({
      [&] { return Vexa_SetBinningSumMode(camera_, 2); },
      [&] { return Vexa_SetCameraGammaValue(camera_, 64); },
      [&] { return Vexa_SetDigitalClamp(camera_, 256); },
      [&] { return Vexa_SetDefectPixelCorrectionPosition(camera_, 64, 0, 0); },
      [&] { return Vexa_GetDefectPixelCorrectionPosition(camera_, 0x1FFFF, nullptr, nullptr); },
      [&] { return Vexa_GetDigitalClamp(camera_, nullptr); },
  });
  EXPECT_EQ(Wire(*twin_), Lines());
  OpenWith(Bit(22));  // horizontal mirroring only
  ExpectRefused({
      [&] { return Vexa_SetBinningSumMode(camera_, 0); },
      [&] { return Vexa_SetCameraGammaValue(camera_, 0); },
      [&] { return Vexa_SetDigitalClamp(camera_, 0); },
      [&] { return Vexa_SetDefectPixelCorrectionMode(camera_, 0); },
      [&] { return Vexa_SetDefectPixelCorrectionPosition(camera_, 0, 0, 0); },
      [&] { return Vexa_GetDefectPixelCorrectionPosition(camera_, 0, nullptr, nullptr); },
      [&] { return Vexa_SetMirrorMode(camera_, 0x30); },
  });
  BOOL(VEXA_CALL* const getters[])
  (HANDLE, WORD*) = {Vexa_GetBinningSumMode, Vexa_GetCameraGammaValue, Vexa_GetDigitalClamp,
                     Vexa_GetEnableDefectPixelCorrectionCount, Vexa_GetDefectPixelCorrectionMode};
  for (const auto getter : getters) {
    WORD word = 7;
    EXPECT_TRUE(getter(camera_, &word));
    EXPECT_EQ(word, 0);
  }
  EXPECT_EQ(Wire(*twin_), Lines());
}

TEST_F(CameraFunctionTest, AFailedWriteIsNotAppliedAndAFailedReadGivesZero) {
  OpenWith(~Bit(48));
  const Call setters[] = {
      [&] { return Vexa_SetBinningSumMode(camera_, 1); },
      [&] { return Vexa_SetDefectPixelCorrectionMode(camera_, 1); },
      [&] { return Vexa_SetDefectPixelCorrectionPosition(camera_, 1, 2, 3); },
      [&] { return Vexa_SetWhiteBalanceMode(camera_, 2); },
      [&] { return Vexa_SetMirrorMode(camera_, 0x10); },
  };
  for (const auto& set : setters) {
    for (const std::size_t failing : {0, 1}) {
      twin_->FailControl(
          {.request = 0x80,
           .value = failing == 0 ? std::nullopt : std::optional<std::uint16_t>{0x50}},
          31, 1);
      EXPECT_EQ(ErrorOf(set()), 31U);
      EXPECT_EQ(Wire(*twin_).size(), failing + 1) << "the update follows a good write only";
    }
  }
  WORD word = 7;
  EXPECT_EQ(Get(camera_, Vexa_GetColorArray), VEXA_COLOR_ARRAY_GRBG)
      << "the colour array follows the mode asked for";
  twin_->FailControl({.request = 0x80}, 31, 3);
  Gains g{1, 1, 1, 1};
  BYTE mode = 7;
  EXPECT_FALSE(Vexa_GetWhiteBalanceGain(camera_, &g[0], &g[1], &g[2], &g[3]));
  EXPECT_EQ(g, (Gains{}));
  EXPECT_FALSE(Vexa_GetWhiteBalanceMode(camera_, &mode));
  EXPECT_EQ(mode, 0);
  EXPECT_FALSE(Vexa_GetDigitalClamp(camera_, &word));
  EXPECT_EQ(word, 0);
}

TEST_F(CameraFunctionTest, WhiteBalanceStartsWhereTheModelKeepsIt) {
  OpenWith();
  EXPECT_EQ(GetGains(), (Gains{256, 128, 128, 64})) << "the camera's defaults";
  EXPECT_EQ(Get(camera_, Vexa_GetWhiteBalanceMode), VEXA_WHITE_BALANCE_MANUAL);
  EXPECT_EQ(Wire(*twin_), Lines());
  OpenWith(Bit(24));
  const std::string kReadGains = "C0 80 00C0 0000 +8", kReadMode = "C0 80 00C4 0000 +2";
  EXPECT_TRUE(Vexa_SetWhiteBalanceGain(camera_, 0x102, 3, 4, 5));
  EXPECT_TRUE(Vexa_SetWhiteBalanceMode(camera_, 0x702));
  EXPECT_THAT(Wire(*twin_), ElementsAre("40 80 0040 0000 [02 01 03 00 04 00 05 00]",
                                        "40 80 0044 0000 [02 00]", kApply));
  EXPECT_EQ(GetGains(), (Gains{0x102, 3, 4, 5}));
  EXPECT_EQ(Get(camera_, Vexa_GetWhiteBalanceMode), 2);
  EXPECT_THAT(Wire(*twin_), ElementsAre(kReadGains, kReadMode));

  // Whatever of the set-up fails, the camera is not opened and is free again.
  Close(camera_);
  for (const simulator::RequestMatcher& failing :
       {simulator::RequestMatcher{.request = 0x23}, simulator::RequestMatcher{.value = 0xC0},
        simulator::RequestMatcher{.value = 0xC4}}) {
    twin_->FailControl(failing, 121, 1);
    EXPECT_EQ(Vexa_Open(), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), 121U);
    EXPECT_EQ(twin_->OpenHandles(), 0U);
  }
  camera_ = Open();
}

TEST_F(CameraFunctionTest, TheCameraActsOnThem) {
  const auto display = [](unsigned value) { return static_cast<std::uint16_t>(value * 257); };
  constexpr DWORD kWidth = 16, kHeight = 8;
  OpenFast(kWidth, kHeight, [&](CameraConfig& config) {
    config.capabilities = ~Bit(48);
    config.defect_pixels = 0;
    config.moving_parts = false;
    config.scene = simulator::UniformPicture(display(80), display(40), display(20));
  });
  // One pixel of each filter, with the black level at 1.
  const auto cell = [&] {
    const std::vector<BYTE> frame = Grab();
    return std::array<double, 4>{frame[0] - 1.0, frame[1] - 1.0, frame[kWidth] - 1.0,
                                 frame[kWidth + 1] - 1.0};
  };
  const auto all_near = [](const std::array<double, 4>& expected) {
    std::vector<::testing::Matcher<double>> matchers;
    for (const double value : expected) {
      matchers.push_back(::testing::DoubleNear(value, 2));
    }
    return ElementsAreArray(matchers);
  };
  const std::array<double, 4> plain = cell();
  EXPECT_THAT(plain, all_near({78, 39, 39, 19}));
  EXPECT_TRUE(Vexa_SetWhiteBalanceGain(camera_, 64, 192, 384, 1024));
  EXPECT_THAT(cell(), all_near({39, 58, 117, 156}));
  EXPECT_TRUE(Vexa_SetWhiteBalanceMode(camera_, VEXA_WHITE_BALANCE_OFF));
  EXPECT_THAT(cell(), all_near(plain));
  EXPECT_TRUE(Vexa_SetDigitalClamp(camera_, 255));  // 12-bit counts
  EXPECT_THAT(cell(), all_near({78 + 15, 39 + 15, 39 + 15, 19 + 15}));
  EXPECT_TRUE(Vexa_SetDigitalClamp(camera_, 16));
  EXPECT_TRUE(Vexa_SetCameraGammaValue(camera_, 32));
  const auto root = [](double value) { return 256 * std::sqrt((value + 1) / 256) - 1; };
  EXPECT_THAT(cell(), all_near({root(78), root(39), root(39), root(19)}));
  EXPECT_TRUE(Vexa_SetCameraGammaValue(camera_, 0));
  EXPECT_TRUE(Vexa_SetSkippingAndBinning(camera_, 0, 0, 1, 1));
  EXPECT_TRUE(Vexa_SetScanMode(camera_, 0x8000, 0, 0, kWidth, kHeight));
  EXPECT_TRUE(Vexa_SetVBlankForFPS(camera_, 2000));  // so small a frame is too short otherwise
  EXPECT_THAT(cell(), all_near(plain));
  EXPECT_TRUE(Vexa_SetBinningSumMode(camera_, 1));
  EXPECT_THAT(cell(), all_near({254, 4 * plain[1], 4 * plain[2], 4 * plain[3]}));
}

TEST_F(CameraFunctionTest, TheDefectTableHidesDefectPixels) {
  OpenFast(64, 48, [](CameraConfig& config) {
    config.max_width = 64;
    config.max_height = 48;
    config.defect_pixels = 5;
    config.moving_parts = false;
    config.scene = simulator::UniformPicture(0x8080, 0x8080, 0x8080);
  });
  const std::vector<BYTE> before = Grab();
  const auto is_defect = [&](BYTE value) { return std::abs(value - 125) > 3; };
  DWORD index = 0;
  for (DWORD i = 0; i < before.size(); ++i) {
    if (is_defect(before[i])) {
      EXPECT_TRUE(Vexa_SetDefectPixelCorrectionPosition(camera_, index++, i % 64, i / 64));
    }
  }
  EXPECT_EQ(index, 5U);
  EXPECT_EQ(Grab(), before) << "the mode is off";
  EXPECT_TRUE(Vexa_SetDefectPixelCorrectionMode(camera_, 1));
  const std::vector<BYTE> after = Grab();
  EXPECT_EQ(std::count_if(after.begin(), after.end(), is_defect), 0);
}

}  // namespace
}  // namespace vexa::test
