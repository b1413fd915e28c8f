// What the streaming commands make of faults that the digital twin does not produce on request.
// The library is the real one but for the functions below, which this program defines itself and
// thereby puts before the library's.

#include <VexaAPI.h>
#include <gmock/gmock.h>

#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

#include "application.hpp"

namespace {

/** The stream that the commands get in place of the camera's. */
class FakeStream {
 public:
  std::function<void(FakeStream&)> script; /**< Runs on the transfer thread. */
  std::function<BOOL()> save;              /**< In place of saving an image. */
  VEXA_TRANSFER_END_CALLBACK on_frame = nullptr;
  VEXA_RCV_ERROR_CALLBACK on_error = nullptr;
  void* context = nullptr;
  HANDLE camera = INVALID_HANDLE_VALUE;
  DWORD width = 0;
  DWORD height = 0;

  void Frame(DWORD number) {
    on_frame(camera, number, width, height, VEXA_COLOR_ARRAY_RGGB, pixels_.data(), context);
  }
  void Error(DWORD code) { on_error(camera, code, context); }
  void Start() {
    Vexa_GetScanMode(camera, nullptr, nullptr, nullptr, &width, &height);
    pixels_.assign(std::size_t{width} * height, 0x55);
    thread_ = std::thread([this] { script(*this); });
  }
  void Stop() {
    if (thread_.joinable()) {
      thread_.join();
    }
  }

 private:
  std::vector<BYTE> pixels_;
  std::thread thread_;
};

FakeStream* stream = nullptr;

}  // namespace

BOOL VEXA_CALL Vexa_StartTransfer(HANDLE camera) {
  stream->camera = camera;
  stream->Start();
  return TRUE;
}

BOOL VEXA_CALL Vexa_StopTransfer(HANDLE) {
  stream->Stop();
  return TRUE;
}

BOOL VEXA_CALL Vexa_SetTransferEndCallback(HANDLE, VEXA_TRANSFER_END_CALLBACK callback,
                                           void* context) {
  stream->on_frame = callback;
  stream->context = context;
  return TRUE;
}

BOOL VEXA_CALL Vexa_SetRcvErrorCallback(HANDLE, VEXA_RCV_ERROR_CALLBACK callback, void* context) {
  stream->on_error = callback;
  stream->context = context;
  return TRUE;
}

BOOL VEXA_CALL Vexa_SaveImageW(DWORD, DWORD, DWORD, const BYTE*, const WCHAR*, DWORD) {
  return stream->save();
}

namespace vexa::tool {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

struct Outcome {
  int exit_code = 0;
  std::string output;
  std::string error;
};

Outcome RunWith(FakeStream& fake, const std::vector<std::string>& arguments) {
  stream = &fake;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int exit_code = Run(arguments);
  fake.Stop();
  stream = nullptr;
  return {exit_code, testing::internal::GetCapturedStdout(),
          testing::internal::GetCapturedStderr()};
}

TEST(StreamFaults, StatsTellsEveryKindOfLoss) {
  FakeStream fake;
  fake.script = [](FakeStream& self) {
    for (const DWORD number : {0xFFFFFFFEu, 0xFFFFFFFFu, 0u, 3u, 4u}) {
      self.Frame(number);
    }
    self.Error(VEXA_RCV_FRAME_SIZE);
    self.Error(VEXA_RCV_FRAME_SIZE);
    self.Error(31);
  };
  const Outcome lossy = RunWith(fake, {"stats", "--seconds", "0.1", "--json", "--quiet"});
  EXPECT_EQ(lossy.exit_code, 4);
  const auto report = nlohmann::json::parse(lossy.output);
  EXPECT_EQ(report["stream"]["frames"], 5);
  EXPECT_EQ(report["stream"]["lost_frames"], 2);
  EXPECT_EQ(report["callback_interval"]["count"], 3) << "the interval across the gap is none";
  EXPECT_EQ(report["stream"]["receive_errors"][0]["code"], 31);
  EXPECT_EQ(report["stream"]["receive_errors"][1]["code"], VEXA_RCV_FRAME_SIZE);
  EXPECT_EQ(report["stream"]["receive_errors"][1]["count"], 2);
  EXPECT_THAT(lossy.error, AllOf(HasSubstr("2 frame(s) were lost"), HasSubstr("0xE0000002 (")));

  fake.script = [](FakeStream&) {};
  const Outcome silent = RunWith(fake, {"stats", "--seconds", "60", "--timeout", "0.1", "-q"});
  EXPECT_EQ(silent.exit_code, 4);
  EXPECT_THAT(silent.output, HasSubstr("time-out"));
  EXPECT_THAT(silent.error, AllOf(HasSubstr("no frame came"), HasSubstr("--timeout")));

  fake.script = [](FakeStream& self) {
    self.Frame(1);
    self.Error(VEXA_RCV_DEVICE_GONE);
  };
  const Outcome gone = RunWith(fake, {"stats", "--seconds", "60", "-q"});
  EXPECT_EQ(gone.exit_code, 1);
  EXPECT_THAT(gone.error, AllOf(HasSubstr("the camera has gone"), HasSubstr("cable")));
}

TEST(StreamFaults, ASlowDiskCostsFramesAndIsNamed) {
  // Frames keep coming while saving stands still: what finds no buffer must be counted, and the
  // frames that are saved must be those asked for.
  constexpr DWORD kFrames = 3000;  // more than the buffers hold
  std::mutex mutex;
  std::condition_variable changed;
  bool all_sent = false;
  std::atomic<unsigned> saved = 0;
  FakeStream fake;
  fake.script = [&](FakeStream& self) {
    for (DWORD number = 1; number <= kFrames; ++number) {
      self.Frame(number);
    }
    const std::lock_guard lock(mutex);
    all_sent = true;
    changed.notify_all();
  };
  fake.save = [&] {
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return all_sent; });
    saved += 1;
    return TRUE;
  };
  const Outcome slow = RunWith(fake, {"capture", "--frames", "2000", "--output",
                                      testing::TempDir() + "slow-%d.bmp", "--timeout", "0.2"});
  EXPECT_EQ(slow.exit_code, 4);
  EXPECT_THAT(slow.error, HasSubstr("saving is slower"));
  EXPECT_THAT(slow.output, HasSubstr("Saved " + std::to_string(saved) + " of 2000"));
  EXPECT_GT(saved, 0u);
  EXPECT_THAT(slow.error, HasSubstr(std::to_string(kFrames - saved) + " frame(s) between"));
}

TEST(StreamFaults, AFailedSaveEndsTheCapture) {
  FakeStream fake;
  fake.script = [](FakeStream& self) {
    for (DWORD number = 1; number <= 50; ++number) {
      self.Frame(number);
    }
  };
  unsigned calls = 0;
  fake.save = [&calls]() -> BOOL {
    SetLastError(29);
    return ++calls < 3;
  };
  const std::string pattern = testing::TempDir() + "full-%d.bmp";
  const Outcome full = RunWith(fake, {"capture", "-n", "1000", "-o", pattern, "--timeout", "60"});
  EXPECT_EQ(full.exit_code, 1);
  EXPECT_EQ(calls, 3u) << "nothing is written after the failure";
  EXPECT_THAT(full.error, AllOf(HasSubstr("full-3.bmp"), HasSubstr("29 ("), HasSubstr("space")));

  // A raw file is not checked by the library: here it says yes, and there is no file.
  fake.save = [] { return TRUE; };
  const Outcome missing = RunWith(fake, {"capture", "-o", testing::TempDir() + "missing.raw"});
  EXPECT_EQ(missing.exit_code, 1);
  EXPECT_THAT(missing.error, HasSubstr("incomplete"));
}

}  // namespace
}  // namespace vexa::tool
