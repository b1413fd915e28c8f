#include "transfer/transfer_run.hpp"

#include <algorithm>
#include <mutex>

#include "platform/bytes.hpp"

namespace vexa::transfer {
namespace {

constexpr std::size_t kFrameNumberOffset = 12;  // u32 in the frame header
constexpr std::uint64_t kLongestPauseMs = 1000;

}  // namespace

void ReceiveRecord::SetHeader(std::span<const std::uint8_t> header) {
  const std::lock_guard lock(mutex_);
  header_.fill(0);
  std::copy_n(header.begin(), std::min(header.size(), header_.size()), header_.begin());
}

void ReceiveRecord::CopyHeader(std::span<std::uint8_t, kHeaderSize> header) const {
  const std::lock_guard lock(mutex_);
  std::copy(header_.begin(), header_.end(), header.begin());
}

TransferRun::TransferRun(const TransferParts& parts, const FrameLayout& layout,
                         const RecoveryPauses& pauses, ReceiveRecord& record,
                         const platform::Event& stop)
    : parts_(parts),
      layout_(layout),
      pauses_(pauses),
      flags_(parts.triggers.mode()),
      record_(record),
      stop_(stop),
      ring_(layout.buffer),
      pipeline_(parts.channel.device(), ring_, layout) {}

void TransferRun::Run() {
  const Status started = pipeline_.Start();
  if (started.ok()) {
    while (Cycle()) {
    }
  } else {
    parts_.notifier.NotifyReceiveError(started);
  }
  pipeline_.Stop();
  if (last_slot_status_ == error::kAccessDenied) {
    parts_.notifier.NotifyReceiveError(error::kAccessDenied);
  }
}

bool TransferRun::Cycle() {
  FrameSlot& slot = ring_.read_slot();
  const WaitLimit limit = LimitOfNextWait(slot);
  const platform::WaitResult woken = platform::WaitAny({&stop_, &slot.ready}, limit.milliseconds);
  if (woken.index == 0) {
    return false;
  }
  const Status failure = woken.timed_out() ? limit.on_timeout : Take(slot);
  if (failure.ok()) {
    return true;
  }
  if (failure == error::kAccessDenied) {
    return false;
  }
  if (flags_.triggered || failure == error::kGeneralFailure) {
    const Status restarted = Recover();
    if (!restarted.ok()) {
      parts_.notifier.NotifyReceiveError(restarted);
      return false;
    }
  }
  parts_.notifier.NotifyReceiveError(failure);
  expecting_header_ = true;
  return true;
}

TransferRun::WaitLimit TransferRun::LimitOfNextWait(const FrameSlot& slot) {
  if (!flags_.triggered) {
    return {};
  }
  const TimeOuts& time_outs = parts_.time_outs;
  if (flags_.separate_header && !expecting_header_) {
    if (flags_.read_out_trigger) {
      return LimitAfterReadOut(slot);
    }
    return {time_outs.of(TimeOut::kEE2TE), receive_error::kTimeoutImage};
  }
  if (flags_.software_source) {
    AwaitTrigger(slot, parts_.triggers.trigger_event());
  }
  const Status on_timeout = flags_.software_source ? receive_error::kTimeoutSoftwareTrigger
                                                   : receive_error::kTimeoutHardwareTrigger;
  const TimeOut first = flags_.software_source ? TimeOut::kST2EE : TimeOut::kTE2EE;
  if (flags_.separate_header) {
    return {time_outs.of(first), on_timeout};
  }
  if (flags_.read_out_trigger) {
    return LimitAfterReadOut(slot);
  }
  return {CombineTimeOuts(time_outs.of(first), time_outs.of(TimeOut::kEE2TE)), on_timeout};
}

TransferRun::WaitLimit TransferRun::LimitAfterReadOut(const FrameSlot& slot) {
  AwaitTrigger(slot, parts_.triggers.read_out_event());
  return {parts_.time_outs.of(TimeOut::kRO2TE), receive_error::kTimeoutReadOut};
}

// The time-out counts from the trigger, so the trigger is waited for without a limit. What ended
// this wait does not matter: a stop or a ready slot ends the next one, too.
void TransferRun::AwaitTrigger(const FrameSlot& slot, platform::Event& trigger) {
  platform::WaitAny({&stop_, &slot.ready, &trigger});
  trigger.Reset();
}

Status TransferRun::Take(FrameSlot& slot) {
  record_.SetDataSize(slot.filled);
  last_slot_status_ = slot.status;
  const Status result = slot.status.ok() ? Accept(slot) : slot.status;
  ring_.Release();
  return result;
}

Status TransferRun::Accept(FrameSlot& slot) {
  const std::span<std::uint8_t> data(slot.buffer.get(), slot.filled);
  if (flags_.separate_header && expecting_header_) {
    return AcceptHeader(data);
  }
  expecting_header_ = true;
  if (flags_.separate_header) {
    if (data.size() != layout_.image) {
      return receive_error::kFrameSize;
    }
    Deliver(data.data());
    return {};
  }
  if (data.size() != layout_.header + layout_.image) {
    return receive_error::kFrameSize;
  }
  RecordHeader(data);
  Deliver(data.data() + layout_.header);
  return {};
}

Status TransferRun::AcceptHeader(std::span<const std::uint8_t> data) {
  if (data.size() != layout_.header) {
    return receive_error::kHeaderSize;
  }
  RecordHeader(data);
  parts_.notifier.NotifyExposureEnd(frame_number_);
  expecting_header_ = false;
  return {};
}

void TransferRun::RecordHeader(std::span<const std::uint8_t> data) {
  record_.SetHeader(data);
  // A camera with a shorter header does not number its frames.
  frame_number_ = layout_.header >= kFrameNumberOffset + 4 ? LoadLe32(data, kFrameNumberOffset) : 0;
}

void TransferRun::Deliver(std::uint8_t* image) {
  parts_.snapshot.Store(frame_number_, {image, layout_.image});
  const settings::ScanMode scan_mode = parts_.timing.Settings().scan_mode();
  parts_.notifier.NotifyTransferEnd({.number = frame_number_,
                                     .width = scan_mode.width,
                                     .height = scan_mode.height,
                                     .color_array = parts_.mirror.ColorArray(),
                                     .image = image});
}

// Flushes what the camera still holds of the broken frame and starts the stream afresh. A stop ends
// the pauses early; the read thread then need not be started again.
Status TransferRun::Recover() {
  static_cast<void>(parts_.channel.ClearBuffer());
  if (StoppedWithin(pauses_.exposure)) {
    return {};
  }
  if (flags_.read_out_trigger) {
    static_cast<void>(parts_.triggers.TriggerReadOut());
  }
  if (StoppedWithin(pauses_.read_out)) {
    return {};
  }
  pipeline_.Stop();
  static_cast<void>(parts_.channel.ClearBuffer());
  const Status restarted = pipeline_.Start();
  if (restarted.ok()) {
    parts_.triggers.ResetEvents();
  }
  return restarted;
}

bool TransferRun::StoppedWithin(std::uint64_t pause_ms) const {
  return platform::Wait(stop_, static_cast<std::uint32_t>(std::min(pause_ms, kLongestPauseMs)));
}

}  // namespace vexa::transfer
