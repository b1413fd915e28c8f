#include <gmock/gmock.h>

#include <chrono>
#include <thread>

#include "simulator/twin_rig.hpp"

namespace vexa::simulator {
namespace {

constexpr std::size_t kHeader = 64;
constexpr std::size_t kImage = 64 * 48;
constexpr std::uint32_t kQuiet = 20;  // milliseconds in which nothing may come

class TwinTrigger : public ::testing::TestWithParam<Pace> {
 protected:
  TwinTrigger() : rig_(Config()) {
    EXPECT_TRUE(rig_.SetScan(64, 48).ok());
    rig_.SetLines(10);
  }
  ~TwinTrigger() override { rig_.Stop(); }

  static CameraConfig Config() {
    CameraConfig config = PlainCamera();
    config.pace = GetParam();
    return config;
  }

  void SetMode(std::uint32_t mode) {
    rig_.SetDirect32(0x30, mode);
    EXPECT_TRUE(rig_.Out(0x20, 0, 0, {}).ok());
    rig_.Start();
  }
  void SoftTrigger() { EXPECT_TRUE(rig_.Out(0x30, 0, 0, {}).ok()); }
  void Command(std::uint16_t word) {
    EXPECT_TRUE(rig_.Out(0x80, 0x50, 0, TwinRig::Word(word)).ok());
  }
  /// Whether a queued read stays without data; it is cancelled then.
  bool IsQuiet() {
    HostRead read(8192);
    rig_.Queue(&read);
    const bool quiet = !platform::Wait(read.completion.Done(), kQuiet);
    rig_.device->CancelReads();
    std::uint32_t bytes = 0;
    static_cast<void>(rig_.Finish(&read, &bytes));
    return quiet;
  }

  TwinRig rig_;
};

TEST_P(TwinTrigger, OnlyItsSourceStartsAnExposure) {
  struct Case {
    std::uint32_t mode;
    bool soft, pin0, sub, pin1;  // which of them starts it
  };
  const Case cases[] = {{0x0401, true, false, false, false}, {0x0001, false, true, false, false},
                        {0x0003, false, true, false, false}, {0x2001, false, false, true, true},
                        {0x2401, false, false, true, true},  {0x3401, true, false, false, false}};
  for (const Case& test : cases) {
    SCOPED_TRACE(test.mode);
    const std::pair<bool, std::function<void()>> sources[] = {
        {test.soft, [&] { SoftTrigger(); }},
        {test.pin0, [&] { rig_.camera->PulsePin(0); }},
        {test.sub, [&] { Command(0x4000); }},
        {test.pin1, [&] { rig_.camera->PulsePin(1); }}};
    for (const auto& [starts, trigger] : sources) {
      SetMode(test.mode);
      const std::uint64_t made = rig_.camera->frames_made();
      trigger();
      if (starts) {
        EXPECT_EQ(rig_.Frame().size(), kHeader + kImage);
      }
      EXPECT_TRUE(IsQuiet());
      EXPECT_EQ(rig_.camera->frames_made(), made + (starts ? 1 : 0));
    }
  }
}

TEST_P(TwinTrigger, PinsObeyDirectionPolarityAndMode) {
  SetMode(0x0001);
  const auto set = [&](std::uint16_t number, std::uint16_t value) {
    EXPECT_TRUE(
        rig_.Out(0x80, static_cast<std::uint16_t>(0x8000 | number), 0, TwinRig::Word(value)).ok());
  };
  rig_.camera->SetPin(0, true);
  EXPECT_EQ(TwinRig::Number(rig_.Frame()), 0u);
  EXPECT_EQ(rig_.camera->PeekRegister(0, 2), 1);
  set(1, 1);  // falling edges
  rig_.camera->SetPin(0, false);
  EXPECT_EQ(TwinRig::Number(rig_.Frame()), 1u);
  set(4, 1);  // general purpose
  rig_.camera->PulsePin(0);
  set(4, 0);
  set(0, 1);  // output
  rig_.camera->PulsePin(0);
  EXPECT_TRUE(IsQuiet());
}

TEST_P(TwinTrigger, TheImageWaitsForItsReadOutTrigger) {
  SetMode(0x0502);
  SoftTrigger();
  EXPECT_EQ(rig_.Read(8192).size(), kHeader);
  EXPECT_TRUE(IsQuiet());
  SoftTrigger();  // ignored: the first is not done
  Bytes status;
  ASSERT_TRUE(rig_.In(0x80, 0x66, 0, 2, &status).ok());
  EXPECT_EQ(status[0] & 4, 4);
  Command(0x0005);
  EXPECT_EQ(rig_.Read(8192).size(), kImage);
  Command(0x0005);  // nothing to read out
  EXPECT_TRUE(IsQuiet());
  SetMode(0x0442);  // by itself
  SoftTrigger();
  EXPECT_EQ(rig_.Frame().size(), kHeader + kImage);
}

TEST_P(TwinTrigger, ClearingForgetsTriggersAndExposedImages) {
  SetMode(0x0402);
  SoftTrigger();
  EXPECT_TRUE(IsQuiet());
  EXPECT_TRUE(rig_.Out(0x20, 0, 0, {}).ok());
  Command(0x0005);
  EXPECT_TRUE(IsQuiet());
  // A trigger before the stream runs is kept for it, unless the buffer is cleared.
  rig_.Stop();
  SoftTrigger();
  Command(0x0005);
  rig_.Start();
  EXPECT_EQ(rig_.Frame().size(), kHeader + kImage);
  rig_.Stop();
  SoftTrigger();
  EXPECT_TRUE(rig_.Out(0x20, 0, 0, {}).ok());
  rig_.Start();
  Command(0x0005);
  EXPECT_TRUE(IsQuiet());
}

TEST_P(TwinTrigger, TheStoredFrameIsSentAgain) {
  SetMode(0x0401);
  Command(0x0100);
  EXPECT_TRUE(IsQuiet());  // nothing stored yet
  SoftTrigger();
  const Bytes frame = rig_.Frame();
  Command(0x0100);
  EXPECT_EQ(rig_.Frame(), frame);
  rig_.SetDirect32(0x30, 0x0501);
  Command(0x0100);
  EXPECT_EQ(rig_.Read(8192).size(), kHeader);
  EXPECT_EQ(rig_.Read(8192), Bytes(frame.begin() + kHeader, frame.end()));
}

TEST_P(TwinTrigger, DelaysAreMicroseconds) {
  SetMode(0x0401);
  rig_.SetDirect32(0x32, 30'000);
  rig_.SetDirect32(0x3C, 20'000);
  const auto start = std::chrono::steady_clock::now();
  SoftTrigger();
  rig_.Frame();
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
}

TEST_P(TwinTrigger, AModeChangeLetsTheRunningExposureEnd) {
  SetMode(0x0502);
  SoftTrigger();
  EXPECT_EQ(rig_.Read(8192).size(), kHeader);
  rig_.SetDirect32(0x30, 0);
  EXPECT_EQ(rig_.Read(8192).size(), kImage);
  EXPECT_EQ(rig_.Read(8192).size(), kHeader + kImage);  // free run
}

INSTANTIATE_TEST_SUITE_P(Paces, TwinTrigger, ::testing::Values(Pace::kFastest, Pace::kRealTime),
                         [](const auto& info) {
                           return info.param == Pace::kFastest ? "Fastest" : "RealTime";
                         });

}  // namespace
}  // namespace vexa::simulator
