// Streaming: frames, triggers, errors, recovery, device loss, start and stop.

#include <atomic>
#include <cstring>
#include <thread>

#include "camera_fixture.hpp"
#include "recorder.hpp"
#if !defined(_WIN32)
#include "VexaHost.h"
#include "platform/host/registry_store.hpp"
#endif

namespace vexa::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using platform::ControlCode;
using simulator::CameraConfig;
using simulator::ForProduct;
using simulator::kForever;
using simulator::Pace;

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

  void ExpectStopped() {
    EXPECT_TRUE(Vexa_StopTransfer(camera_));
    EXPECT_EQ(twin_->PendingReads(), 0U);
  }

  std::shared_ptr<simulator::TwinCamera> twin_;
  HANDLE camera_ = INVALID_HANDLE_VALUE;
};

// Every frame is there, in order, whole: numbers are consecutive from one frame to the next, and the
// image is the one that the frame's own header belongs to.
TEST_F(TransferTest, NoFrameIsLostAtTheFastestPace) {
  OpenFast();
  twin_->SetLogLimit(0);
  std::atomic<DWORD> count = 0;
  std::atomic<DWORD> gaps = 0;
  DWORD last = 0;
  Recorder recorder(camera_);
  Vexa_SetTransferEndCallback(
      camera_,
      [](HANDLE, DWORD number, DWORD, DWORD, WORD, BYTE*, void* context) VEXA_CALL {
        (*static_cast<std::function<void(DWORD)>*>(context))(number);
      },
      nullptr);
  std::function<void(DWORD)> on_frame = [&](DWORD number) {
    gaps += count != 0 && number != last + 1 ? 1U : 0U;
    last = number;
    ++count;
  };
  Vexa_SetTransferEndCallback(
      camera_,
      [](HANDLE, DWORD number, DWORD, DWORD, WORD, BYTE*, void* context) VEXA_CALL {
        (*static_cast<std::function<void(DWORD)>*>(context))(number);
      },
      &on_frame);
  ASSERT_TRUE(Vexa_StartTransfer(camera_));
  const auto deadline = std::chrono::steady_clock::now() + 3 * Recorder::kPatience;
  while (count < 100000 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  ExpectStopped();
  EXPECT_GE(count, 100000U);
  EXPECT_EQ(gaps, 0U);
  EXPECT_THAT(recorder.errors(), IsEmpty());
}
