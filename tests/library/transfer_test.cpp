// Streaming: frames, triggers, errors, recovery, device loss, start and stop.

#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include "allocation_counter.hpp"
#include "camera_fixture.hpp"
#include "platform/bytes.hpp"
#include "recorder.hpp"
#if !defined(_WIN32)
#include "VexaHost.h"
#include "platform/host/registry_store.hpp"
#endif

namespace vexa::test {
namespace {

using platform::ControlCode;
using simulator::CameraConfig;
using simulator::ForProduct;
using simulator::kForever;
using simulator::Pace;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::array<std::uint32_t, 4> kNoStreamControl = {1, 0, 0, 0};
constexpr DWORD kSoftware = 0x401;        // one frame for each software trigger
constexpr DWORD kSeparateHeader = 0x100;  // header first
constexpr DWORD kReadOut = 0x402;         // software trigger, read-out trigger

class TransferTest : public CameraTest {
 protected:
  // A camera with small frames and no pauses between them.
  HANDLE OpenFast(std::uint32_t width = 64, std::uint32_t height = 48,
                  const std::function<void(CameraConfig&)>& change = {}) {
    CameraConfig config = ForProduct(0x0510);
    config.pace = Pace::kFastest;
    config.noise = false;
    if (change) {
      change(config);
    }
    twin_ = Plug(config);
    camera_ = Open();
    EXPECT_TRUE(Vexa_SetScanMode(camera_, 1, 0, 0, width, height)) << GetLastError();
    return camera_;
  }

  HANDLE OpenTriggered(DWORD mode) {
    OpenFast();
    EXPECT_TRUE(Vexa_SetTriggerMode(camera_, mode));
    return camera_;
  }

  /// Records what the open camera's callbacks are told, until the next Record or Discard.
  Recorder& Record() {
    recorder_.reset();
    recorder_ = std::make_unique<Recorder>(camera_);
    return *recorder_;
  }

  /// Closes and removes the camera, so that another one can take its place.
  void Discard() {
    recorder_.reset();
    Close(camera_);
    bus_.Remove(twin_);
  }

  void ExpectStopped() {
    EXPECT_TRUE(Vexa_StopTransfer(camera_));
    EXPECT_EQ(twin_->PendingReads(), 0U);
  }

  std::shared_ptr<simulator::TwinCamera> twin_;
  HANDLE camera_ = INVALID_HANDLE_VALUE;

 private:
  std::unique_ptr<Recorder> recorder_;
};

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

TEST_F(TransferTest, NoFrameIsLostAndNoneAllocates) {
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

// Whatever the relation of frame and read size, images arrive whole: equal to what the same camera
// sends in one large read.
TEST_F(TransferTest, FramesAreWholeForEveryReadSize) {
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
    Discard();
  }
#if !defined(_WIN32)
  platform::host::DeleteRegistryKey(platform::RegistryRoot::kCurrentUser, u"SOFTWARE\\Orvane");
#endif
}

TEST_F(TransferTest, FreeRunErrorsAreReportedAndTheStreamGoesOn) {
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

TEST_F(TransferTest, GeneralFailureWithoutStreamControlRecovers) {
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

TEST_F(TransferTest, LosingTheDeviceEndsTheTransferWithOneError) {
  struct Case {
    const char* name;
    std::function<void()> fault;
  };
  const Case cases[] = {
      {"unplugged", [&] { twin_->Unplug(); }},
      {"access denied", [&] { twin_->FailReads(5, 1); }},
      {"reads refused with 1167", [&] { twin_->RefuseReads(1167, 1); }},
      {"reads refused for good", [&] { twin_->RefuseReads(1450, kForever); }},
  };
  for (const Case& test : cases) {
    OpenFast();
    Recorder& recorder = Record();
    ASSERT_TRUE(Vexa_StartTransfer(camera_));
    ASSERT_TRUE(recorder.AwaitFrames(3)) << test.name;
    test.fault();
    ASSERT_TRUE(recorder.AwaitErrors(1)) << test.name;
    ExpectStopped();
    EXPECT_THAT(recorder.errors(), ElementsAre(5)) << test.name;
    Discard();
  }
}

TEST_F(TransferTest, UnplugDuringRequestsAndStop) {
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
  EXPECT_FALSE(Vexa_GetClock(camera_, nullptr, &frequency));
  EXPECT_EQ(GetLastError(), 1167U);
  puller.join();
  ExpectStopped();
  EXPECT_FALSE(Vexa_StartTransfer(camera_));
  EXPECT_EQ(GetLastError(), 1167U);

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

TEST_F(TransferTest, StopsWhateverTheCameraDoes) {
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
    const auto twin = twin_;
    Discard();
    EXPECT_EQ(twin->OpenHandles(), 0U) << name;
  }
}

TEST_F(TransferTest, ResetIsRepeatedUntilTheDriverCan) {
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

TEST_F(TransferTest, SoftwareTriggerGivesOneFrameEach) {
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

TEST_F(TransferTest, SeparateHeaderTellsTheEndOfTheExposure) {
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

TEST_F(TransferTest, ReadOutTriggerBringsTheImage) {
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

TEST_F(TransferTest, HardwareAndSubTriggers) {
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

TEST_F(TransferTest, TimeOutsOfTheTriggerModes) {
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
TEST_F(TransferTest, TimeOutsBetweenHeaderAndImage) {
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

TEST_F(TransferTest, TriggerModeRecoversAfterALostFrame) {
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
  ASSERT_TRUE(Vexa_SoftTrigger(camera_));
  EXPECT_TRUE(recorder.AwaitFrames(2));
}

TEST_F(TransferTest, CallbacksMayUseTheCameraButNotStopIt) {
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
      SetLastError(0);
      refused += call(camera_) == FALSE && GetLastError() == 1131 ? 1 : 0;
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
TEST_F(TransferTest, MessagesFollowTheCallbacks) {
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

TEST_F(TransferTest, TwoCamerasStreamSideBySide) {
  OpenFast(64, 48);
  const auto first_twin = twin_;
  HANDLE first = camera_;
  OpenFast(96, 32);
  Recorder of_first(first);
  Recorder of_second(camera_);
  ASSERT_TRUE(Vexa_StartTransfer(first));
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  EXPECT_TRUE(of_first.AwaitFrames(50));
  EXPECT_TRUE(of_second.AwaitFrames(50));
  EXPECT_TRUE(Vexa_StopTransfer(first));
  ExpectStopped();
  EXPECT_EQ(of_first.frames()[0].width, 64U);
  EXPECT_EQ(of_second.frames()[0].width, 96U);
}

}  // namespace
}  // namespace vexa::test
