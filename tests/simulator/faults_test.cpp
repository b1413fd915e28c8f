#include <gmock/gmock.h>

#include <thread>

#include "simulator/twin_rig.hpp"

namespace vexa::simulator {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr std::size_t kFrame = 64 + 64 * 48;

class TwinFaults : public ::testing::Test {
 protected:
  TwinFaults() { EXPECT_TRUE(rig_.SetScan(64, 48).ok()); }

  /// How as many reads end.
  std::vector<std::uint32_t> Statuses(int count, std::size_t size = 8192) {
    std::vector<std::uint32_t> codes;
    while (std::ssize(codes) < count) {
      HostRead read(size);
      std::uint32_t bytes = 0;
      const Status queued = rig_.device->QueueRead(read.buffer, read.completion);
      codes.push_back(queued == error::kIoPending ? rig_.Finish(&read, &bytes).code()
                                                  : queued.code());
    }
    return codes;
  }

  TwinRig rig_{PlainCamera()};
};

TEST_F(TwinFaults, ReadsFailOrAreRefusedAsOftenAsOrdered) {
  rig_.Start();
  rig_.camera->FailReads(31, 2);
  EXPECT_THAT(Statuses(3), ElementsAre(31, 31, 0));
  rig_.camera->RefuseReads(8, 1);
  EXPECT_THAT(Statuses(2), ElementsAre(8, 0));
  rig_.camera->FailReads(1167, kForever);
  EXPECT_THAT(Statuses(10), Each(1167));
  rig_.camera->FailReads(0, 0);
  // In the middle of a frame the rest of the frame goes with the read.
  EXPECT_THAT(Statuses(1, 1000), ElementsAre(0));
  rig_.camera->FailReads(31, 1);
  EXPECT_THAT(Statuses(1, 1000), ElementsAre(31));
  EXPECT_EQ(rig_.Frame().size(), kFrame);
}

TEST_F(TwinFaults, ChosenRequestsFailOrTakeTheirTime) {
  rig_.camera->FailControl({.request = 0x21, .device_to_host = false}, 121, 1);
  rig_.camera->FailControl({.request = 0x80, .value = 0x50, .index = 0}, 31, 1);
  rig_.camera->FailControl({.code = ControlCode::kDriverVersion}, 5, kForever);
  Bytes block = rig_.Block(0x21, 64);
  Bytes words(16);
  EXPECT_EQ(rig_.Control(ControlCode::kDriverVersion, &words).code(), 5u);
  EXPECT_EQ(rig_.Out(0x21, 0, 0, block).code(), 121u);
  EXPECT_EQ(rig_.Out(0x80, 0x51, 0, {1, 0}).code(), 0u);
  EXPECT_EQ(rig_.Out(0x80, 0x50, 0, {1, 0}).code(), 31u);
  EXPECT_EQ(rig_.Out(0x80, 0x50, 0, {1, 0}).code(), 0u);

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
  EXPECT_THAT(Statuses(1), ElementsAre(1167));
  EXPECT_EQ(rig_.Control(ControlCode::kResetStream).code(), 1167u);
  std::unique_ptr<Device> old = std::move(rig_.device);
  rig_.device = rig_.OpenDevice();
  old.reset();
  EXPECT_EQ(rig_.camera->OpenHandles(), 1u);
  ASSERT_TRUE(rig_.SetScan(64, 48).ok());
  rig_.Start();
  EXPECT_EQ(TwinRig::Number(rig_.Frame()), 0u);
}

}  // namespace
}  // namespace vexa::simulator
