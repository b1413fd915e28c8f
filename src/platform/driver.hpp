/// \file
/// The driver seam: the contract between the library and whatever carries it to a camera. The
/// kernel-mode driver (windows/) and the digital twin (simulator/) implement it; the code above
/// cannot tell them apart. Error values are Windows numbers on every system.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/event.hpp"
#include "platform/status.hpp"

namespace vexa::platform {

/// Device I/O control codes of the camera driver: device type 0x22 (FILE_DEVICE_UNKNOWN),
/// METHOD_BUFFERED, FILE_ANY_ACCESS.
enum class ControlCode : std::uint32_t {
  kConfigurationDescriptor = 0x222008,  // function 0x802: out, USB 2.0 chapter 9 descriptors
  kControlRequest = 0x222058,           // function 0x816: in, request record; out, reply
  kDriverVersion = 0x222074,            // function 0x81D: out, four u32 words
  kOpenCount = 0x22207C,                // function 0x81F: out, u32; synchronous
  kStopStream = 0x2220C0,               // function 0x830
  kResetStream = 0x222100,              // function 0x840: 31 while it cannot reset yet
  kRecoverFirstStage = 0x222140,        // function 0x850
  kRecoverSecondStage = 0x222180,       // function 0x860
};

/// One request in flight: a manual-reset event that the driver sets when the request has ended,
/// and how it ended. Bound to its address while the request is in flight; reusable afterwards.
class Completion {
 public:
  struct Native;  // what the back end needs beside the event (an OVERLAPPED on Windows)

  explicit Completion(Event::Initially initially = Event::Initially::kNonSignalled);
  ~Completion();
  Completion(const Completion&) = delete;
  Completion& operator=(const Completion&) = delete;

  const Waitable& Done() const { return done_; }
  Native& native() const { return *native_; }

  /// For drivers in process: makes ready for a new request (event reset) ...
  void Begin();
  /// ... and ends it. The first call after Begin counts. The waiting side may destroy the
  /// completion as soon as it is signalled; this call touches nothing of it afterwards.
  void Finish(Status status, std::uint32_t transferred);
  /// Waits for Finish; valid for drivers in process only.
  Status Await(std::uint32_t* transferred) const;

 private:
  Event done_;
  std::unique_ptr<Native> native_;
  std::atomic<bool> in_flight_ = false;
  Status status_;
  std::uint32_t transferred_ = 0;
};

/// An open camera device. Destroying it closes the device; the caller has ended all reads before.
/// Control and read calls may run at the same time on different threads.
class Device {
 public:
  virtual ~Device() = default;

  /// Sends one I/O control and waits for its end without a time limit. `completion` carries the
  /// request and is not shared with any other. On success `*returned` is the number of bytes put
  /// into `output`; on failure it is whatever the driver reported (0 when it reported nothing).
  virtual Status Control(ControlCode code, std::span<const std::uint8_t> input,
                         std::span<std::uint8_t> output, std::uint32_t* returned,
                         Completion& completion) = 0;

  /// The same without a completion, for the one synchronous request (open count).
  virtual Status ControlSynchronous(ControlCode code, std::span<const std::uint8_t> input,
                                    std::span<std::uint8_t> output, std::uint32_t* returned) = 0;

  /// Queues a read. kIoPending: the read is queued, `completion` is signalled when it has ended,
  /// and `buffer` stays the driver's until then. Reads end in the order in which they were queued.
  /// A read that the system ends at once with success also answers kIoPending, with the
  /// completion signalled, so that its bytes are not lost. Any other answer: refused, nothing
  /// queued. A read returns at most the bytes asked for; the read that ends a frame returns fewer
  /// (possibly none).
  virtual Status QueueRead(std::span<std::uint8_t> buffer, Completion& completion) = 0;

  /// Waits for the end of a queued read and gives its outcome; may be called again for the same
  /// read with the same answer.
  virtual Status FinishRead(Completion& completion, std::uint32_t* transferred) = 0;

  /// Asks the driver to end all reads that the calling thread has queued. They end soon after
  /// (with kOperationAborted, or with what they had); FinishRead waits for that.
  virtual void CancelReads() = 0;
};

/// A source of devices.
class Driver {
 public:
  virtual ~Driver() = default;

  /// Path of the present device interface at `index`, in the system's order. kNoMoreItems behind
  /// the last one; kNotEnoughMemory when the path cannot be copied; both end an enumeration.
  virtual Status InterfacePath(std::uint32_t index, std::u16string* path) = 0;

  /// Opens a path for reading and writing, shared with other openers, for overlapped requests.
  virtual Status Open(const std::u16string& path, std::unique_ptr<Device>* device) = 0;
};

/// The driver that Vexa_Open uses: this system's (the kernel-mode driver on Windows, the digital
/// twin elsewhere), unless InstallDriver has put another one in its place.
Driver& CurrentDriver();

/// Replaces the driver for cameras opened from now on; null restores the system's. The caller
/// keeps ownership and removes it before destroying it. Not to be called while Vexa_Open runs.
void InstallDriver(Driver* driver);

/// The system's own driver; defined once in each build.
Driver& SystemDriver();

}  // namespace vexa::platform
