// Gain, and automatic level control: its steps, its settings on the wire, the loop with the twin.

#include "settings/level_loop.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <numeric>

#include "settings_fixture.hpp"
#include "transfer_fixture.hpp"

namespace vexa::test {
namespace {

using settings::LevelState;
using ::testing::ElementsAre;

/// 6 dB per gain step, so that each step doubles; exposures as of 500 lines of 1000 clocks.
class StepCamera final : public settings::IUpdateGainExposureClockSetting {
 public:
  Status SetGainAndExposureClock(std::uint16_t, std::uint32_t) override { return {}; }
  Status GetGainAndExposureClock(std::uint16_t*, std::uint32_t*) override { return {}; }
  std::uint16_t GetMaxGain() override { return 20; }
  std::uint16_t GetMinGain() override { return 0; }
  float GainToDecibel(std::uint32_t gain) override { return 6.0206F * static_cast<float>(gain); }
  std::uint16_t DecibelToGain(float decibel) override {
    return static_cast<std::uint16_t>(std::clamp(decibel / 6.0206F + 0.01F, 0.0F, 20.0F));
  }
  std::uint32_t GetMaxLongExposureClock() override { return 4090000; }
  std::uint32_t GetMaxShortExposureClock() override { return 500000; }
};

#if VEXA_TESTS_LOOK_INSIDE
TEST(LevelStep, MovesOneThingTowardsTheTarget) {
  struct Case {
    const char* name;
    LevelState before;
    std::uint32_t level, exposure, gain, changed;
  };
  const auto state = [](std::uint8_t mode, std::uint32_t exposure, std::uint16_t gain,
                        std::uint32_t max_exposure = 100000, std::uint16_t min_gain = 0,
                        std::uint16_t max_gain = 20, std::uint32_t min_exposure = 1) {
    return LevelState{mode, 128, gain, exposure, max_exposure, min_exposure, max_gain, min_gain};
  };
  constexpr std::uint32_t kLimitless = 4294967295;
  LevelState busy = state(2, 1000, 0), black = state(3, 1000, 4);
  busy.adjusting = true;
  black.target = 0;
  const Case cases[] = {
      {"at most twice", state(2, 1000, 0), 32, 2000, 0, 1},
      {"black is level 1", state(5, 1000, 0), 0, 2000, 0, 1},
      {"too bright without limit", state(2, 100000, 0), 12800, 1000, 0, 1},
      {"settled: 10", state(2, 1000, 0), 118, 1000, 0, 0},
      {"settled: 11", state(2, 1000, 0), 117, 1094, 0, 1},
      {"adjusting: 5", busy, 133, 1000, 0, 0},
      {"adjusting: 6", busy, 122, 1049, 0, 1},
      {"shortest", state(2, 5, 0), 60000, 1, 0, 1},
      {"longest", state(2, 80000, 0), 64, 100000, 0, 1},
      {"at the longest", state(2, 100000, 0), 64, 100000, 0, 0},
      {"full frame is 0", state(2, 250000, 0, 0), 64, 0, 0, 1},
      {"from a full frame", state(2, 0, 0, 0), 256, 250000, 0, 1},
      {"beyond 32 bits", state(2, 400000000, 0, kLimitless), 65535, 781261, 0, 1},
      {"twice beyond 32 bits", state(2, 3000000000, 0, kLimitless), 60, 4090000, 0, 1},
      {"above the limit", state(5, 200000, 30), 128, 100000, 30, 1},
      {"above a full frame", state(2, 600000, 0, 0), 128, 0, 0, 1},
      {"below a full frame", state(2, 10, 0, 600000, 0, 20, 0), 128, 0, 0, 1},
      {"both limits", state(1, 200000, 30), 0, 100000, 0, 3},
      {"gain too low", state(6, 1000, 1, 0, 2), 0, 1000, 2, 2},
      {"gain unlimited in mode 7", state(7, 1000, 30), 128, 1000, 30, 0},
      {"gain makes room first", state(1, 1000, 7), 10, 1000, 0, 2},
      {"then the gain", state(4, 100000, 0), 64, 100000, 1, 2},
      {"bright: gain first", state(4, 100000, 3), 255, 100000, 2, 2},
      {"bright: then the exposure", state(1, 100000, 0), 256, 50000, 0, 1},
      {"gain at least one up", state(3, 1000, 3), 117, 1000, 4, 2},
      {"gain at most twice", state(3, 1000, 3), 16, 1000, 4, 2},
      {"gain one up, no light", state(15, 1000, 8), 100, 1000, 9, 2},
      {"gain at least one down", state(3, 1000, 3), 139, 1000, 2, 2},
      {"gain down at once", state(3, 1000, 8), 2048, 1000, 4, 2},
      {"gain to nothing", black, 200, 1000, 0, 2},
      {"gain at 0", state(3, 1000, 0), 255, 1000, 0, 0},
      {"gain limits exchanged", state(7, 1000, 4, 0, 6, 5), 64, 1000, 5, 2},
  };
  StepCamera camera;
  for (const auto& [name, before, level, exposure, gain, changed] : cases) {
    LevelState after = before;
    EXPECT_EQ(AdjustLevel(after, camera, static_cast<std::uint16_t>(level)), changed) << name;
    EXPECT_TRUE(after.exposure == exposure && after.gain == gain)
        << name << ": " << after.exposure << ", " << after.gain;
  }
}
#endif

class LevelTest : public SettingsTest {};

TEST_F(LevelTest, CapabilitiesChooseTheGainCurve) {
  struct Case {
    std::uint64_t capabilities;
    DWORD value;
    float decibel;
    WORD highest;
  };
  for (const Case& test : {Case{0, 0x10064, 10.84F, 255}, Case{1ULL << 16, 0, 11.00864F, 355},
                           Case{1ULL << 49, 8, 6.0206F, 156}, Case{~0ULL, 0, -2.36F, 255}}) {
    simulator::CameraConfig config = simulator::ForProduct(0x0510);
    config.capabilities = test.capabilities;
    HANDLE camera = OpenOnly(config);
    float decibel = 0;
    EXPECT_TRUE(Vexa_GetGainDBFromSettingValue(camera, test.value, &decibel));
    EXPECT_FLOAT_EQ(decibel, test.decibel);
    EXPECT_EQ(Get(camera, Vexa_GetMaxGain), test.highest);
    EXPECT_TRUE(Wire(*twin_).empty());
  }
}

template <auto kGetter>
BOOL Narrow(HANDLE camera, DWORD* value) {
  WORD word = 0;
  const BOOL result = kGetter(camera, &word);
  *value = word;
  return result;
}

TEST_F(LevelTest, SettingsLiveHereAndInCamerasWithTheFunction) {
  constexpr std::uint64_t kGain = 1ULL << 25, kExposure = 1ULL << 26;
  struct Value {
    BOOL(VEXA_CALL* set)(HANDLE, DWORD);
    std::function<BOOL(HANDLE, DWORD*)> get;
    std::string write, read;  // 0x01020304, as far as it is kept
    std::uint64_t functions;
    DWORD kept, usual;
  };
  const Value values[] = {
      {Vexa_SetALCTargetLevel, Narrow<Vexa_GetALCTargetLevel>, "40 80 004A 0000 [04 03]",
       "C0 80 00CA 0000 +2", kGain | kExposure, 0x0304, 128},
      {Vexa_SetAGCMaxGain, Narrow<Vexa_GetAGCMaxGain>, "40 80 004B 0000 [04 03]",
       "C0 80 00CB 0000 +2", kGain, 0x0304, 255},
      {Vexa_SetAGCMinGain, Narrow<Vexa_GetAGCMinGain>, "40 80 004C 0000 [04 03]",
       "C0 80 00CC 0000 +2", kGain, 0x0304, 0},
      {Vexa_SetAEMaxExposureClock, Vexa_GetAEMaxExposureClock, "40 80 0045 0000 [04 03 02 01]",
       "C0 80 00C5 0000 +4", kExposure, 0x01020304, 0},
      {Vexa_SetAEMinExposureClock, Vexa_GetAEMinExposureClock, "40 80 0047 0000 [04 03 02 01]",
       "C0 80 00C7 0000 +4", kExposure, 0x01020304, 1},
  };
  for (const std::uint64_t functions : {std::uint64_t{0}, kGain, kExposure, kGain | kExposure}) {
    simulator::CameraConfig config = simulator::ForProduct(0x0610);
    config.capabilities = functions;
    HANDLE camera = OpenOnly(config);
    Lines loaded;
    for (const Value& test : values) {
      Wire(*twin_);
      SCOPED_TRACE(test.write);
      const bool in_camera = (test.functions & functions) != 0;
      DWORD value = 0;
      EXPECT_TRUE(test.set(camera, 0x01020304));
      EXPECT_TRUE(test.get(camera, &value));
      EXPECT_EQ(value, test.kept);
      EXPECT_EQ(Wire(*twin_),
                in_camera ? Lines({test.write, "40 80 0050 0000 [01 00]", test.read}) : Lines());
      // The camera's value counts; when it cannot be reached, ours does.
      twin_->FailControl({.request = 0x80}, 121, in_camera ? 2 : 0);
      EXPECT_EQ(test.set(camera, 9), !in_camera);
      EXPECT_EQ(test.get(camera, &value), !in_camera);
      EXPECT_EQ(value, 9U);
      EXPECT_TRUE(test.get(camera, &value));
      EXPECT_EQ(value, in_camera ? test.kept : 9);
      if (in_camera) {
        loaded.push_back(test.read);
      }
    }
    // Reading the settings anew resets what the camera does not keep.
    EXPECT_TRUE(Vexa_SetALCMode(camera, 2));
    Wire(*twin_);
    EXPECT_TRUE(Vexa_CameraSetting(camera, 0x7FFF));
    const Lines wire = Wire(*twin_);
    EXPECT_EQ(Lines(std::ranges::find(wire, "C0 21 0000 0000 +64") + 1, wire.end()), loaded);
    for (const Value& test : values) {
      DWORD value = 99;
      EXPECT_TRUE(test.get(camera, &value));
      EXPECT_EQ(value, (test.functions & functions) != 0 ? test.kept : test.usual);
    }
    EXPECT_EQ(Get(camera, Vexa_GetALCMode), 0);
    twin_->FailControl({.request = 0x80, .value = std::uint16_t{0xCB}}, 121, 1);
    EXPECT_EQ(Vexa_CameraSetting(camera, 0x7FFF), (functions & kGain) == 0);
  }
}

TEST_F(LevelTest, ModesOfBothLoops) {
  HANDLE camera = OpenComplete();
  const auto plain_twin = Plug(0x0610);
  HANDLE plain = Open();
  Wire(*plain_twin);
  EXPECT_TRUE(Vexa_SetALCMode(camera, 0x120));
  EXPECT_EQ(Get(camera, Vexa_GetALCMode), 0x20);
  EXPECT_THAT(Wire(*twin_), ElementsAre("40 80 0049 0000 [02 00]", "40 80 0050 0000 [01 00]",
                                        "C0 80 00C9 0000 +2"));
  BYTE mode = 0;
  EXPECT_EQ(ErrorOf(Vexa_SetALCMode(camera, 0x21) || Vexa_SetALCMode(plain, 0x10) ||
                    Vexa_ALC(camera, 0, nullptr) || Vexa_GetALCMode(camera, nullptr)),
            87U);
  EXPECT_TRUE(Vexa_SetALCMode(plain, 15));
  EXPECT_EQ(Get(plain, Vexa_GetALCMode), 15);
  EXPECT_TRUE(Wire(*plain_twin).empty() && Wire(*twin_).empty());
  twin_->FailControl({.request = 0x80}, 121, 2);
  EXPECT_FALSE(Vexa_SetALCMode(camera, 3) || Vexa_GetALCMode(camera, &mode));
  EXPECT_EQ(mode, 3) << "the library's mode follows all the same";
}

TEST_F(LevelTest, StepsStartFromWhatTheApplicationSetAndSurviveFailure) {
  HANDLE camera = OpenComplete();
  DWORD changed = 9;
  EXPECT_TRUE(Vexa_ALC(camera, 1, &changed));
  EXPECT_EQ(changed, 0U);
  EXPECT_TRUE(Wire(*twin_).empty()) << "mode 0 sends nothing";
  ASSERT_TRUE(Vexa_SetExposureClock(camera, 1000) && Vexa_SetALCMode(camera, 2));
  twin_->FailControl({.request = 0x21, .device_to_host = false}, 121, 2);
  EXPECT_FALSE(Vexa_SetExposureClock(camera, 50000)) << "and the loop does not follow";
  EXPECT_EQ(ErrorOf(Vexa_ALC(camera, 64, &changed)), 121U);
  EXPECT_EQ(changed, VEXA_ALC_EXPOSURE_CHANGED);
  EXPECT_TRUE(Vexa_ALC(camera, 0x10000 + 120, &changed));  // 8 off is too far while adjusting
  EXPECT_EQ(Get(camera, Vexa_GetExposureClock), 2000U * 128 / 120);
  ASSERT_TRUE(Vexa_SetGain(camera, 200) && Vexa_SetALCMode(camera, 3));
  EXPECT_TRUE(Vexa_ALC(camera, 255, &changed));
  EXPECT_NEAR(Get(camera, Vexa_GetGain), 200 - 6.0 / 0.132, 2) << "half the level is 6 dB";
}

class LevelLoopTest : public TransferTest {};

TEST_F(LevelLoopTest, SettlesFromDarkAndFromBright) {
  OpenFast(64, 48, [](simulator::CameraConfig& config) { config.moving_parts = false; });
  ASSERT_TRUE(Vexa_SetTriggerMode(camera_, kSoftware));
  std::atomic<DWORD> mean = 0;
  std::size_t frames = 0;
  Recorder& recorder = Record();
  recorder.on_frame = [&](const Recorder::Frame& frame) {
    mean = std::accumulate(frame.image, frame.image + 64 * 48, 0U) / (64 * 48);
  };
  const auto measure = [&] {
    EXPECT_TRUE(Vexa_SoftTrigger(camera_) && recorder.AwaitFrames(++frames));
    return mean.load();
  };
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  const DWORD usual = Get(camera_, Vexa_GetExposureClock);
  const WORD highest = Get(camera_, Vexa_GetMaxGain);
  DWORD changed = 0;
  struct Start {
    DWORD exposure;
    WORD gain;
    DWORD max_exposure;
  };
  // Dark and bright; with both, the exposure alone is not enough.
  const Start starts[3][2] = {{{50, 0, usual / 4}, {usual, highest, usual / 4}},
                              {{50, 0, 8 * usual}, {8 * usual, 40, 8 * usual}},
                              {{usual / 4, 0, 0}, {usual / 2, highest, 0}}};
  for (BYTE mode = 1; mode <= 6; ++mode) {
    for (const Start& start : starts[(mode - 1) % 3]) {
      ASSERT_TRUE(Vexa_SetExposureClock(camera_, start.exposure) &&
                  Vexa_SetGain(camera_, start.gain) &&
                  Vexa_SetAEMaxExposureClock(camera_, start.max_exposure) &&
                  Vexa_SetALCMode(camera_, mode));
      DWORD level = measure();
      SCOPED_TRACE(testing::Message() << "mode " << int{mode} << " from " << level);
      EXPECT_TRUE(level < 60 || level > 200);
      int steps = 0;
      do {
        ASSERT_TRUE(Vexa_ALC(camera_, level, &changed));
        level = measure();
      } while (changed != 0 && ++steps < 60);
      EXPECT_EQ(changed, 0U);
      EXPECT_NEAR(level, 128, 10);
      const DWORD exposure = Get(camera_, Vexa_GetExposureClock);
      EXPECT_EQ(Get(camera_, Vexa_GetALCMode), mode < 4 ? mode : 0);
      EXPECT_EQ(mode % 3 == 2, Get(camera_, Vexa_GetGain) == start.gain);
      EXPECT_EQ(mode % 3 != 2, exposure == usual / 4 || exposure == start.exposure);
    }
  }
}

TEST_F(LevelLoopTest, RunsInACallbackWhileSettingsChange) {
  OpenFast();
  Recorder& recorder = Record();
  recorder.on_frame = [this](const Recorder::Frame& frame) {
    DWORD changed = 0;
    EXPECT_TRUE(Vexa_ALC(camera_, frame.image[0], &changed));
  };
  ASSERT_TRUE(Vexa_SetALCMode(camera_, 1) && Vexa_StartTransfer(camera_));
  for (DWORD target = 10; target < 240; ++target) {
    WORD gain = 0;
    EXPECT_TRUE(Vexa_SetALCTargetLevel(camera_, target) && Vexa_GetAGCMaxGain(camera_, &gain) &&
                Vexa_CameraSetting(camera_, 0x7FFF) && Vexa_SetALCMode(camera_, 1 + target % 3));
  }
  EXPECT_TRUE(recorder.AwaitFrames(20));
  ExpectStopped();
}

}  // namespace
}  // namespace vexa::test
