// What many rounds of opening, starting and stopping leave behind: nothing.

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "camera_fixture.hpp"
#include "recorder.hpp"

namespace vexa::test {
namespace {

using simulator::CameraConfig;
using simulator::ForProduct;

/// Threads, file descriptors and resident pages of this process; on Windows its kernel handles,
/// which threads have, too.
struct Footprint {
  std::ptrdiff_t threads = 0;
  std::ptrdiff_t descriptors = 0;
  long resident_kib = 0;

  static Footprint Now() {
    Footprint now;
#if defined(_WIN32)
    DWORD handles = 0;
    EXPECT_TRUE(::GetProcessHandleCount(::GetCurrentProcess(), &handles));
    now.descriptors = static_cast<std::ptrdiff_t>(handles);
#else
    const auto count = [](const char* folder) {
      return std::distance(std::filesystem::directory_iterator(folder), {});
    };
    now.threads = count("/proc/self/task");
    now.descriptors = count("/proc/self/fd");
    long total_pages = 0, resident_pages = 0;
    std::ifstream("/proc/self/statm") >> total_pages >> resident_pages;
    now.resident_kib = resident_pages * 4;
#endif
    return now;
  }
};

class LifecycleTest : public CameraTest {
 protected:
  static constexpr int kRounds = 1000;
  static constexpr int kWarmUp = 50;

  // Runs the rounds and compares the footprint after the first ones with that at the end. Memory
  // may grow by what the allocator (and a sanitizer's quarantine) holds back, far less than a leak
  // of one frame buffer in each round would be.
  template <typename Round>
  void ExpectNothingLeft(Round&& round, int rounds = kRounds) {
    for (int i = 0; i < kWarmUp; ++i) {
      round();
    }
    const Footprint before = Footprint::Now();
    for (int i = kWarmUp; i < rounds; ++i) {
      round();
    }
    const Footprint after = Footprint::Now();
    EXPECT_EQ(after.threads, before.threads);
    EXPECT_EQ(after.descriptors, before.descriptors);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LT(after.resident_kib - before.resident_kib, 8 * 1024);
#endif
  }

  std::shared_ptr<Twin> PlugFast() {
    CameraConfig config = ForProduct(0x0510);
    config.pace = simulator::Pace::kFastest;
    return Plug(config);
  }
};

TEST_F(LifecycleTest, StartAndStop) {
  const auto twin = PlugFast();
  HANDLE camera = Open();
  // Frames of 64 KiB, so that what one round could leave behind shows.
  ASSERT_TRUE(Vexa_SetScanMode(camera, 1, 0, 0, 256, 256));
  ExpectNothingLeft([&] {
    ASSERT_TRUE(Vexa_StartTransfer(camera));
    ASSERT_TRUE(Vexa_StopTransfer(camera));
  });
  EXPECT_EQ(twin->PendingReads(), 0U);
  EXPECT_FALSE(twin->Streaming());
  Recorder recorder(camera);
  ASSERT_TRUE(Vexa_StartTransfer(camera));
  EXPECT_TRUE(recorder.AwaitFrames(3));
  EXPECT_TRUE(Vexa_StopTransfer(camera));
}

TEST_F(LifecycleTest, OpenAndClose) {
  const auto twin = PlugFast();
  ExpectNothingLeft([&] {
    HANDLE camera = Vexa_Open();
    ASSERT_NE(camera, INVALID_HANDLE_VALUE);
    Vexa_Close(camera);
  });
  EXPECT_EQ(twin->OpenHandles(), 0U);
  // A camera whose settings cannot be read is opened and given back.
  twin->FailControl({.request = 0x13}, 121, simulator::kForever);
  ExpectNothingLeft([&] { ASSERT_EQ(Vexa_Open(), INVALID_HANDLE_VALUE); }, kRounds / 4);
  EXPECT_EQ(twin->OpenHandles(), 0U);
}

}  // namespace
}  // namespace vexa::test
