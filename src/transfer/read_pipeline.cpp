#include "transfer/read_pipeline.hpp"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

#include "device/driver_requests.hpp"

namespace vexa::transfer {
namespace {

// A driver that answers 31 to a reset, refuses a read for lack of some resource or fails a read is
// asked again after this pause: a time-critical thread that spins would keep the driver itself, and
// the application's stop, from running on a machine with few processors.
constexpr std::uint32_t kRetryPauseMs = 1;

// A read refused this often in a row will not be taken any more; the device counts as lost.
constexpr int kMaxRefusals = 200;

// The codes by which a driver tells that its device is gone.
bool IsDeviceLoss(Status status) {
  return status == error::kDeviceNotConnected || status == error::kAccessDenied;
}

}  // namespace

ReadPipeline::ReadPipeline(platform::Device& device, FrameRing& ring, const FrameLayout& layout)
    : device_(device),
      ring_(ring),
      read_length_(layout.read_length),
      one_read_per_frame_(layout.OneReadPerFrame()) {
  for (ReadRequest& request : requests_) {
    request.buffer = std::make_unique_for_overwrite<std::uint8_t[]>(read_length_);
  }
}

ReadPipeline::~ReadPipeline() { Stop(); }

Status ReadPipeline::Start() {
  stop_.Reset();
  ring_.Reset();
  return platform::Thread::Start(
      platform::ThreadPriority::kTimeCritical, [this] { Run(); }, &thread_);
}

void ReadPipeline::Stop() {
  if (thread_ != nullptr) {
    stop_.Set();
    thread_->Join();
    thread_.reset();
  }
}

void ReadPipeline::Run() {
  stream_control_ = device::StreamControlSupported(device_);
  restart_ = true;
  while (ReadNext() == Next::kGoOn) {
  }
  // Whatever ended the loop, the buffers are free to go only when the driver is done with them.
  static_cast<void>(device::StopStream(device_));
  EndQueuedReads();
}

ReadPipeline::Next ReadPipeline::ReadNext() {
  if (restart_ && Restart() == Next::kEnd) {
    return Next::kEnd;
  }
  ReadRequest& completing = requests_[complete_next_];
  if (platform::WaitAny({&stop_, &completing.completion.Done()}).index == 0) {
    return Next::kEnd;
  }
  if (Queue(requests_[queue_next_]) == Next::kEnd) {
    return Next::kEnd;
  }
  queue_next_ = (queue_next_ + 1) % kRequests;
  complete_next_ = (complete_next_ + 1) % kRequests;
  return Finish(completing);
}

ReadPipeline::Next ReadPipeline::Restart() {
  // Reads of the stream that was stopped still own their buffers.
  EndQueuedReads();
  while (device::ResetStream(device_) == error::kGeneralFailure) {
    if (platform::Wait(stop_, kRetryPauseMs)) {
      return Next::kEnd;
    }
  }
  for (std::size_t i = 0; i < kQueued; ++i) {
    if (Queue(requests_[i]) == Next::kEnd) {
      return Next::kEnd;
    }
  }
  queue_next_ = kQueued;
  complete_next_ = 0;
  restart_ = false;
  return Next::kGoOn;
}

ReadPipeline::Next ReadPipeline::Queue(ReadRequest& request) {
  for (int refusals = 0; refusals < kMaxRefusals; ++refusals) {
    const Status status =
        device_.QueueRead({request.buffer.get(), read_length_}, request.completion);
    if (status == error::kIoPending) {
      request.queued = true;
      return Next::kGoOn;
    }
    if (IsDeviceLoss(status)) {
      break;
    }
    if (platform::Wait(stop_, kRetryPauseMs)) {
      return Next::kEnd;
    }
  }
  return EndWith(error::kAccessDenied);
}

ReadPipeline::Next ReadPipeline::Finish(ReadRequest& request) {
  std::uint32_t received = 0;
  const Status status = device_.FinishRead(request.completion, &received);
  request.queued = false;
  if (status.ok()) {
    return HandOver(request, std::min<std::size_t>(received, read_length_));
  }
  if (IsDeviceLoss(status)) {
    return EndWith(error::kAccessDenied);
  }
  if (status == error::kGeneralFailure && stream_control_) {
    static_cast<void>(device::StopStream(device_));
    restart_ = true;
  } else {
    if (!ring_.AwaitWriteSlot(stop_)) {
      return Next::kEnd;
    }
    ring_.Complete(status);
  }
  // The transfer that failed is handed over as one without bytes: the frame it belonged to is lost
  // and will be reported as such.
  const Next next = HandOver(request, 0);
  return platform::Wait(stop_, kRetryPauseMs) ? Next::kEnd : next;
}

ReadPipeline::Next ReadPipeline::HandOver(ReadRequest& request, std::size_t received) {
  if (!ring_.AwaitWriteSlot(stop_)) {
    return Next::kEnd;  // the data at hand is dropped
  }
  FrameSlot& slot = ring_.write_slot();
  if (one_read_per_frame_) {
    std::swap(slot.buffer, request.buffer);
    slot.filled = received;
    ring_.Complete({});
    return Next::kGoOn;
  }
  const std::size_t appended = std::min(received, ring_.capacity() - slot.filled);
  std::memcpy(slot.buffer.get() + slot.filled, request.buffer.get(), appended);
  slot.filled += appended;
  const bool frame_ended = received < read_length_ && !restart_;
  if (frame_ended || slot.filled == ring_.capacity()) {
    ring_.Complete({});
  }
  return Next::kGoOn;
}

ReadPipeline::Next ReadPipeline::EndWith(Status status) {
  if (ring_.AwaitWriteSlot(stop_)) {
    ring_.Complete(status);
  }
  return Next::kEnd;
}

void ReadPipeline::EndQueuedReads() {
  device_.CancelReads();
  for (ReadRequest& request : requests_) {
    if (request.queued) {
      std::uint32_t received = 0;
      static_cast<void>(device_.FinishRead(request.completion, &received));
      request.queued = false;
    }
  }
}

}  // namespace vexa::transfer
