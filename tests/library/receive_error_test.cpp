// What goes wrong while a camera streams: receive errors, device loss, and stopping all the same.

#include <chrono>
#include <thread>

#include "transfer_fixture.hpp"

namespace vexa::test {
namespace {

using platform::ControlCode;
using simulator::kForever;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ReceiveErrorTest : public TransferTest {};

TEST_F(ReceiveErrorTest, FreeRunErrorsAreReportedAndTheStreamGoesOn) {
  OpenFast();
  Recorder& recorder = Record();
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  struct Case {
    const char* name;
    std::function<void()> fault;
    std::vector<DWORD> errors;
  };
  const Case cases[] = {
      {"short frame", [&] { twin_->ShortenFrames(10, 1); }, {0xE0000002}},
      {"long frame", [&] { twin_->LengthenFrames(10, 1); }, {0xE0000002}},
      // With stream control the read thread resets the stream itself; the frame is lost.
      {"general failure", [&] { twin_->FailReads(31, 1); }, {0xE0000002}},
      // Another error of a read, then the frame that the read did not bring.
      {"CRC", [&] { twin_->FailReads(23, 1); }, {23, 0xE0000002}},
  };
  for (const Case& test : cases) {
    ASSERT_TRUE(recorder.AwaitFrames(5)) << test.name;
    test.fault();
    ASSERT_TRUE(recorder.AwaitErrors(test.errors.size())) << test.name;
    recorder.Clear();
    ASSERT_TRUE(recorder.AwaitFrames(5)) << test.name;
    EXPECT_THAT(recorder.errors(), IsEmpty()) << test.name;
  }
  twin_->DropFrames(3);
  ASSERT_TRUE(recorder.AwaitFrames(recorder.frames().size() + 200));
  EXPECT_THAT(recorder.errors(), IsEmpty()) << "missing frames show in the numbers only";
  DWORD missing = 0;
  const auto frames = recorder.frames();
  for (std::size_t i = 1; i < frames.size(); ++i) {
    missing += frames[i].number - frames[i - 1].number - 1;
  }
  EXPECT_EQ(missing, 3U);
  ExpectStopped();
}

TEST_F(ReceiveErrorTest, GeneralFailureWithoutStreamControlRecovers) {
  OpenFast();
  twin_->SetDriverVersion(kNoStreamControl);
  Recorder& recorder = Record();
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  ASSERT_TRUE(recorder.AwaitFrames(5));
  twin_->ClearLog();
  twin_->FailReads(31, 1);
  ASSERT_TRUE(recorder.AwaitErrors(1));
  EXPECT_EQ(recorder.errors()[0], 31U);
  recorder.Clear();
  ASSERT_TRUE(recorder.AwaitFrames(5));
  ExpectStopped();
  int cleared = 0;
  for (const auto& entry : twin_->Log()) {
    cleared += entry.request == 0x20 ? 1 : 0;
    EXPECT_NE(entry.code, ControlCode::kResetStream);
    EXPECT_NE(entry.code, ControlCode::kStopStream);
  }
  EXPECT_EQ(cleared, 2) << "before and after the read thread was stopped";
}

TEST_F(ReceiveErrorTest, LosingTheDeviceEndsTheTransferWithOneError) {
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"unplugged", [&] { twin_->Unplug(); }},
      {"access denied", [&] { twin_->FailReads(5, 1); }},
      {"reads refused with 1167", [&] { twin_->RefuseReads(1167, 1); }},
      {"reads refused for good", [&] { twin_->RefuseReads(1450, kForever); }},
  };
  for (const auto& [name, fault] : cases) {
    OpenFast();
    Recorder& recorder = Record();
    ASSERT_TRUE(Vexa_StartTransfer(camera_));
    ASSERT_TRUE(recorder.AwaitFrames(3)) << name;
    fault();
    ASSERT_TRUE(recorder.AwaitErrors(1)) << name;
    ExpectStopped();
    EXPECT_THAT(recorder.errors(), ElementsAre(5)) << name;
  }
}

TEST_F(ReceiveErrorTest, UnplugDuringRequestsAndStop) {
  OpenFast();
  Recorder& recorder = Record();
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  ASSERT_TRUE(recorder.AwaitFrames(1));
  // The request would take a minute; the camera disappears long before.
  twin_->DelayControl({.request = 0x22}, 60000, 1);
  std::thread puller([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    twin_->Unplug();
  });
  DWORD frequency = 0;
  EXPECT_EQ(ErrorOf(Vexa_GetClock(camera_, nullptr, &frequency)), 1167U);
  puller.join();
  ExpectStopped();
  EXPECT_EQ(ErrorOf(Vexa_StartTransfer(camera_)), 1167U);

  for (int i = 0; i < 20; ++i) {
    twin_->Replug();
    HANDLE camera = Open();
    ASSERT_TRUE(Vexa_StartTransfer(camera));
    std::thread unplugger([&] { twin_->Unplug(); });
    EXPECT_TRUE(Vexa_StopTransfer(camera));
    unplugger.join();
    Close(camera);
  }
}

TEST_F(ReceiveErrorTest, StopsWhateverTheCameraDoes) {
  const std::vector<std::pair<const char*, std::function<void()>>> states = {
      {"stalled", [&] { twin_->Stall(true); }},
      {"refusing reset", [&] { twin_->RefuseReset(kForever); }},
      {"refusing reads", [&] { twin_->RefuseReads(1450, kForever); }},
      {"failing reads", [&] { twin_->FailReads(23, kForever); }},
      {"failing with 31", [&] { twin_->FailReads(31, kForever); }},
      {"stalled, no stream control",
       [&] {
         twin_->SetDriverVersion(kNoStreamControl);
         twin_->Stall(true);
       }},
      {"failing with 31, no stream control",
       [&] {
         twin_->SetDriverVersion(kNoStreamControl);
         twin_->FailReads(31, kForever);
       }},
  };
  for (const auto& [name, disturb] : states) {
    OpenFast();
    disturb();
    ASSERT_TRUE(Vexa_StartTransfer(camera_)) << name;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    ExpectStopped();
    Close(camera_);
    EXPECT_EQ(twin_->OpenHandles(), 0U) << name;
  }
}

TEST_F(ReceiveErrorTest, ResetIsRepeatedUntilTheDriverCan) {
  OpenFast();
  twin_->RefuseReset(5);
  Recorder& recorder = Record();
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  EXPECT_TRUE(recorder.AwaitFrames(2));
  EXPECT_THAT(recorder.errors(), IsEmpty());
  int resets = 0;
  for (const auto& entry : twin_->Log()) {
    resets += entry.code == ControlCode::kResetStream ? 1 : 0;
  }
  EXPECT_EQ(resets, 6);
}

}  // namespace
}  // namespace vexa::test
