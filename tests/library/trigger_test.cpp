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

TEST_F(TriggerTest, EachTriggerBringsOneFrame) {
  for (const DWORD mode :
       {kSoftware, kSoftware | kSeparateHeader, kReadOut, kReadOut | kSeparateHeader}) {
    SCOPED_TRACE(mode);
    OpenTriggered(mode);
    Recorder& recorder = Record();
    std::vector<DWORD> numbers;
    ASSERT_TRUE(Vexa_StartTransfer(camera_));
    for (std::size_t i = 1; i <= 3; ++i) {
      ASSERT_TRUE(Vexa_SoftTrigger(camera_));
      if ((mode & kSeparateHeader) != 0) {
        ASSERT_TRUE(recorder.AwaitHeaders(i));
      }
      if ((mode & kReadOut) == kReadOut) {
        EXPECT_EQ(recorder.frames().size(), i - 1);
        ASSERT_TRUE(Vexa_TriggerReadOut(camera_));
      }
      ASSERT_TRUE(recorder.AwaitFrames(i));
      numbers.push_back(recorder.frames().back().number);
    }
    ExpectStopped();
    EXPECT_EQ(recorder.frames().size(), 3U);
    EXPECT_EQ(recorder.headers(), (mode & kSeparateHeader) != 0 ? numbers : std::vector<DWORD>());
    EXPECT_THAT(recorder.errors(), IsEmpty());
  }
}

TEST_F(TriggerTest, PartsOfTheWrongSizeAreErrors) {
  OpenTriggered(kSoftware | kSeparateHeader);
  Recorder& recorder = Record();
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
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
  recorder.Clear();
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  EXPECT_TRUE(recorder.AwaitFrames(1));
  EXPECT_EQ(recorder.headers().size(), 1U);
  ExpectStopped();
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
  constexpr DWORD kLong = 600000;
  Recorder* recorder = nullptr;
  const auto stall = [&] { twin_->Stall(true); };
  const auto soft = [&] { EXPECT_TRUE(Vexa_SoftTrigger(camera_)); };
  const auto read_out = [&] { EXPECT_TRUE(Vexa_TriggerReadOut(camera_)); };
  const auto header = [&] { EXPECT_TRUE(recorder->AwaitHeaders(1)); };
  struct Case {
    DWORD mode;
    std::array<DWORD, 4> time_outs;
    std::vector<std::function<void()>> steps;
    DWORD error;
  };
  // Between header and image, the camera owes the image without a read-out trigger; with one the
  // application has asked for it.
  const Case cases[] = {
      {kSoftware, {30, kLong, 30, kLong}, {stall, soft}, 0xE0000003},
      {kSoftware | kSeparateHeader, {30, kLong, kLong, kLong}, {stall, soft}, 0xE0000003},
      {1, {kLong, 30, 30, kLong}, {stall}, 0xE0000004},
      {1 | kSeparateHeader, {kLong, 30, kLong, kLong}, {stall}, 0xE0000004},
      {kReadOut, {kLong, kLong, kLong, 30}, {stall, soft, read_out}, 0xE0000006},
      {kSoftware | kSeparateHeader, {kLong, kLong, 30, kLong}, {soft, header}, 0xE0000005},
      {kReadOut | kSeparateHeader,
       {kLong, kLong, kLong, 30},
       {soft, header, stall, read_out},
       0xE0000006},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(testing::Message() << test.mode << ", " << test.error);
    OpenTriggered(test.mode);
    ASSERT_TRUE(Vexa_SetTriggerTiming(camera_, VEXA_TIMING_READ_OUT_DELAY, 60'000'000));
    for (DWORD index = 0; index < 4; ++index) {
      ASSERT_TRUE(Vexa_SetTimeOut(camera_, index, test.time_outs[index]));
    }
    recorder = &Record();
    ASSERT_TRUE(Vexa_StartTransfer(camera_));
    for (const auto& step : test.steps) {
      step();
    }
    ASSERT_TRUE(recorder->AwaitErrors(1));
    EXPECT_EQ(recorder->errors()[0], test.error);
    EXPECT_THAT(recorder->frames(), IsEmpty());
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
