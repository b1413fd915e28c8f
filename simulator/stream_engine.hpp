/// \file
/// The image stream of a twin: shutter, frame memory and the reads that carry frames away.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "platform/driver.hpp"
#include "simulator/camera_settings.hpp"
#include "simulator/camera_state.hpp"
#include "simulator/faults.hpp"
#include "simulator/frame_memory.hpp"
#include "simulator/frame_renderer.hpp"

namespace vexa::simulator {

/// Runs one thread from Start to Stop, which exposes frames into the frame memory and moves them
/// into the queued reads in order. A frame travels as one transfer, or in separate-header mode as
/// a header transfer at the end of the exposure and an image transfer after the read-out. Each
/// read takes up to its size; the read that ends a transfer gets fewer bytes, none when the
/// transfer fills its reads exactly.
///
/// Free run: a frame is made every frame period (Pace::kRealTime), or whenever a read waits and
/// nothing else is to be sent (Pace::kFastest). Triggered: a trigger runs through exposure delay,
/// exposure, read-out trigger (when the mode wants one; it may come early) and read-out. A trigger
/// while that goes on is ignored. A trigger while no stream runs is kept until the stream starts,
/// so that a host that triggers right after starting its reading thread is served. Exposure and
/// read-out take no time in Pace::kFastest, the two delays do.
class StreamEngine {
 public:
  StreamEngine(const CameraConfig& config, Faults& faults);
  ~StreamEngine();
  StreamEngine(const StreamEngine&) = delete;
  StreamEngine& operator=(const StreamEngine&) = delete;

  /// Settings for the frames that are exposed from now on.
  void Configure(CameraSettings settings);

  /// Starts the stream, or sets a running one to a frame boundary; pending reads of a running one
  /// end with 995. 8 when no thread can be had.
  Status Start();
  /// Ends the stream: pending reads end with `status`, the frame memory is emptied, the thread is
  /// gone.
  void Stop(Status status);
  /// Whether the thread exists.
  bool Running() const;

  /// Takes a read in; `owner` names the device that it came through.
  void QueueRead(const void* owner, std::span<std::uint8_t> buffer,
                 platform::Completion& completion);
  /// Ends an owner's pending reads with 995: those of one thread, or all for a default id. A read
  /// that is being filled at this moment ends with what it gets.
  void CancelReads(const void* owner, std::thread::id thread);
  /// The same for one read.
  void CancelRead(const platform::Completion& completion);
  /// Ends all of an owner's pending reads with a code.
  void EndReads(const void* owner, Status status);
  /// Waits until no read of the owner is being filled.
  void AwaitService(const void* owner);

  void Execute(StreamCommand command);
  void SetStalled(bool stalled);

  /// Register 0x66: bit 0 stream runs, 1 exposing, 2 waiting for the read-out trigger, 3 a frame
  /// waits for reads.
  std::uint16_t SoftwareStatus() const;
  std::uint64_t frames_made() const { return frames_made_; }
  std::uint64_t frames_dropped() const { return frames_dropped_; }
  std::uint64_t reads_filled() const { return reads_filled_; }
  std::size_t PendingReads() const { return pending_reads_; }

 private:
  using Clock = std::chrono::steady_clock;
  using Lock = std::unique_lock<std::mutex>;

  struct Read {
    const void* owner = nullptr;
    std::thread::id thread;
    std::span<std::uint8_t> buffer;
    platform::Completion* completion = nullptr;
  };

  enum class Phase { kIdle, kDelay, kExposure, kAwaitReadOut, kReadOut };

  // One triggered exposure.
  struct Shot {
    Phase phase = Phase::kIdle;
    Clock::time_point until;
    bool read_out_requested = false;
    bool separate_header = false;
    int slot = FrameMemory::kNone;
  };

  bool real_time() const { return config_.pace == Pace::kRealTime; }
  void Wake();
  template <typename Chosen>
  void EndReadsIf(const Chosen& chosen, Status status);
  void EndMatchingReads(const void* owner, std::thread::id thread, Status status);
  void Finish(const Read& read, Status status, std::size_t bytes);

  void Run();
  void PrepareScene(Lock& lock);
  bool FailRead(Lock& lock);
  bool SendPart(Lock& lock);
  bool Expose(Lock& lock);
  bool ExposeFreeRun(Lock& lock);
  bool ExposeTriggered(Lock& lock);
  bool EndExposure(Lock& lock);
  void EndReadOut();
  void SkipFrame(Lock& lock);
  int MakeFrame(Lock& lock);
  void Await(Lock& lock);

  void BeginShot();
  void RequestReadOut();
  void ResendStored();
  void QueueHeader(int slot);
  void QueueImage(int slot, bool separate_header);
  void ClearBuffer();
  void ResetStreamState();

  const CameraConfig config_;
  Faults& faults_;
  FrameRenderer renderer_;  // the thread's

  std::mutex control_mutex_;  // start and stop, one at a time; taken before mutex_
  std::thread thread_;

  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::condition_variable served_;
  bool running_ = false;
  bool stop_ = false;
  bool waiting_ = false;  // the thread sleeps
  bool stalled_ = false;
  bool trigger_kept_ = false;
  bool read_out_kept_ = false;
  std::shared_ptr<const CameraSettings> settings_;
  FrameMemory memory_;
  Shot shot_;
  Clock::time_point next_frame_;
  std::uint32_t frame_number_ = 0;
  std::uint64_t clears_ = 0;    // a frame in the making is lost when this changes
  std::uint64_t restarts_ = 0;  // a transfer in the sending is void when this changes
  std::vector<Read> reads_;
  const void* served_owner_ = nullptr;  // of the read that is being filled
  std::size_t serving_bytes_ = 0;       // and how much it gets

  std::atomic<std::uint64_t> frames_made_ = 0;
  std::atomic<std::uint64_t> frames_dropped_ = 0;
  std::atomic<std::uint64_t> reads_filled_ = 0;
  std::atomic<std::size_t> pending_reads_ = 0;
};

}  // namespace vexa::simulator
