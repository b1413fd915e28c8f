/// \file
/// A twin with small frames, ready to stream.
#pragma once

#include <array>
#include <functional>
#include <memory>

#include "camera_fixture.hpp"
#include "recorder.hpp"

namespace vexa::test {

inline constexpr DWORD kSoftware = 0x401;        // one frame for each software trigger
inline constexpr DWORD kSeparateHeader = 0x100;  // header first
inline constexpr DWORD kReadOut = 0x402;         // software trigger, read-out trigger

inline constexpr std::array<std::uint32_t, 4> kNoStreamControl = {1, 0, 0, 0};

class TransferTest : public CameraTest {
 protected:
  /// The only camera, with small frames and no pauses between them.
  HANDLE OpenFast(std::uint32_t width = 64, std::uint32_t height = 48,
                  const std::function<void(simulator::CameraConfig&)>& change = {}) {
    simulator::CameraConfig config = simulator::ForProduct(0x0510);
    config.pace = simulator::Pace::kFastest;
    config.noise = false;
    if (change) {
      change(config);
    }
    recorder_.reset();
    camera_ = OpenOnly(config);
    EXPECT_TRUE(Vexa_SetScanMode(camera_, 1, 0, 0, width, height)) << GetLastError();
    return camera_;
  }

  HANDLE OpenTriggered(DWORD mode) {
    OpenFast();
    EXPECT_TRUE(Vexa_SetTriggerMode(camera_, mode));
    return camera_;
  }

  /// Records what the open camera's callbacks are told, until the next Record or OpenFast.
  Recorder& Record() {
    recorder_.reset();
    recorder_ = std::make_unique<Recorder>(camera_);
    return *recorder_;
  }

  /// Closes and removes the camera.
  void Discard() {
    recorder_.reset();
    Close(camera_);
    Remove(twin_);
  }

  void ExpectStopped() {
    EXPECT_TRUE(Vexa_StopTransfer(camera_));
    EXPECT_EQ(twin_->PendingReads(), 0U);
  }

  HANDLE camera_ = INVALID_HANDLE_VALUE;

 private:
  std::unique_ptr<Recorder> recorder_;
};

}  // namespace vexa::test
