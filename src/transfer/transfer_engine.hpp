/// \file
/// Starting and stopping the transfer of frames.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

#include "device/control_channel.hpp"
#include "device/identity.hpp"
#include "platform/event.hpp"
#include "platform/mutex.hpp"
#include "platform/status.hpp"
#include "platform/thread.hpp"
#include "settings/exposure_control.hpp"
#include "settings/mirror.hpp"
#include "settings/sensor_timing.hpp"
#include "settings/transfer_format.hpp"
#include "settings/trigger_io.hpp"
#include "transfer/notifier.hpp"
#include "transfer/snapshot.hpp"
#include "transfer/transfer_run.hpp"
#include "transfer/trigger_waits.hpp"
#include "transfer/triggers.hpp"

namespace vexa::transfer {

/// The settings that a start of the transfer refreshes and reads.
struct TransferSettings {
  settings::SensorTiming& timing;
  settings::ExposureControl& exposure;
  settings::TransferFormat& format;
  settings::TriggerIo& trigger_io;
};

/// A camera's transfer: idle, or running on two threads. Start and Stop may be called from any
/// thread but the transfer thread itself, where they answer kPossibleDeadlock.
class TransferEngine {
 public:
  TransferEngine(const TransferParts& parts, const TransferSettings& settings)
      : parts_(parts), settings_(settings) {}
  ~TransferEngine();

  void set_max_transfer_size(std::uint32_t bytes) { max_transfer_size_ = bytes; }

  /// Stops a running transfer, reads the camera's settings and starts anew.
  Status Start();
  /// Ends the transfer; when it returns, no notification follows. Succeeds when none runs.
  Status Stop();

  /// Whether a transfer has been started and not stopped; also after the camera's loss.
  bool IsStarted();

  /// Whether the caller runs inside one of this camera's callbacks.
  bool OnTransferThread() const;

  /// Bytes of an image with the present settings.
  std::uint64_t ImageSize() const;

  /// Takes the oldest stored frame or waits for the next one; starts the transfer if none runs. On
  /// the transfer thread, which brings the frames, it does not wait. kWaitTimeout without a frame
  /// in time, kAccessDenied when the transfer has ended or ends. Throws std::bad_alloc.
  Status TakeSnapshot(std::span<std::uint8_t> buffer, std::uint32_t timeout_ms, TakenFrame* taken);

  const ReceiveRecord& record() const { return record_; }

 private:
  void StopRunning();
  Status StartLocked();
  Status RequireRunning(std::shared_ptr<const platform::Thread>* thread);
  RecoveryPauses ComputePauses();
  void Body(const RecoveryPauses& pauses);
  void Transfer(const RecoveryPauses& pauses);

  const TransferParts parts_;
  const TransferSettings settings_;
  std::uint32_t max_transfer_size_ = 0;
  ReceiveRecord record_;

  platform::Mutex mutex_;  // guards the members below against concurrent starts and stops
  std::unique_ptr<platform::Event> stop_;
  // A taker of snapshots waits for the thread's end, also when a stop meanwhile lets go of it.
  std::shared_ptr<platform::Thread> thread_;

  std::atomic<std::uint32_t> transfer_thread_id_ = 0;  // 0 while none runs
};

}  // namespace vexa::transfer
