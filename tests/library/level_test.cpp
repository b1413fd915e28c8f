// Automatic level control: its steps, its settings on the wire, and the loop with the twin.

#include "settings/level_loop.hpp"

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
using Lines = std::vector<std::string>;

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

TEST(LevelStep, MovesOneThingTowardsTheTarget) {
  struct Case {
    const char* name;
    LevelState before;
    std::uint16_t level;
    std::uint32_t exposure;
    std::uint16_t gain;
    std::uint32_t changed;
  };
  const auto state = [](std::uint8_t mode, std::uint32_t exposure, std::uint16_t gain,
                        std::uint32_t max_exposure = 100000, std::uint16_t min_gain = 0,
                        std::uint16_t max_gain = 20) {
    return LevelState{.mode = mode,
                      .gain = gain,
                      .exposure = exposure,
                      .max_exposure = max_exposure,
                      .max_gain = max_gain,
                      .min_gain = min_gain};
  };
  const auto with = [](LevelState changed, std::uint32_t LevelState::*field, std::uint32_t value) {
    changed.*field = value;
    return changed;
  };
  LevelState busy = state(2, 1000, 0), very_bright = state(3, 1000, 4);
  busy.adjusting = true;
  very_bright.target = 0;
  constexpr auto kMin = &LevelState::min_exposure;
  const Case cases[] = {
      {"half as bright", state(2, 1000, 0), 64, 2000, 0, 1},
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
      {"beyond 32 bits", state(2, 4000000, 0, 4294967295), 65535, 7812, 0, 1},
      {"doubled beyond 32 bits", with(state(2, 3000000000, 0, 4294967295), kMin, 2000000000), 60,
       4090000, 0, 1},
      {"limits exchanged", with(state(7, 1000, 3), kMin, 5000), 64, 1000, 4, 2},
      {"above the limit", state(5, 200000, 30), 128, 100000, 30, 1},
      {"above a full frame", state(2, 600000, 0, 0), 128, 0, 0, 1},
      {"below the limit", with(state(2, 10, 0), kMin, 20), 128, 20, 0, 1},
      {"below a full frame", with(state(2, 10, 0, 600000), kMin, 0), 128, 0, 0, 1},
      {"both limits", state(1, 200000, 30), 0, 100000, 0, 3},
      {"gain too low", state(6, 1000, 1, 0, 2), 0, 1000, 2, 2},
      {"gain too high", state(3, 1000, 30, 0, 2), 128, 1000, 20, 2},
      {"gain unlimited in mode 7", state(7, 1000, 30), 128, 1000, 30, 0},
      {"gain makes room first", state(1, 1000, 7), 10, 1000, 0, 2},
      {"then the exposure", state(1, 1000, 0), 64, 2000, 0, 1},
      {"then the gain", state(4, 100000, 0), 64, 100000, 1, 2},
      {"bright: gain first", state(4, 100000, 3), 255, 100000, 2, 2},
      {"bright: then the exposure", state(1, 100000, 0), 256, 50000, 0, 1},
      {"gain at least one up", state(3, 1000, 3), 117, 1000, 4, 2},
      {"gain at most twice", state(3, 1000, 3), 16, 1000, 4, 2},
      {"gain one up from black", state(3, 1000, 3), 0, 1000, 4, 2},
      {"gain one up when nothing is left unamplified", state(15, 1000, 8), 100, 1000, 9, 2},
      {"gain at least one down", state(3, 1000, 3), 139, 1000, 2, 2},
      {"gain down at once", state(3, 1000, 8), 2048, 1000, 4, 2},
      {"gain to nothing", very_bright, 200, 1000, 0, 2},
      {"gain at 0", state(3, 1000, 0), 255, 1000, 0, 0},
      {"gain at its limit", state(6, 1000, 20), 30, 1000, 20, 0},
      {"gain limits exchanged", state(7, 1000, 4, 0, 6, 5), 64, 1000, 5, 2},
  };
  StepCamera camera;
  for (const Case& test : cases) {
    LevelState after = test.before;
    EXPECT_EQ(AdjustLevel(after, camera, test.level), test.changed) << test.name;
    EXPECT_EQ(after.exposure, test.exposure) << test.name;
    EXPECT_EQ(after.gain, test.gain) << test.name;
  }
}

class LevelTest : public SettingsTest {
 protected:
  BYTE Mode(HANDLE camera) {
    BYTE mode = 0xFF;
    EXPECT_TRUE(Vexa_GetALCMode(camera, &mode));
    return mode;
  }
};

TEST_F(LevelTest, SettingsLiveHereAndInCamerasWithTheFunction) {
  struct Value {
    const char* name;
    std::function<BOOL(HANDLE, DWORD)> set;
    std::function<BOOL(HANDLE, DWORD*)> get;
    DWORD value, kept;
    Lines write, read;
    std::uint64_t functions;
  };
  const auto narrow = [](auto get) {
    return [get](HANDLE camera, DWORD* value) {
      WORD word = 0;
      const BOOL result = get(camera, &word);
      *value = word;
      return result;
    };
  };
  constexpr std::uint64_t kGain = 1ULL << 25, kExposure = 1ULL << 26;
  const Lines apply = {"40 80 0050 0000 [01 00]"};
  const Value values[] = {
      {"target",
       Vexa_SetALCTargetLevel,
       narrow(Vexa_GetALCTargetLevel),
       0x10203,
       0x203,
       {"40 80 004A 0000 [03 02]"},
       {"C0 80 00CA 0000 +2"},
       kGain | kExposure},
      {"max gain",
       Vexa_SetAGCMaxGain,
       narrow(Vexa_GetAGCMaxGain),
       0x10104,
       0x104,
       {"40 80 004B 0000 [04 01]"},
       {"C0 80 00CB 0000 +2"},
       kGain},
      {"min gain",
       Vexa_SetAGCMinGain,
       narrow(Vexa_GetAGCMinGain),
       0x20005,
       5,
       {"40 80 004C 0000 [05 00]"},
       {"C0 80 00CC 0000 +2"},
       kGain},
      {"max exposure",
       Vexa_SetAEMaxExposureClock,
       Vexa_GetAEMaxExposureClock,
       0x01020304,
       0x01020304,
       {"40 80 0045 0000 [04 03 02 01]"},
       {"C0 80 00C5 0000 +4"},
       kExposure},
      {"min exposure",
       Vexa_SetAEMinExposureClock,
       Vexa_GetAEMinExposureClock,
       0x00010006,
       0x00010006,
       {"40 80 0047 0000 [06 00 01 00]"},
       {"C0 80 00C7 0000 +4"},
       kExposure},
  };
  for (const std::uint64_t functions : {std::uint64_t{0}, kGain, kExposure, kGain | kExposure}) {
    simulator::CameraConfig config = simulator::ForProduct(0x0610);
    config.capabilities = functions;
    const auto twin = Plug(config);
    HANDLE camera = Open();
    Lines loaded = {"C0 21 0000 0000 +64"};
    for (const Value& test : values) {
      if ((test.functions & functions) != 0) {
        loaded.push_back(test.read[0]);
      }
    }
    const Lines opened = Wire(*twin);
    EXPECT_EQ(Lines(opened.end() - static_cast<std::ptrdiff_t>(loaded.size()), opened.end()),
              loaded);
    for (const Value& test : values) {
      const bool in_camera = (test.functions & functions) != 0;
      DWORD value = 0;
      EXPECT_TRUE(test.set(camera, test.value)) << test.name;
      EXPECT_EQ(Wire(*twin), in_camera ? Lines({test.write[0], apply[0]}) : Lines()) << test.name;
      EXPECT_TRUE(test.get(camera, &value)) << test.name;
      EXPECT_EQ(value, test.kept) << test.name;
      EXPECT_EQ(Wire(*twin), in_camera ? test.read : Lines()) << test.name;
      // The camera's value counts; when camera and link fail, ours stays.
      twin->FailControl({.request = 0x80}, 121, in_camera ? 2 : 0);
      EXPECT_EQ(test.set(camera, 9), !in_camera) << test.name;
      EXPECT_EQ(test.get(camera, &value), !in_camera) << test.name;
      EXPECT_EQ(value, 9U) << test.name;
      EXPECT_TRUE(test.get(camera, &value));
      EXPECT_EQ(value, in_camera ? test.kept : 9) << test.name;
      Wire(*twin);
    }
    // Reading the settings anew resets what the camera does not keep.
    EXPECT_TRUE(Vexa_SetALCMode(camera, 2));
    EXPECT_TRUE(Vexa_CameraSetting(camera, 0x7FFF));
    const DWORD defaults[] = {128, 255, 0, 0, 1};
    for (std::size_t i = 0; i < std::size(values); ++i) {
      DWORD value = 99;
      EXPECT_TRUE(values[i].get(camera, &value));
      EXPECT_EQ(value, (values[i].functions & functions) != 0 ? values[i].kept : defaults[i]);
    }
    EXPECT_EQ(Mode(camera), 0);
    for (const int number : {0xC5, 0xC7, 0xCA, 0xCB, 0xCC}) {
      twin->FailControl({.request = 0x80, .value = static_cast<std::uint16_t>(number)}, 121, 1);
    }
    EXPECT_EQ(Vexa_CameraSetting(camera, 0x7FFF), functions == 0);
    Close(camera);
    bus_.Remove(twin);
  }
}

TEST_F(LevelTest, ModesOfBothLoops) {
  HANDLE camera = OpenComplete();
  const auto plain_twin = Plug(0x0610);
  HANDLE plain = Open();
  Wire(*plain_twin);
  EXPECT_TRUE(Vexa_SetALCMode(camera, 0x120));
  EXPECT_EQ(Mode(camera), 0x20);
  EXPECT_THAT(Wire(*twin_), ElementsAre("40 80 0049 0000 [02 00]", "40 80 0050 0000 [01 00]",
                                        "C0 80 00C9 0000 +2"));
  EXPECT_FALSE(Vexa_SetALCMode(camera, 0x21));
  EXPECT_FALSE(Vexa_SetALCMode(plain, 0x10));
  EXPECT_FALSE(Vexa_ALC(camera, 0, nullptr));
  EXPECT_FALSE(Vexa_GetALCMode(camera, nullptr));
  EXPECT_EQ(GetLastError(), 87U);
  EXPECT_TRUE(Vexa_SetALCMode(plain, 15));
  EXPECT_EQ(Mode(plain), 15);
  EXPECT_THAT(Wire(*plain_twin), ElementsAre());
  EXPECT_THAT(Wire(*twin_), ElementsAre()) << "nothing is sent for a refused call";
  twin_->FailControl({.request = 0x80}, 121, 2);
  EXPECT_FALSE(Vexa_SetALCMode(camera, 3));
  BYTE mode = 0;
  EXPECT_FALSE(Vexa_GetALCMode(camera, &mode));
  EXPECT_EQ(mode, 3) << "the library's mode follows all the same";
}

TEST_F(LevelTest, StepsStartFromWhatTheApplicationSetAndSurviveFailure) {
  HANDLE camera = OpenComplete();
  DWORD changed = 9, exposure = 0;
  EXPECT_TRUE(Vexa_ALC(camera, 1, &changed));
  EXPECT_EQ(changed, 0U);
  EXPECT_TRUE(Wire(*twin_).empty()) << "mode 0 sends nothing";
  ASSERT_TRUE(Vexa_SetExposureClock(camera, 1000) && Vexa_SetALCMode(camera, 2));
  twin_->FailControl({.request = 0x21, .device_to_host = false}, 121, 2);
  EXPECT_FALSE(Vexa_SetExposureClock(camera, 50000)) << "and the loop does not follow";
  EXPECT_FALSE(Vexa_ALC(camera, 64, &changed));
  EXPECT_EQ(GetLastError(), 121U);
  EXPECT_EQ(changed, VEXA_ALC_EXPOSURE_CHANGED);
  EXPECT_TRUE(Vexa_ALC(camera, 0x10000 + 120, &changed));  // 8 off is too far while adjusting
  EXPECT_TRUE(Vexa_GetExposureClock(camera, &exposure));
  EXPECT_EQ(exposure, 2000U * 128 / 120);
  ASSERT_TRUE(Vexa_SetGain(camera, 200) && Vexa_SetALCMode(camera, 3));
  WORD gain = 0;
  EXPECT_TRUE(Vexa_ALC(camera, 255, &changed));
  EXPECT_EQ(changed, VEXA_ALC_GAIN_CHANGED);
  EXPECT_TRUE(Vexa_GetGain(camera, &gain));
  EXPECT_NEAR(gain, 200 - 6.0 / 0.132, 2) << "half the level is 6 dB";
  ASSERT_TRUE(Vexa_SetALCMode(camera, 4));
  EXPECT_TRUE(Vexa_ALC(camera, 128, &changed)) << "the gain makes room";
  EXPECT_TRUE(Vexa_ALC(camera, 128, &changed));
  EXPECT_EQ(changed, 0U);
  EXPECT_EQ(Mode(camera), 0) << "mode 4 ends when nothing changes";
}

class LevelLoopTest : public TransferTest {
 protected:
  /// Triggers one frame and measures it.
  std::uint32_t Measure(Recorder& recorder) {
    EXPECT_TRUE(Vexa_SoftTrigger(camera_));
    EXPECT_TRUE(recorder.AwaitFrames(++frames_));
    return mean_;
  }

  std::atomic<std::uint32_t> mean_ = 0;
  std::size_t frames_ = 0;
};

TEST_F(LevelLoopTest, SettlesFromDarkAndFromBright) {
  OpenFast(64, 48, [](simulator::CameraConfig& config) { config.moving_parts = false; });
  ASSERT_TRUE(Vexa_SetTriggerMode(camera_, kSoftware));
  Recorder& recorder = Record();
  recorder.on_frame = [this](const Recorder::Frame& frame) {
    const std::size_t pixels = std::size_t{frame.width} * frame.height;
    mean_ =
        static_cast<std::uint32_t>(std::accumulate(frame.image, frame.image + pixels, 0U) / pixels);
  };
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  DWORD usual = 0;
  WORD highest = 0;
  ASSERT_TRUE(Vexa_GetExposureClock(camera_, &usual));
  ASSERT_TRUE(Vexa_GetMaxGain(camera_, &highest));
  // Modes of exposure and gain get a limit below what the exposure alone would need.
  struct Start {
    DWORD exposure;
    WORD gain;
    DWORD max_exposure;
  };
  const Start dark[] = {{50, 0, usual / 4}, {50, 0, 8 * usual}, {usual / 4, 0, 0}};
  const Start bright[] = {
      {usual, highest, usual / 4}, {8 * usual, 40, 8 * usual}, {usual / 2, highest, 0}};
  for (BYTE mode = 1; mode <= 6; ++mode) {
    for (const Start& start : {dark[(mode - 1) % 3], bright[(mode - 1) % 3]}) {
      ASSERT_TRUE(Vexa_SetExposureClock(camera_, start.exposure));
      ASSERT_TRUE(Vexa_SetGain(camera_, start.gain));
      ASSERT_TRUE(Vexa_SetAEMaxExposureClock(camera_, start.max_exposure));
      ASSERT_TRUE(Vexa_SetALCMode(camera_, mode));
      const std::uint32_t first = Measure(recorder);
      EXPECT_TRUE(first < 60 || first > 200) << "mode " << int{mode} << " starts at " << first;
      DWORD changed = 0;
      std::uint32_t level = first;
      int steps = 0;
      do {
        ASSERT_TRUE(Vexa_ALC(camera_, level, &changed));
        level = Measure(recorder);
      } while (changed != 0 && ++steps < 60);
      EXPECT_EQ(changed, 0U) << "mode " << int{mode} << " from " << first << ": still at " << level;
      EXPECT_NEAR(level, 128, 10) << "mode " << int{mode} << " from " << first;
      BYTE now = 0xFF;
      ASSERT_TRUE(Vexa_GetALCMode(camera_, &now));
      EXPECT_EQ(now, mode < 4 ? mode : 0);
      DWORD exposure = 0;
      WORD gain = 0;
      ASSERT_TRUE(Vexa_GetExposureClock(camera_, &exposure) && Vexa_GetGain(camera_, &gain));
      if (mode == 1 || mode == 4) {
        EXPECT_EQ(exposure, usual / 4) << "the gain helps only a used-up exposure";
        EXPECT_GT(gain, 0);
      } else if (mode == 2 || mode == 5) {
        EXPECT_EQ(gain, start.gain);
      } else {
        EXPECT_EQ(exposure, start.exposure);
      }
    }
  }
  ExpectStopped();
}

}  // namespace
}  // namespace vexa::test
