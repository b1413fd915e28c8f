#include "frame_stream.hpp"

#include <utility>

#include "names.hpp"

namespace vexa::tool {

std::uint64_t StreamCounts::ErrorTotal() const {
  std::uint64_t total = 0;
  for (const auto& [code, count] : errors) {
    total += count;
  }
  return total;
}

double StreamCounts::Seconds() const {
  return std::chrono::duration<double>(last_arrival - first_arrival).count();
}

double StreamCounts::FramesPerSecond() const {
  const double seconds = Seconds();
  return seconds > 0 ? static_cast<double>(frames - 1) / seconds : 0;
}

double StreamCounts::MegabytesPerSecond() const {
  const double mean_bytes =
      frames > 0 ? static_cast<double>(bytes) / static_cast<double>(frames) : 0;
  return FramesPerSecond() * mean_bytes * 1e-6;
}

FrameStream::FrameStream(const Camera& camera, std::uint32_t format, Consumer consumer)
    : camera_(camera), format_(format), consumer_(std::move(consumer)) {}

FrameStream::~FrameStream() {
  if (started_) {
    // Whatever fails here: removing a callback waits for a running one, so none meets a dead
    // stream.
    static_cast<void>(Vexa_StopTransfer(camera_.handle()));
    static_cast<void>(Vexa_SetTransferEndCallback(camera_.handle(), nullptr, nullptr));
    static_cast<void>(Vexa_SetRcvErrorCallback(camera_.handle(), nullptr, nullptr));
  }
}

void FrameStream::Start() {
  started_ = true;
  camera_.Call("Vexa_SetTransferEndCallback", Vexa_SetTransferEndCallback, &OnFrame, this);
  camera_.Call("Vexa_SetRcvErrorCallback", Vexa_SetRcvErrorCallback, &OnError, this);
  // Frames that wait in the camera were taken with earlier settings.
  camera_.Call("Vexa_ClearBuffer", Vexa_ClearBuffer);
  start_time_ = Clock::now();
  camera_.Call("Vexa_StartTransfer", Vexa_StartTransfer);
}

void FrameStream::Stop() {
  camera_.Call("Vexa_StopTransfer", Vexa_StopTransfer);
  camera_.Call("Vexa_SetTransferEndCallback", Vexa_SetTransferEndCallback, nullptr, nullptr);
  camera_.Call("Vexa_SetRcvErrorCallback", Vexa_SetRcvErrorCallback, nullptr, nullptr);
  started_ = false;
}

StreamCounts FrameStream::Counts() const {
  const std::lock_guard lock(mutex_);
  return counts_;
}

StreamCounts FrameStream::WaitFor(std::chrono::milliseconds time) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, time,
                    [this] { return counts_.finished || counts_.device_gone || failure_; });
  if (failure_) {
    std::rethrow_exception(failure_);
  }
  return counts_;
}

void FrameStream::OnFrame(HANDLE, DWORD frame_number, DWORD width, DWORD height, WORD color_array,
                          BYTE* raw_image, void* context) {
  FrameStream& stream = *static_cast<FrameStream*>(context);
  const std::size_t bytes = static_cast<std::size_t>(ImageBytes(width, height, stream.format_));
  stream.Take({.number = frame_number,
               .arrival = Clock::now(),
               .width = width,
               .height = height,
               .color_array = color_array,
               .pixels = {raw_image, bytes}});
}

void FrameStream::Take(FrameView frame) {
  const std::lock_guard lock(mutex_);
  if (counts_.finished || failure_) {
    return;
  }
  frame.consecutive = frame_counter_.Add(frame.number);
  counts_.lost = frame_counter_.lost();
  counts_.restarts = frame_counter_.restarts();
  counts_.first_arrival = counts_.frames == 0 ? frame.arrival : counts_.first_arrival;
  counts_.last_arrival = frame.arrival;
  counts_.frames += 1;
  counts_.bytes += frame.pixels.size();
  try {
    counts_.finished = !consumer_(frame);
  } catch (...) {
    // No exception may cross the library; the thread that waits throws it.
    failure_ = std::current_exception();
  }
  if (counts_.finished || failure_) {
    changed_.notify_all();
  }
}

void FrameStream::OnError(HANDLE, DWORD error_code, void* context) {
  FrameStream& stream = *static_cast<FrameStream*>(context);
  const std::lock_guard lock(stream.mutex_);
  if (stream.counts_.finished) {
    return;
  }
  try {
    stream.counts_.errors[error_code] += 1;
  } catch (...) {
    stream.failure_ = std::current_exception();
  }
  if (error_code == VEXA_RCV_DEVICE_GONE) {
    stream.counts_.device_gone = true;
  }
  stream.changed_.notify_all();
}

}  // namespace vexa::tool
