// Streaming: every frame, whole and in order, to callbacks and messages.

#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include "allocation_counter.hpp"
#include "platform/bytes.hpp"
#include "transfer_fixture.hpp"
#if !defined(_WIN32)
#include "VexaHost.h"
#include "platform/host/registry_store.hpp"
#endif

namespace vexa::test {
namespace {

using simulator::CameraConfig;
using ::testing::IsEmpty;

class StreamTest : public TransferTest {};

// Counts frames without storing anything.
struct FrameCounter {
  std::atomic<DWORD> count = 0;
  std::atomic<DWORD> gaps = 0;
  DWORD last = 0;

  static void VEXA_CALL OnFrame(HANDLE, DWORD number, DWORD, DWORD, WORD, BYTE*, void* context) {
    auto* self = static_cast<FrameCounter*>(context);
    self->gaps += self->count != 0 && number != self->last + 1 ? 1U : 0U;
    self->last = number;
    ++self->count;
  }

  bool Await(DWORD frames) const {
    const auto deadline = std::chrono::steady_clock::now() + 4 * Recorder::kPatience;
    while (count < frames && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return count >= frames;
  }
};

#if VEXA_TESTS_LOOK_INSIDE
TEST_F(StreamTest, NoFrameIsLostAndNoneAllocates) {
  OpenFast();
  twin_->SetLogLimit(0);
  Recorder& errors = Record();
  FrameCounter counter;
  Vexa_SetTransferEndCallback(camera_, FrameCounter::OnFrame, &counter);
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  ASSERT_TRUE(counter.Await(1000));
  const std::uint64_t before = Allocations();
  ASSERT_TRUE(counter.Await(100000));
  EXPECT_EQ(Allocations(), before);
  ExpectStopped();
  EXPECT_EQ(counter.gaps, 0U);
  EXPECT_THAT(errors.errors(), IsEmpty());
  EXPECT_EQ(twin_->frames_dropped(), 0U);
}
#endif

// Whatever the relation of frame and read size, images arrive whole: equal to what the same camera
// sends in one large read.
TEST_F(StreamTest, FramesAreWholeForEveryReadSize) {
  struct Case {
    std::uint32_t width, height;
    std::uint16_t header;
    std::uint32_t max_transfer;
  };
  // Header and image of the second and the fourth are whole multiples of the link's packets, the
  // fourth's also of the reads.
  for (const Case& test :
       {Case{64, 48, 64, 0}, Case{64, 8, 512, 0}, Case{640, 480, 64, 4096}, Case{64, 56, 512, 4096},
        Case{1280, 964, 64, 0x10000}, Case{1280, 964, 16, 0}}) {
#if defined(_WIN32)
    if (test.max_transfer != 0) {
      continue;  // the registry of the machine is not the test's to write
    }
#else
    platform::host::SetRegistryDword(platform::RegistryRoot::kCurrentUser,
                                     u"SOFTWARE\\Orvane\\USBCamera\\Setting", u"MaxTransferSize",
                                     test.max_transfer);
#endif
    OpenFast(test.width, test.height, [&](CameraConfig& config) {
      config.moving_parts = false;
      config.header_size = test.header;
    });
    std::vector<BYTE> first;
    std::atomic<int> different = 0;
    Recorder& recorder = Record();
    recorder.on_frame = [&](const Recorder::Frame& frame) {
      const std::size_t size = std::size_t{frame.width} * frame.height;
      if (first.empty()) {
        first.assign(frame.image, frame.image + size);
      } else if (std::memcmp(first.data(), frame.image, size) != 0) {
        ++different;
      }
    };
    ASSERT_TRUE(Vexa_StartTransfer(camera_));
    EXPECT_TRUE(recorder.AwaitFrames(20));
    ExpectStopped();
    EXPECT_EQ(first.size(), std::size_t{test.width} * test.height);
    EXPECT_EQ(different, 0);
    EXPECT_THAT(recorder.errors(), IsEmpty());
    const auto frames = recorder.frames();
    for (std::size_t i = 1; i < frames.size(); ++i) {
      ASSERT_EQ(frames[i].number, frames[i - 1].number + 1);
    }
    DWORD size = 0;
    std::array<BYTE, 64> header{};
    SetLastError(1);
    EXPECT_FALSE(Vexa_GetLastLostFrameDataSize(camera_, &size));
    EXPECT_EQ(size, first.size() + test.header);
    EXPECT_FALSE(Vexa_GetLastLostFrameHeader(camera_, header.data()));
    EXPECT_EQ(LoadLe32(header, 12), frames.back().number);
    EXPECT_EQ(GetLastError(), 1U);
  }
#if !defined(_WIN32)
  platform::host::DeleteRegistryKey(platform::RegistryRoot::kCurrentUser, u"SOFTWARE\\Orvane");
#endif
}

TEST_F(StreamTest, CallbacksMayUseTheCameraButNotStopIt) {
  OpenFast();
  std::atomic<int> refused = 0;
  std::atomic<bool> replaced = false;
  Recorder& recorder = Record();
  recorder.on_frame = [&](const Recorder::Frame&) {
    if (replaced) {
      return;
    }
    DWORD frequency = 0;
    EXPECT_TRUE(Vexa_GetClock(camera_, nullptr, &frequency));
    for (const auto call : {Vexa_StopTransfer, Vexa_StartTransfer}) {
      refused += ErrorOf(call(camera_)) == 1131 ? 1 : 0;
    }
    SetLastError(0);
    Vexa_Close(camera_);
    refused += GetLastError() == 1131 ? 1 : 0;
    // A registration from inside a callback takes effect at once.
    replaced = true;
    EXPECT_TRUE(Vexa_SetRcvErrorCallback(camera_, nullptr, nullptr));
  };
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  ASSERT_TRUE(recorder.AwaitFrames(10));
  EXPECT_EQ(refused, 3);
  EXPECT_TRUE(Vexa_StartTransfer(camera_)) << "restart while running";
  recorder.Clear();
  EXPECT_TRUE(recorder.AwaitFrames(3));
  ExpectStopped();
}

#if !defined(_WIN32)
TEST_F(StreamTest, MessagesFollowTheCallbacks) {
  OpenTriggered(kSoftware | kSeparateHeader);
  HWND queue = VexaHost_CreateMessageQueue();
  Recorder& recorder = Record();
  std::atomic<bool> message_before_callback = false;
  recorder.on_frame = [&](const Recorder::Frame&) {
    VexaHostMessage message{};
    message_before_callback =
        VexaHost_WaitMessage(queue, &message, 0) && message.message == VEXA_MSG_TRANSFER_END;
  };
  ASSERT_TRUE(Vexa_SetRcvMsgWnd(camera_, queue));
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  ASSERT_TRUE(recorder.AwaitFrames(1));
  VexaHostMessage message{};
  ASSERT_TRUE(VexaHost_WaitMessage(queue, &message, 60000));
  EXPECT_EQ(message.message, VEXA_MSG_TRANSFER_END) << "the header's message was taken before";
  EXPECT_EQ(message.wparam, reinterpret_cast<uintptr_t>(camera_));
  EXPECT_EQ(static_cast<DWORD>(message.lparam), recorder.frames()[0].number);
  EXPECT_FALSE(message_before_callback);
  twin_->ShortenHeaders(1, 1);
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  ASSERT_TRUE(VexaHost_WaitMessage(queue, &message, 60000));
  EXPECT_EQ(message.message, VEXA_MSG_RCV_ERROR);
  EXPECT_EQ(static_cast<DWORD>(message.lparam), 0xE0000001U);
  // No window, and a window that is gone: callbacks run on.
  ASSERT_TRUE(Vexa_SetRcvMsgWnd(camera_, nullptr));
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  ASSERT_TRUE(recorder.AwaitFrames(2));
  EXPECT_FALSE(VexaHost_WaitMessage(queue, &message, 0));
  ASSERT_TRUE(VexaHost_DestroyMessageQueue(queue));
  ASSERT_TRUE(Vexa_SetRcvMsgWnd(camera_, queue));
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  EXPECT_TRUE(recorder.AwaitFrames(3));
}
#endif

TEST_F(StreamTest, TwoCamerasStreamSideBySide) {
  HANDLE first = OpenFast(96, 32);
  CameraConfig config = simulator::ForProduct(0x0510);
  config.pace = simulator::Pace::kFastest;
  Plug(config);
  camera_ = Open();
  ASSERT_TRUE(Vexa_SetScanMode(camera_, 1, 0, 0, 64, 48));
  Recorder of_first(first), of_second(camera_);
  ASSERT_TRUE(Vexa_StartTransfer(first));
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  EXPECT_TRUE(of_first.AwaitFrames(50));
  EXPECT_TRUE(of_second.AwaitFrames(50));
  EXPECT_TRUE(Vexa_StopTransfer(first));
  EXPECT_TRUE(Vexa_StopTransfer(camera_));
  EXPECT_EQ(of_first.frames()[0].width, 96U);
  EXPECT_EQ(of_second.frames()[0].width, 64U);
}

}  // namespace
}  // namespace vexa::test
