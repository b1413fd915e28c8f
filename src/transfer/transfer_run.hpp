/// \file
/// The transfer thread: takes finished slots from the ring and tells the application.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

#include "device/control_channel.hpp"
#include "device/identity.hpp"
#include "platform/event.hpp"
#include "platform/mutex.hpp"
#include "platform/status.hpp"
#include "settings/mirror.hpp"
#include "settings/sensor_timing.hpp"
#include "transfer/frame_layout.hpp"
#include "transfer/frame_ring.hpp"
#include "transfer/notifier.hpp"
#include "transfer/read_pipeline.hpp"
#include "transfer/snapshot.hpp"
#include "transfer/trigger_waits.hpp"
#include "transfer/triggers.hpp"

namespace vexa::transfer {

/// The parts of a camera that a running transfer uses.
struct TransferParts {
  device::ControlChannel& channel;
  const device::CameraIdentity& identity;
  const settings::SensorTiming& timing;
  const settings::Mirror& mirror;
  const TimeOuts& time_outs;
  Triggers& triggers;
  RawSnapshot& snapshot;
  Notifier& notifier;
};

/// What is known of the latest transfers; written by the transfer thread, read from any thread.
class ReceiveRecord {
 public:
  static constexpr std::size_t kHeaderSize = 64;

  void SetDataSize(std::size_t size) { data_size_ = static_cast<std::uint32_t>(size); }
  std::uint32_t data_size() const { return data_size_; }

  /// Keeps the first 64 bytes; what a shorter header lacks becomes 0.
  void SetHeader(std::span<const std::uint8_t> header);
  void CopyHeader(std::span<std::uint8_t, kHeaderSize> header) const;

 private:
  std::atomic<std::uint32_t> data_size_ = 0;
  mutable platform::Mutex mutex_;
  std::array<std::uint8_t, kHeaderSize> header_{};
};

/// Pauses of the recovery in milliseconds.
struct RecoveryPauses {
  std::uint64_t exposure = 0;
  std::uint64_t read_out = 0;
};

/// One transfer from start to stop, on its own thread.
class TransferRun {
 public:
  /// Allocates all buffers of the transfer; throws std::bad_alloc.
  TransferRun(const TransferParts& parts, const FrameLayout& layout, const RecoveryPauses& pauses,
              ReceiveRecord& record, const platform::Event& stop);

  /// Runs until the stop event is set, the device is gone or the read thread cannot be started.
  void Run();

 private:
  /// The longest wait for the next slot, and what its end means.
  struct WaitLimit {
    std::uint32_t milliseconds = platform::kInfinite;
    Status on_timeout;
  };

  bool Cycle();
  WaitLimit LimitOfNextWait(const FrameSlot& slot);
  WaitLimit LimitAfterReadOut(const FrameSlot& slot);
  void AwaitTrigger(const FrameSlot& slot, platform::Event& trigger);
  Status Take(FrameSlot& slot);
  Status Accept(FrameSlot& slot);
  Status AcceptHeader(std::span<const std::uint8_t> data);
  void RecordHeader(std::span<const std::uint8_t> data);
  void Deliver(std::uint8_t* image);
  Status Recover();
  bool StoppedWithin(std::uint64_t pause_ms) const;

  const TransferParts parts_;
  const FrameLayout layout_;
  const RecoveryPauses pauses_;
  const TriggerFlags flags_;
  ReceiveRecord& record_;
  const platform::Event& stop_;
  FrameRing ring_;
  ReadPipeline pipeline_;

  Status last_slot_status_;
  std::uint32_t frame_number_ = 0;
  bool expecting_header_ = true;
};

}  // namespace vexa::transfer
