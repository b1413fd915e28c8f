#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <thread>

#include "simulator/twin_rig.hpp"

namespace vexa::simulator {
namespace {

constexpr std::uint32_t kAborted = 995;

TEST(TwinStream, WhatFindsNoRoomInRealTimeIsDroppedAndItsNumberUsedUp) {
  CameraConfig config = PlainCamera();
  config.pace = Pace::kRealTime;
  TwinRig rig(config);
  ASSERT_TRUE(rig.SetScan(64, 48).ok());
  rig.SetLines(1);  // a millisecond and a half per frame
  rig.Start();
  while (rig.camera->frames_dropped() < 3) std::this_thread::yield();
  // Memory holds the two oldest; then comes a gap.
  EXPECT_EQ(TwinRig::Number(rig.Frame()), 0u);
  EXPECT_EQ(TwinRig::Number(rig.Frame()), 1u);
  EXPECT_GE(TwinRig::Number(rig.Frame()), 5u);
}

TEST(TwinStream, RealTimePaceFollowsTheClock) {
  CameraConfig config = PlainCamera();
  config.pace = Pace::kRealTime;
  config.capabilities |= std::uint64_t{1} << 20;
  TwinRig rig(config);
  ASSERT_TRUE(rig.SetScan(1280, 480).ok());
  Bytes rate;
  ASSERT_TRUE(rig.In(0x80, 0x80 | 86, 0, 4, &rate).ok());
  const Bytes scan = rig.Block(0x12, 64);
  const double expected =
      1.0 * LoadLe32(rig.Block(0x22, 10), 6) / LoadLe16(scan, 26) / LoadLe16(scan, 28);
  EXPECT_NEAR(LoadLe32(rate, 0) / 65536.0, expected, 0.01);
  // Ten frames take at least ten periods; how much longer is the machine's business.
  const auto start = std::chrono::steady_clock::now();
  rig.Start();
  for (int i = 0; i < 10; ++i) rig.Frame();
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_GE(elapsed.count(), 9.99 / expected);
  rig.Stop();
  // In scan mode 4 an exposure of three frames makes frames three times as long.
  ASSERT_TRUE(rig.SetScan(1280, 480, 0, 0, 4).ok());
  rig.SetLines(LoadLe16(scan, 26) * 3u);
  Bytes slow;
  ASSERT_TRUE(rig.In(0x80, 0x80 | 86, 0, 4, &slow).ok());
  EXPECT_NEAR(LoadLe32(slow, 0) * 3.0, LoadLe32(rate, 0), 3.0);
}

TEST(TwinStream, StopAndCancelEndPendingReads) {
  TwinRig rig(PlainCamera());
  rig.camera->Stall(true);
  rig.Start();
  HostRead first(4096);
  HostRead second(4096);
  std::uint32_t bytes = 0;
  rig.Queue(&first);
  rig.Queue(&second);
  EXPECT_EQ(rig.camera->PendingReads(), 2u);
  rig.Stop();
  EXPECT_EQ(rig.Finish(&first, &bytes).code(), kAborted);
  EXPECT_EQ(rig.Finish(&second, &bytes).code(), kAborted);
  EXPECT_FALSE(rig.camera->Streaming());

  // A reset ends what a former stream left; cancelling concerns the calling thread's reads.
  rig.Start();
  rig.Queue(&first);
  rig.Start();
  EXPECT_EQ(rig.Finish(&first, &bytes).code(), kAborted);
  rig.Queue(&first);
  std::thread([&] { rig.Queue(&second); }).join();
  rig.device->CancelReads();
  EXPECT_EQ(rig.Finish(&first, &bytes).code(), kAborted);
  EXPECT_FALSE(platform::Wait(second.completion.Done(), 0));
  rig.device.reset();
  EXPECT_EQ(rig.camera->PendingReads(), 0u);
  EXPECT_TRUE(platform::Wait(second.completion.Done(), 0));
  EXPECT_FALSE(rig.camera->Streaming());
}

TEST(TwinStream, CommandsWhileStreaming) {
  TwinRig rig(PlainCamera());
  ASSERT_TRUE(rig.SetScan(64, 14).ok());  // 960 bytes
  rig.Start();
  EXPECT_EQ(rig.Read(500).size(), 500u);
  EXPECT_TRUE(rig.Out(0x20, 0, 0, {}).ok());
  EXPECT_EQ(rig.Read(500).size(), 0u);  // the cut frame's end
  EXPECT_EQ(TwinRig::Number(rig.Read(4096)), 1u);
  // A restart forgets the frame altogether.
  EXPECT_EQ(rig.Read(500).size(), 500u);
  rig.Start();
  const Bytes frame = rig.Read(4096);
  EXPECT_EQ(frame.size(), 960u);
  EXPECT_EQ(TwinRig::Number(frame), 3u);
  // Settings take effect with the next frame, and the counter can be reset.
  ASSERT_TRUE(rig.SetFormat(2).ok());
  ASSERT_TRUE(rig.SetScan(128, 14).ok());
  EXPECT_TRUE(rig.Out(0x80, 0x50, 0, TwinRig::Word(3)).ok());
  const Bytes next = rig.Frame();
  EXPECT_EQ(next.size(), 64u + 128 * 14 * 2);
  EXPECT_EQ(TwinRig::Number(next), 0u);
}

TEST(TwinStream, ManyLivesLeaveNothingBehind) {
  TwinRig rig(PlainCamera());
  ASSERT_TRUE(rig.SetScan(64, 14).ok());
  rig.device.reset();
  std::uint32_t last = 0;
  for (int life = 0; life < 200; ++life) {
    rig.device = rig.OpenDevice();
    ASSERT_NE(rig.device, nullptr);
    rig.Start();
    std::deque<HostRead> reads;
    for (int i = 0; i < 4; ++i) rig.Queue(&reads.emplace_back(2048));
    std::uint32_t bytes = 0;
    ASSERT_TRUE(rig.Finish(&reads.front(), &bytes).ok());
    last = TwinRig::Number(reads.front().buffer);
    // By turns with and without a proper end.
    if (life % 2 == 0) rig.Stop();
    rig.device.reset();
    for (HostRead& read : reads) ASSERT_TRUE(platform::Wait(read.completion.Done(), 0));
    ASSERT_EQ(rig.camera->PendingReads(), 0u);
    ASSERT_EQ(rig.camera->OpenHandles(), 0u);
    ASSERT_FALSE(rig.camera->Streaming());
  }
  EXPECT_GE(last, 199u);
}

TEST(TwinStream, ControlAndReadsMayRunAtTheSameTime) {
  TwinRig rig(PlainCamera());
  ASSERT_TRUE(rig.SetScan(64, 48).ok());
  rig.Start();
  std::atomic<bool> done = false;
  std::thread control([&] {
    for (std::uint16_t i = 0; !done; ++i) {
      rig.SetLines(1 + i % 400u);
      EXPECT_TRUE(rig.SetScan(64, i % 2 == 0 ? 48 : 24).ok());
      EXPECT_TRUE(rig.Out(0x20, 0, 0, {}).ok());
    }
  });
  const auto is_whole = [](std::size_t size) {
    return size == 64 + 64 * 48 || size == 64 + 64 * 24 || size == 0;
  };
  for (int i = 0; i < 500; ++i) ASSERT_TRUE(is_whole(rig.Read(8192).size()));
  done = true;
  control.join();
}

}  // namespace
}  // namespace vexa::simulator
