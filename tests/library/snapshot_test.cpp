// Polling for frames: the ring, waiting for the next frame, and what ends the wait.

#include <atomic>
#include <chrono>
#include <thread>

#include "allocation_counter.hpp"
#include "transfer/snapshot.hpp"
#include "transfer_fixture.hpp"

namespace vexa::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr DWORD kPatience = 60000;  // milliseconds; a bound, not an expectation

class SnapshotTest : public TransferTest {
 protected:
  struct Taken {
    BOOL result = FALSE;
    DWORD error = 0, size = 0, number = 0;
    std::vector<BYTE> image;
  };

  Taken Take(DWORD timeout = kPatience, std::size_t size = 1U << 16) {
    Taken taken;
    taken.image.assign(size, 0xEE);
    SetLastError(0);
    taken.result = Vexa_TakeRawSnapShot(camera_, taken.image.data(), static_cast<DWORD>(size),
                                        &taken.size, &taken.number, timeout);
    taken.error = GetLastError();
    return taken;
  }

  // Takes without a limit, and again when the test's own look was in the way.
  Taken TakeInTurn() {
    Taken taken = Take(INFINITE);
    while (taken.error == 170) {
      taken = Take(INFINITE);
    }
    return taken;
  }

  // Returns once another thread waits: then this one is refused.
  void AwaitTaker() {
    while (Take(0).error != 170) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

  // Makes the camera send one frame after the other; each has arrived before the next.
  void Trigger(Recorder& recorder, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
      const std::size_t seen = recorder.frames().size();
      ASSERT_TRUE(Vexa_SoftTrigger(camera_));
      ASSERT_TRUE(recorder.AwaitFrames(seen + 1));
    }
  }

  // Takes until the ring is empty, and counts from the first frame of the transfer.
  std::vector<DWORD> Drain(const Recorder& recorder) {
    std::vector<DWORD> numbers;
    for (Taken taken = Take(0); taken.result || taken.error != 258; taken = Take(0)) {
      EXPECT_TRUE(taken.result) << taken.error;
      if (!taken.result) break;
      numbers.push_back(taken.number - recorder.frames().front().number + 1);
    }
    return numbers;
  }
};

TEST_F(SnapshotTest, TheRingKeepsTheNewestFrames) {
  OpenTriggered(kSoftware);
  Recorder& recorder = Record();
  struct Case {
    DWORD count;
    std::vector<DWORD> kept;
  };
  for (const Case& test :
       {Case{3, {3, 4, 5}}, Case{1, {5}}, Case{0, {4, 5}}, Case{8, {1, 2, 3, 4, 5}}}) {
    recorder.Clear();
    ASSERT_TRUE(Vexa_SetRawSnapShotBufferCount(camera_, test.count));
    ASSERT_TRUE(Vexa_StartTransfer(camera_));
    EXPECT_EQ(Take(0).error, 258U) << "nothing has come yet; with a count of 0 this makes a ring";
    Trigger(recorder, 5);
    EXPECT_EQ(Drain(recorder), test.kept) << test.count;
    Trigger(recorder, 2);
    ASSERT_TRUE(Vexa_StartTransfer(camera_));
    EXPECT_EQ(Take(0).error, 258U) << "a start empties the ring";
  }
  ASSERT_TRUE(Vexa_SetRawSnapShotBufferCount(camera_, 0));
  recorder.Clear();
  Trigger(recorder, 1);
  EXPECT_EQ(Take(0).error, 258U) << "without a ring nothing is kept";
}

TEST_F(SnapshotTest, TakesStartTheTransferAndBringTheWholeImage) {
  OpenFast(64, 48, [](simulator::CameraConfig& config) { config.moving_parts = false; });
  const Taken whole = Take();
  ASSERT_TRUE(whole.result) << whole.error;
  EXPECT_EQ(whole.size, 64U * 48U);
  EXPECT_THAT(std::vector(whole.image.begin() + 64 * 48, whole.image.end()), Each(0xEE));
  // Cut to the buffer, from the ring and for a waiting taker; no buffer, no outputs.
  for (int i = 0; i < 20; ++i) {
    const Taken part = Take(kPatience, 100);
    ASSERT_TRUE(part.result && part.size == 100);
    EXPECT_TRUE(std::equal(part.image.begin(), part.image.end(), whole.image.begin()));
    EXPECT_TRUE(Vexa_TakeRawSnapShot(camera_, nullptr, 0, nullptr, nullptr, kPatience));
  }
  // A new size makes a new ring.
  ASSERT_TRUE(Vexa_SetScanMode(camera_, 1, 0, 0, 128, 64));
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  EXPECT_EQ(Take().size, 128U * 64U);
  ExpectStopped();
  EXPECT_EQ(ErrorOf(Vexa_TakeRawSnapShot(camera_, nullptr, 1, nullptr, nullptr, 0)), 87U);
}

TEST_F(SnapshotTest, AWaitingTakerGetsTheNextFrameAndTheRingDoesNot) {
  OpenTriggered(kSoftware);
  Recorder& recorder = Record();
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  EXPECT_EQ(Take(0).error, 258U);
  Taken first;
  std::thread taker([&] { first = TakeInTurn(); });
  AwaitTaker();
  Trigger(recorder, 2);
  taker.join();
  EXPECT_TRUE(first.result);
  EXPECT_EQ(first.number, recorder.frames()[0].number);
  EXPECT_THAT(Drain(recorder), ElementsAre(2U));
}

TEST_F(SnapshotTest, WhatEndsAWait) {
  enum class End { kStop, kUnplug, kReplacedRing };
  for (const End end : {End::kStop, End::kUnplug, End::kReplacedRing}) {
    OpenTriggered(kSoftware);
    EXPECT_EQ(Take(1).error, 258U);
    Taken taken;
    std::thread taker([&] { taken = TakeInTurn(); });
    AwaitTaker();
    if (end == End::kUnplug) {
      twin_->Unplug();
    } else {
      if (end == End::kReplacedRing) {
        EXPECT_TRUE(Vexa_SetRawSnapShotBufferCount(camera_, 5));
      }
      EXPECT_TRUE(Vexa_StopTransfer(camera_));
    }
    taker.join();
    EXPECT_FALSE(taken.result);
    EXPECT_EQ(taken.error, 5U);
    if (end == End::kUnplug) {
      EXPECT_EQ(Take().error, 5U) << "the transfer has ended, but has not been stopped";
      EXPECT_TRUE(Vexa_StopTransfer(camera_));
      EXPECT_EQ(Take().error, 1167U) << "starting fails";
    }
  }
}

TEST_F(SnapshotTest, ACallbackFindsItsFrameInTheRingAndNeverWaits) {
  OpenTriggered(kSoftware);
  Recorder& recorder = Record();
  Taken own;
  Taken next;
  recorder.on_frame = [&](const Recorder::Frame&) {
    own = Take(INFINITE);
    next = Take(INFINITE);
  };
  ASSERT_TRUE(Vexa_SetRawSnapShotBufferCount(camera_, 2));
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  Trigger(recorder, 1);
  EXPECT_TRUE(own.result);
  EXPECT_EQ(own.number, recorder.frames()[0].number);
  EXPECT_EQ(next.error, 258U);
}

#if VEXA_TESTS_LOOK_INSIDE
TEST_F(SnapshotTest, ARingThatNoMachineHoldsIsRefused) {
  OpenFast();
  {
    const AllocationLimit limit(std::size_t{1} << 30);
    EXPECT_TRUE(Vexa_SetRawSnapShotBufferCount(camera_, 0xFFFFFFFF));
    EXPECT_EQ(Take().error, 8U);
  }
  EXPECT_TRUE(Vexa_SetRawSnapShotBufferCount(camera_, 2));
  {
    const AllocationLimit limit(1000);
    EXPECT_TRUE(Vexa_SetRawSnapShotBufferCount(camera_, 2));
    EXPECT_EQ(Take(kPatience, 100).error, 8U);
  }
  EXPECT_TRUE(Take().result);
  // A copy that cannot grow keeps what it holds.
  transfer::CSnapShotCtrl ring(1, 4);
  const std::vector<BYTE> image(1000, 7);
  EXPECT_TRUE(ring.Store(1, std::span(image).first(4)).ok());
  {
    const AllocationLimit limit(100);
    EXPECT_EQ(ring.Store(2, image), error::kNotEnoughMemory);
  }
  std::vector<BYTE> buffer(2000);
  transfer::TakenFrame taken;
  EXPECT_TRUE(ring.TakeStored(buffer, &taken).ok());
  EXPECT_EQ(taken.number, 1U);
  EXPECT_EQ(taken.size, 4U);
  EXPECT_TRUE(ring.Store(3, image).ok());
  EXPECT_TRUE(ring.TakeStored(buffer, &taken).ok());
  EXPECT_EQ(taken.size, 1000U);
}

// One thread takes while a callback gets every frame: whole frames in rising order on both ways,
// and not one allocation.
TEST_F(SnapshotTest, TakingAndStreamingSideBySide) {
  OpenFast();
  twin_->SetLogLimit(0);
  std::atomic<DWORD> delivered = 0;
  struct Callback {
    static void VEXA_CALL Run(HANDLE, DWORD, DWORD, DWORD, WORD, BYTE*, void* context) {
      ++*static_cast<std::atomic<DWORD>*>(context);
    }
  };
  ASSERT_TRUE(Vexa_SetTransferEndCallback(camera_, Callback::Run, &delivered));
  ASSERT_TRUE(Vexa_SetRawSnapShotBufferCount(camera_, 3));
  std::vector<BYTE> image(64 * 48);
  DWORD last = 0xFFFFFFFF;  // the camera counts from 0
  const auto take = [&] {
    DWORD size = 0;
    DWORD number = 0;
    const BOOL taken = Vexa_TakeRawSnapShot(camera_, image.data(), 64 * 48, &size, &number, 60000);
    const bool good = taken && size == 64 * 48 && number - last - 1 < 0x80000000U;
    last = number;
    return good;
  };
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(take());
  }
  const std::uint64_t before = Allocations();
  int bad = 0;
  for (int i = 0; i < 20000; ++i) {
    bad += take() ? 0 : 1;
  }
  EXPECT_EQ(Allocations(), before);
  EXPECT_EQ(bad, 0);
  // The application changes the ring, and the stream goes on.
  std::atomic<bool> done = false;
  std::thread changer([&] {
    for (DWORD i = 0; i < 200; ++i) {
      EXPECT_TRUE(Vexa_SetRawSnapShotBufferCount(camera_, i % 4));
    }
    done = true;
  });
  while (!done) {
    Take(1);
  }
  changer.join();
  EXPECT_GT(delivered, 10000U);
  ExpectStopped();
}
#endif

}  // namespace
}  // namespace vexa::test
