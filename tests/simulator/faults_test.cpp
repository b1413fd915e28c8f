#include <gmock/gmock.h>

#include <thread>

#include "simulator/twin_rig.hpp"

namespace vexa::simulator {
namespace {

using ::testing::ElementsAre;

constexpr std::size_t kFrame = 64 + 64 * 48;

class TwinFaults : public ::testing::Test {
 protected:
  TwinFaults() { EXPECT_TRUE(rig_.SetScan(64, 48).ok()); }

  std::uint32_t ReadStatus(std::size_t size = 8192) {
    HostRead read(size);
    const Status queued = rig_.device->QueueRead(read.buffer, read.completion);
    if (queued != error::kIoPending) return queued.code();
    std::uint32_t bytes = 0;
    return rig_.Finish(&read, &bytes).code();
  }

  TwinRig rig_{PlainCamera()};
};

TEST_F(TwinFaults, ReadsFailOrAreRefusedAsOftenAsOrdered) {
  rig_.Start();
  rig_.camera->FailReads(31, 2);
  EXPECT_EQ(ReadStatus(), 31u);
  EXPECT_EQ(ReadStatus(), 31u);
  EXPECT_EQ(ReadStatus(), 0u);
  rig_.camera->RefuseReads(8, 1);
  EXPECT_EQ(ReadStatus(), 8u);
  EXPECT_EQ(ReadStatus(), 0u);
  rig_.camera->FailReads(1167, kForever);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(ReadStatus(), 1167u);
  rig_.camera->FailReads(0, 0);
  EXPECT_EQ(ReadStatus(), 0u);
  // In the middle of a frame the rest of the frame goes with the read.
  EXPECT_EQ(ReadStatus(1000), 0u);
  rig_.camera->FailReads(31, 1);
  EXPECT_EQ(ReadStatus(1000), 31u);
  EXPECT_EQ(rig_.Frame().size(), kFrame);
}

TEST_F(TwinFaults, FramesComeShortLongOrNotAtAll) {
  rig_.Start();
  rig_.camera->ShortenFrames(100, 1);
  EXPECT_EQ(rig_.Frame().size(), kFrame - 100);
  rig_.camera->LengthenFrames(700, 2);
  EXPECT_EQ(rig_.Frame().size(), kFrame + 700);
  EXPECT_EQ(rig_.Frame().size(), kFrame + 700);
  rig_.camera->ShortenFrames(1 << 20, 1);
  EXPECT_EQ(rig_.Frame().size(), 0u);
  const std::uint32_t before = TwinRig::Number(rig_.Frame());
  rig_.camera->DropFrames(5);
  EXPECT_EQ(TwinRig::Number(rig_.Frame()), before + 6);
  EXPECT_EQ(rig_.camera->frames_dropped(), 5u);
}

TEST_F(TwinFaults, AStalledStreamSendsNothing) {
  rig_.Start();
  rig_.camera->Stall(true);
  HostRead read(8192);
  rig_.Queue(&read);
  EXPECT_FALSE(platform::Wait(read.completion.Done(), 20));
  rig_.camera->Stall(false);
  std::uint32_t bytes = 0;
  EXPECT_TRUE(rig_.Finish(&read, &bytes).ok());
  EXPECT_EQ(bytes, kFrame);
}

TEST_F(TwinFaults, ResetIsRefusedWithAGeneralFailure) {
  rig_.camera->RefuseReset(2);
  EXPECT_EQ(rig_.Control(ControlCode::kResetStream).code(), 31u);
  EXPECT_EQ(rig_.Control(ControlCode::kResetStream).code(), 31u);
  EXPECT_EQ(rig_.Control(ControlCode::kResetStream).code(), 0u);
}

TEST_F(TwinFaults, ChosenRequestsFailOrTakeTheirTime) {
  rig_.camera->FailControl({.request = 0x21, .device_to_host = false}, 121, 1);
  rig_.camera->FailControl({.request = 0x80, .value = 0x50, .index = 0}, 31, 1);
  rig_.camera->FailControl({.code = ControlCode::kDriverVersion}, 5, kForever);
  Bytes block = rig_.Block(0x21, 64);
  EXPECT_EQ(rig_.Out(0x21, 0, 0, block).code(), 121u);
  EXPECT_EQ(rig_.Out(0x21, 0, 0, block).code(), 0u);
  EXPECT_EQ(rig_.Out(0x80, 0x51, 0, {1, 0}).code(), 0u);
  EXPECT_EQ(rig_.Out(0x80, 0x50, 0, {1, 0}).code(), 31u);
  EXPECT_EQ(rig_.Out(0x80, 0x50, 0, {1, 0}).code(), 0u);
  Bytes words(16);
  EXPECT_EQ(rig_.Control(ControlCode::kDriverVersion, &words).code(), 5u);

  rig_.camera->DelayControl({.request = 0x11}, 30, 1);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(rig_.In(0x11, 0, 0, 64, &block).ok());
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
  // Unplugging ends a request that would take for ever.
  rig_.camera->DelayControl({.request = 0x11}, kForever, 1);
  std::thread unplug([&] { rig_.camera->Unplug(); });
  EXPECT_EQ(rig_.In(0x11, 0, 0, 64, &block).code(), 1167u);
  unplug.join();
}

TEST_F(TwinFaults, AnUnpluggedCamerasHandlesAreDead) {
  rig_.Start();
  rig_.camera->Stall(true);
  HostRead read(8192);
  rig_.Queue(&read);
  rig_.camera->Unplug();
  std::uint32_t bytes = 0;
  EXPECT_EQ(rig_.Finish(&read, &bytes).code(), 1167u);
  rig_.camera->Replug();
  rig_.camera->Stall(false);
  // The old handle stays dead; a new one finds the camera as after power-up.
  EXPECT_EQ(ReadStatus(), 1167u);
  EXPECT_EQ(rig_.Control(ControlCode::kResetStream).code(), 1167u);
  std::unique_ptr<Device> old = std::move(rig_.device);
  rig_.device = rig_.OpenDevice();
  EXPECT_EQ(rig_.camera->OpenHandles(), 1u);
  old.reset();
  EXPECT_EQ(rig_.camera->OpenHandles(), 1u);
  ASSERT_TRUE(rig_.SetScan(64, 48).ok());
  rig_.Start();
  EXPECT_EQ(TwinRig::Number(rig_.Frame()), 0u);
}

}  // namespace
}  // namespace vexa::simulator
