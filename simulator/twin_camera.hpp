/// \file
/// A camera that behaves, without hardware: the twin's control interface for tests and tools.
#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "platform/driver.hpp"
#include "simulator/camera_config.hpp"
#include "simulator/camera_state.hpp"
#include "simulator/faults.hpp"
#include "simulator/request_log.hpp"
#include "simulator/stream_engine.hpp"

namespace vexa::simulator {

/// When a camera that does not answer comes back.
enum class Wakes { kNever, kFirstStage, kSecondStage };

/// One camera and the driver behind it. Made by CameraBus::Add; opened through the bus as a
/// platform::Driver. Every function may be called from any thread at any time.
class TwinCamera {
 public:
  explicit TwinCamera(CameraConfig config);
  ~TwinCamera();
  TwinCamera(const TwinCamera&) = delete;
  TwinCamera& operator=(const TwinCamera&) = delete;

  /// As added; what has changed since (scene, driver version) is not in it.
  const CameraConfig& config() const { return config_; }

  // Plugging. Open devices of an unplugged camera are dead: their pending reads end with 1167 and
  // whatever they send fails with it, also after the camera has been plugged in again, in which it
  // is back at its power-up settings (the user area stays).
  void Unplug();
  void Replug();
  bool IsPlugged() const;

  // Faults of the stream. Each call replaces the former order of its kind; count 0 takes it back,
  // kForever keeps it.
  /// The next reads end with a code, as soon as they are queued; the rest of a transfer that such
  /// a read would have carried on is lost.
  void FailReads(std::uint32_t code, std::uint32_t count) {
    faults_.FailReads(Status(code), count);
  }
  /// The next attempts to queue a read are answered with a code.
  void RefuseReads(std::uint32_t code, std::uint32_t count) {
    faults_.RefuseReads(Status(code), count);
  }
  /// Reset stream answers 31.
  void RefuseReset(std::uint32_t count) { faults_.RefuseReset(count); }
  /// The next frames (in separate-header mode, images) are sent with bytes missing at the end ...
  void ShortenFrames(std::uint32_t bytes, std::uint32_t count) {
    faults_.ShortenFrames(bytes, count);
  }
  /// ... or with zero bytes added.
  void LengthenFrames(std::uint32_t bytes, std::uint32_t count) {
    faults_.LengthenFrames(bytes, count);
  }
  /// The next header transfers of separate-header mode are short.
  void ShortenHeaders(std::uint32_t bytes, std::uint32_t count) {
    faults_.ShortenHeaders(bytes, count);
  }
  /// The next frames are not sent; the frame number advances.
  void DropFrames(std::uint32_t count) { faults_.DropFrames(count); }
  /// While set nothing is sent.
  void Stall(bool stalled) { engine_.SetStalled(stalled); }

  // Faults of the control side. Orders of these three add up; the oldest that matches counts.
  void FailControl(const RequestMatcher& matcher, std::uint32_t code, std::uint32_t count) {
    faults_.FailControl(matcher, Status(code), count);
  }
  /// Requests take so long. Unplugging ends the wait.
  void DelayControl(const RequestMatcher& matcher, std::uint32_t milliseconds,
                    std::uint32_t count) {
    faults_.DelayControl(matcher, milliseconds, count);
  }
  /// Requests that succeed report at most so many bytes.
  void LimitControl(const RequestMatcher& matcher, std::uint32_t bytes, std::uint32_t count) {
    faults_.LimitControl(matcher, bytes, count);
  }
  /// Control requests (0x222058) fail with `code` until the given recovery I/O control comes.
  void SetUnanswering(Wakes wakes, std::uint32_t code = 121);
  void SetAnswering();
  /// The open count tells one more handle.
  void SetBusyElsewhere(bool busy) { busy_elsewhere_ = busy; }
  void SetDriverVersion(const std::array<std::uint32_t, 4>& words);

  // The camera's surroundings.
  /// A pulse on an input pin: both edges.
  void PulsePin(unsigned pin);
  void SetPin(unsigned pin, bool high);
  /// Null: the built-in scene.
  void SetScene(std::shared_ptr<const Picture> scene);

  // Looking inside.
  std::vector<LoggedRequest> Log() const { return log_.Entries(); }
  void ClearLog() { log_.Clear(); }
  /// At most this many entries, the newest; 0 switches the log off.
  void SetLogLimit(std::size_t limit) { log_.SetLimit(limit); }
  std::uint16_t PeekRegister(std::uint16_t block, std::uint16_t number) const;
  /// Sets a register and applies all; false when it does not exist.
  bool PokeRegister(std::uint16_t block, std::uint16_t number, std::uint16_t value);
  /// Frames that went into the camera's memory, and frames whose number was used up without.
  std::uint64_t frames_made() const { return engine_.frames_made(); }
  std::uint64_t frames_dropped() const { return engine_.frames_dropped(); }
  /// Reads that have taken frames away, whole ones or parts.
  std::uint64_t reads_filled() const { return engine_.reads_filled(); }
  unsigned OpenHandles() const;
  std::size_t PendingReads() const { return engine_.PendingReads(); }
  bool Streaming() const { return engine_.Running(); }

 private:
  friend class TwinDevice;

  // Driver side, by TwinDevice. A handle is good while its plugging (a count) is the present one.
  std::uint64_t OpenHandle();
  void CloseHandle(const void* device, std::uint64_t plugging);
  bool IsLive(std::uint64_t plugging) const;
  Status Control(std::uint64_t plugging, platform::ControlCode code,
                 std::span<const std::uint8_t> input, std::span<std::uint8_t> output,
                 std::uint32_t* returned);
  Status QueueRead(const void* device, std::uint64_t plugging, std::span<std::uint8_t> buffer,
                   platform::Completion& completion);
  void CancelReads(const void* device);
  void CancelRead(const void* device, const platform::Completion& completion);
  void EndStreamWithoutReads(const void* device);

  Status Dispatch(std::uint64_t plugging, platform::ControlCode code,
                  std::span<const std::uint8_t> input, std::span<std::uint8_t> output,
                  std::uint32_t* returned);
  Status StartStream(std::uint64_t plugging);
  Status AnswerControlRequest(std::span<const std::uint8_t> record, std::span<std::uint8_t> output,
                              std::uint32_t* returned);
  Status Recover(Wakes stage);
  bool HasStreamControl() const;
  bool HasRecovery() const;
  void PublishSettings();

  const CameraConfig config_;
  Faults faults_;
  RequestLog log_;
  StreamEngine engine_;
  std::atomic<bool> busy_elsewhere_ = false;

  std::mutex closing_mutex_;  // one close at a time
  mutable std::mutex mutex_;  // guards what follows; may be held while the engine is called
  std::condition_variable plugging_changed_;
  CameraState state_;
  std::array<std::uint32_t, 4> driver_version_;
  bool plugged_ = true;
  std::uint64_t plugging_ = 0;
  unsigned open_handles_ = 0;
  Wakes wakes_ = Wakes::kNever;
  Status silence_;  // what control requests fail with; success while the camera answers
};

}  // namespace vexa::simulator
