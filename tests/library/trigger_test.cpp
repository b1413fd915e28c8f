// Trigger modes: frames on demand, time-outs, recovery.

#include <array>
#include <chrono>
#include <thread>

#include "transfer_fixture.hpp"

namespace vexa::test {
namespace {

using platform::ControlCode;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TriggerTest : public TransferTest {};

TEST_F(TriggerTest, SoftwareTriggerGivesOneFrameEach) {
  OpenTriggered(kSoftware);
  Recorder& recorder = Record();
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  for (std::size_t i = 1; i <= 5; ++i) {
    ASSERT_TRUE(Vexa_SoftTrigger(camera_));
    ASSERT_TRUE(recorder.AwaitFrames(i));
  }
  ExpectStopped();
  EXPECT_EQ(recorder.frames().size(), 5U);
  EXPECT_THAT(recorder.headers(), IsEmpty());
  EXPECT_THAT(recorder.errors(), IsEmpty());
}

TEST_F(TriggerTest, SeparateHeaderTellsTheEndOfTheExposure) {
  OpenTriggered(kSoftware | kSeparateHeader);
  Recorder& recorder = Record();
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  for (std::size_t i = 1; i <= 3; ++i) {
    ASSERT_TRUE(Vexa_SoftTrigger(camera_));
    ASSERT_TRUE(recorder.AwaitFrames(i));
    ASSERT_EQ(recorder.headers().size(), i);
    EXPECT_EQ(recorder.headers().back(), recorder.frames().back().number);
  }
  // A header of the wrong size: reported, and the next frame begins with a header again.
  twin_->ShortenHeaders(1, 1);
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  ASSERT_TRUE(recorder.AwaitErrors(1));
  EXPECT_EQ(recorder.errors()[0], 0xE0000001U);
  recorder.Clear();
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  EXPECT_TRUE(recorder.AwaitFrames(1));
  EXPECT_EQ(recorder.headers().size(), 1U);
  // An image of the wrong size after a good header.
  twin_->ShortenFrames(1, 1);
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  ASSERT_TRUE(recorder.AwaitErrors(1));
  EXPECT_EQ(recorder.errors()[0], 0xE0000002U);
  ExpectStopped();
}

TEST_F(TriggerTest, ReadOutTriggerBringsTheImage) {
  for (const DWORD mode : {kReadOut | kSoftware, kReadOut | kSoftware | kSeparateHeader}) {
    OpenTriggered(mode & ~DWORD{1});
    Recorder& recorder = Record();
    ASSERT_TRUE(Vexa_StartTransfer(camera_));
    for (std::size_t i = 1; i <= 3; ++i) {
      ASSERT_TRUE(Vexa_SoftTrigger(camera_));
      if ((mode & kSeparateHeader) != 0) {
        ASSERT_TRUE(recorder.AwaitHeaders(i));
      }
      EXPECT_EQ(recorder.frames().size(), i - 1);
      ASSERT_TRUE(Vexa_TriggerReadOut(camera_));
      ASSERT_TRUE(recorder.AwaitFrames(i));
    }
    EXPECT_THAT(recorder.errors(), IsEmpty());
    Discard();
  }
}

TEST_F(TriggerTest, HardwareAndSubTriggers) {
  OpenTriggered(1);
  Recorder& recorder = Record();
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_THAT(recorder.frames(), IsEmpty());
  twin_->PulsePin(0);
  EXPECT_TRUE(recorder.AwaitFrames(1));
  ExpectStopped();
  ASSERT_TRUE(Vexa_SetTriggerMode(camera_, 0x2401));
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  ASSERT_TRUE(Vexa_SoftSubTrigger(camera_));
  EXPECT_TRUE(recorder.AwaitFrames(2));
  EXPECT_THAT(recorder.errors(), IsEmpty());
}

TEST_F(TriggerTest, TimeOutsOfTheTriggerModes) {
  struct Case {
    const char* name;
    DWORD mode;
    std::array<DWORD, 4> time_outs;
    std::function<void(HANDLE)> trigger;
    DWORD error;
  };
  const DWORD kLong = 600000;
  const auto soft = [](HANDLE camera) { EXPECT_TRUE(Vexa_SoftTrigger(camera)); };
  const auto soft_and_read_out = [](HANDLE camera) {
    EXPECT_TRUE(Vexa_SoftTrigger(camera));
    EXPECT_TRUE(Vexa_TriggerReadOut(camera));
  };
  const Case cases[] = {
      {"software", kSoftware, {30, kLong, 30, kLong}, soft, 0xE0000003},
      {"software, separate header",
       kSoftware | kSeparateHeader,
       {30, kLong, kLong, kLong},
       soft,
       0xE0000003},
      {"hardware", 1, {kLong, 30, 30, kLong}, [](HANDLE) {}, 0xE0000004},
      {"hardware, separate header",
       1 | kSeparateHeader,
       {kLong, 30, kLong, kLong},
       [](HANDLE) {},
       0xE0000004},
      {"read-out", kReadOut, {kLong, kLong, kLong, 30}, soft_and_read_out, 0xE0000006},
  };
  for (const Case& test : cases) {
    OpenTriggered(test.mode);
    for (DWORD index = 0; index < 4; ++index) {
      ASSERT_TRUE(Vexa_SetTimeOut(camera_, index, test.time_outs[index]));
    }
    Recorder& recorder = Record();
    twin_->Stall(true);
    ASSERT_TRUE(Vexa_StartTransfer(camera_));
    test.trigger(camera_);
    ASSERT_TRUE(recorder.AwaitErrors(1)) << test.name;
    EXPECT_EQ(recorder.errors()[0], test.error) << test.name;
    EXPECT_THAT(recorder.frames(), IsEmpty()) << test.name;
    Discard();
  }
}

// Header there, image not: without a read-out trigger the camera owes it, with one the application
// has asked for it.
TEST_F(TriggerTest, TimeOutsBetweenHeaderAndImage) {
  struct Case {
    DWORD mode;
    DWORD index;
    DWORD error;
  };
  for (const Case& test : {Case{kSoftware | kSeparateHeader, VEXA_TIMEOUT_EE2TE, 0xE0000005},
                           Case{kReadOut | kSeparateHeader, VEXA_TIMEOUT_RO2TE, 0xE0000006}}) {
    OpenTriggered(test.mode);
    Recorder& recorder = Record();
    ASSERT_TRUE(Vexa_SetTriggerTiming(camera_, VEXA_TIMING_READ_OUT_DELAY, 60'000'000));
    ASSERT_TRUE(Vexa_SetTimeOut(camera_, test.index, 30));
    ASSERT_TRUE(Vexa_StartTransfer(camera_));
    ASSERT_TRUE(Vexa_SoftTrigger(camera_));
    ASSERT_TRUE(recorder.AwaitHeaders(1));
    if (test.index == VEXA_TIMEOUT_RO2TE) {
      twin_->Stall(true);
      ASSERT_TRUE(Vexa_TriggerReadOut(camera_));
    }
    ASSERT_TRUE(recorder.AwaitErrors(1));
    EXPECT_EQ(recorder.errors()[0], test.error);
    EXPECT_THAT(recorder.frames(), IsEmpty());
    Discard();
  }
}

TEST_F(TriggerTest, TriggerModeRecoversAfterALostFrame) {
  OpenTriggered(kSoftware);
  Recorder& recorder = Record();
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  ASSERT_TRUE(recorder.AwaitFrames(1));
  twin_->ShortenFrames(100, 1);
  twin_->ClearLog();
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  ASSERT_TRUE(recorder.AwaitErrors(1));
  EXPECT_THAT(recorder.errors(), ElementsAre(0xE0000002));
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  ASSERT_TRUE(recorder.AwaitFrames(2));
  std::vector<std::string> flow;
  for (const auto& entry : twin_->Log()) {
    if (entry.code == ControlCode::kStopStream) {
      flow.push_back("stop");
    } else if (entry.code == ControlCode::kResetStream) {
      flow.push_back("reset");
    } else if (entry.request == 0x20) {
      flow.push_back("clear");
    }
  }
  EXPECT_THAT(flow, ElementsAre("clear", "stop", "clear", "reset"));
}

}  // namespace
}  // namespace vexa::test
