// How much of the driver's rate the library passes on: frames per second through the DLL, beside a
// bare loop of overlapped reads on the same camera. Both keep four reads of the same size queued.
// First at the pace that the camera's pixel clock gives, then with frames made as fast as they are
// taken, where processor time is what limits and the library's share of it shows.
//
//   stream_rate [SECONDS [ROUNDS]]    seconds per measurement (default 2), rounds of both (5)

#include <windows.h>

#include <setupapi.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "VexaAPI.h"
#include "platform/driver.hpp"
#include "platform/windows/device_interface.hpp"
#include "simulator/windows/remote_camera.hpp"

namespace vexa::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kQueuedReads = 4;
constexpr DWORD kHeader = 64;
constexpr DWORD kLongestRead = 0x80000;  // the library's, on Vista and later

struct FrameSize {
  DWORD width, height;

  DWORD bytes() const { return kHeader + width * height; }

  /// Room for a USB packet more, so that a frame ends its last read.
  DWORD read_size() const { return std::min(bytes() + 512, kLongestRead); }
};

void Check(BOOL succeeded, const char* what) {
  if (!succeeded) {
    throw std::runtime_error(std::string(what) + ": error " + std::to_string(::GetLastError()));
  }
}

/// Counts frames; their rate is that between the first and the last.
struct Meter {
  Clock::time_point first, last;
  unsigned frames = 0;

  void Count() {
    last = Clock::now();
    if (frames++ == 0) first = last;
  }
  double Rate() const {
    if (frames < 2) throw std::runtime_error("no frames");
    return (frames - 1) / std::chrono::duration<double>(last - first).count();
  }
};

/// The only camera's device, opened as a program without the library would.
class BareDevice {
 public:
  BareDevice() {
    const GUID& interface_class = platform::kCameraInterfaceClass;
    const HDEVINFO set = ::SetupDiGetClassDevsA(&interface_class, nullptr, nullptr,
                                                DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    SP_DEVICE_INTERFACE_DATA device{};
    device.cbSize = sizeof device;
    Check(::SetupDiEnumDeviceInterfaces(set, nullptr, &interface_class, 0, &device), "a camera");
    alignas(SP_DEVICE_INTERFACE_DETAIL_DATA_A) char buffer[512];
    auto* detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(buffer);
    detail->cbSize = sizeof *detail;
    Check(::SetupDiGetDeviceInterfaceDetailA(set, &device, detail, sizeof buffer, nullptr, nullptr),
          "the camera's path");
    ::SetupDiDestroyDeviceInfoList(set);
    handle_ = ::CreateFileA(detail->DevicePath, GENERIC_READ | GENERIC_WRITE,
                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                            FILE_FLAG_OVERLAPPED, nullptr);
    Check(handle_ != INVALID_HANDLE_VALUE, "the camera");
  }
  ~BareDevice() { ::CloseHandle(handle_); }
  BareDevice(const BareDevice&) = delete;
  BareDevice& operator=(const BareDevice&) = delete;

  HANDLE handle() const { return handle_; }

  void Control(platform::ControlCode code) {
    OVERLAPPED overlapped{};
    overlapped.hEvent = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    DWORD bytes = 0;
    ::DeviceIoControl(handle_, static_cast<DWORD>(code), nullptr, 0, nullptr, 0, &bytes,
                      &overlapped);
    Check(::GetOverlappedResult(handle_, &overlapped, &bytes, TRUE), "an I/O control");
    ::CloseHandle(overlapped.hEvent);
  }

 private:
  HANDLE handle_;
};

struct Read {
  OVERLAPPED overlapped{};
  std::vector<BYTE> buffer;

  void Queue(HANDLE device) {
    const HANDLE event = overlapped.hEvent;
    overlapped = {};
    overlapped.hEvent = event;
    Check(::ReadFile(device, buffer.data(), static_cast<DWORD>(buffer.size()), nullptr,
                     &overlapped) ||
              ::GetLastError() == ERROR_IO_PENDING,
          "a read");
  }
};

/// Frames per second of a bare loop.
double BareRate(const FrameSize& size, double seconds) {
  BareDevice device;
  device.Control(platform::ControlCode::kResetStream);
  std::array<Read, kQueuedReads> reads;
  for (Read& read : reads) {
    read.overlapped.hEvent = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    read.buffer.resize(size.read_size());
    read.Queue(device.handle());
  }
  const Clock::time_point end = Clock::now() + std::chrono::milliseconds(int(seconds * 1000));
  Meter meter;
  DWORD received = 0;
  for (std::size_t i = 0; Clock::now() < end; ++i) {
    Read& read = reads[i % kQueuedReads];
    DWORD bytes = 0;
    Check(::GetOverlappedResult(device.handle(), &read.overlapped, &bytes, TRUE), "a read's end");
    received += bytes;
    if (bytes < size.read_size()) {
      if (std::exchange(received, 0) != size.bytes()) throw std::runtime_error("not a whole frame");
      meter.Count();
    }
    read.Queue(device.handle());
  }
  ::CancelIo(device.handle());
  for (Read& read : reads) {
    DWORD bytes = 0;
    ::GetOverlappedResult(device.handle(), &read.overlapped, &bytes, TRUE);
    ::CloseHandle(read.overlapped.hEvent);
  }
  device.Control(platform::ControlCode::kStopStream);
  return meter.Rate();
}

void VEXA_CALL CountFrame(HANDLE, DWORD, DWORD, DWORD, WORD, BYTE*, void* context) {
  static_cast<Meter*>(context)->Count();
}

void VEXA_CALL CountError(HANDLE, DWORD, void* context) {
  ++*static_cast<std::atomic<unsigned>*>(context);
}

/// Frames per second through the library. Sets the camera's frame size, too.
double LibraryRate(const FrameSize& size, double seconds) {
  HANDLE camera = Vexa_Open();
  Check(camera != INVALID_HANDLE_VALUE, "Vexa_Open");
  Check(Vexa_SetScanMode(camera, 1, 0, 0, size.width, size.height), "Vexa_SetScanMode");
  Meter meter;
  std::atomic<unsigned> errors = 0;
  Vexa_SetTransferEndCallback(camera, CountFrame, &meter);
  Vexa_SetRcvErrorCallback(camera, CountError, &errors);
  Check(Vexa_StartTransfer(camera), "Vexa_StartTransfer");
  ::Sleep(static_cast<DWORD>(seconds * 1000));
  Vexa_StopTransfer(camera);
  Vexa_Close(camera);
  if (errors != 0) throw std::runtime_error("receive errors");
  return meter.Rate();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void Compare(const FrameSize& size, double seconds, int rounds) {
  std::vector<double> library, bare, ratio;
  for (int i = 0; i < rounds; ++i) {
    library.push_back(LibraryRate(size, seconds));
    bare.push_back(BareRate(size, seconds));
    ratio.push_back(library.back() / bare.back());
  }
  std::printf("%4lu x %-4lu  library %7.1f frames/s  bare reads %7.1f frames/s  ratio %.3f\n",
              size.width, size.height, Median(library), Median(bare), Median(ratio));
}

void Run(double seconds, int rounds) {
  simulator::RemoteBus bus;
  for (const simulator::Pace pace : {simulator::Pace::kRealTime, simulator::Pace::kFastest}) {
    simulator::CameraConfig config = simulator::ForProduct(0x0510);
    config.pace = pace;
    config.noise = false;
    config.moving_parts = false;
    const auto camera = bus.Add(config);
    std::puts(pace == simulator::Pace::kRealTime ? "at the camera's pace"
                                                 : "as fast as frames are taken");
    for (const FrameSize size :
         {FrameSize{1280, 964}, FrameSize{640, 480}, FrameSize{320, 240}, FrameSize{64, 48}}) {
      Compare(size, seconds, rounds);
    }
    bus.Remove(camera);
  }
}

}  // namespace
}  // namespace vexa::test

int main(int argc, char** argv) try {
  const double seconds = argc > 1 ? std::atof(argv[1]) : 2;
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
  if (argc > 3 || seconds <= 0 || rounds < 1) {
    std::fputs("usage: stream_rate [SECONDS [ROUNDS]]\n", stderr);
    return 2;
  }
  vexa::test::Run(seconds, rounds);
  return 0;
} catch (const std::exception& failure) {
  std::fprintf(stderr, "stream_rate: %s\n", failure.what());
  return 1;
}
