// The stream's own thread: exposes frames and fills reads.
#include <algorithm>
#include <cstring>
#include <new>

#include "simulator/stream_engine.hpp"

namespace vexa::simulator {
namespace {

// How long the thread sleeps between frames that it skips without making them.
constexpr std::chrono::milliseconds kSkipPause{1};

void CopyPart(const std::vector<std::uint8_t>& frame, std::size_t begin,
              std::span<std::uint8_t> buffer) {
  const std::size_t there =
      begin < frame.size() ? std::min(frame.size() - begin, buffer.size()) : 0;
  if (there > 0) std::memcpy(buffer.data(), frame.data() + begin, there);
  std::fill(buffer.begin() + static_cast<std::ptrdiff_t>(there), buffer.end(), std::uint8_t{0});
}

}  // namespace

void StreamEngine::Run() {
  Lock lock(mutex_);
  PrepareScene(lock);
  while (!stop_) {
    if (FailRead(lock) || SendPart(lock) || Expose(lock)) continue;
    Await(lock);
  }
}

// A camera is warm when its stream begins: what the twin has to compute first must not make its
// first frames late.
void StreamEngine::PrepareScene(Lock& lock) {
  const std::shared_ptr<const CameraSettings> settings = settings_;
  lock.unlock();
  try {
    renderer_.Prepare(settings);
  } catch (const std::bad_alloc&) {
    // The frames that are too large for this machine will be lost one by one.
  }
  lock.lock();
  next_frame_ = Clock::now() + settings_->timing.period;
}

bool StreamEngine::FailRead(Lock& lock) {
  if (reads_.empty()) return false;
  const Status failure = faults_.TakeReadFailure();
  if (failure.ok()) return false;
  const Read read = reads_.front();
  reads_.erase(reads_.begin());
  // What the read would have carried is lost, and with it the rest of its transfer.
  if (!memory_.Empty() && memory_.Front().started) memory_.Pop();
  lock.unlock();
  Finish(read, failure, 0);
  lock.lock();
  return true;
}

bool StreamEngine::SendPart(Lock& lock) {
  if (stalled_ || reads_.empty() || memory_.Empty()) return false;
  const Read read = reads_.front();
  reads_.erase(reads_.begin());
  FrameMemory::Transfer& transfer = memory_.Front();
  transfer.started = true;
  const std::size_t bytes = std::min(read.buffer.size(), transfer.size - transfer.sent);
  const std::size_t begin = transfer.begin + transfer.sent;
  const std::vector<std::uint8_t>& frame = memory_.Frame(transfer.slot).bytes;
  const std::uint64_t restarts = restarts_;
  served_owner_ = read.owner;
  serving_bytes_ = bytes;
  lock.unlock();
  CopyPart(frame, begin, read.buffer.first(bytes));
  ++reads_filled_;
  Finish(read, error::kNone, bytes);
  lock.lock();
  served_owner_ = nullptr;
  serving_bytes_ = 0;
  served_.notify_all();
  if (restarts != restarts_) return true;
  memory_.Front().sent += bytes;
  if (bytes < read.buffer.size()) memory_.Pop();
  return true;
}

bool StreamEngine::Expose(Lock& lock) {
  // A triggered exposure runs to its end, whatever the mode has become.
  const bool free_run = settings_->trigger.free_run() && shot_.phase == Phase::kIdle;
  return free_run ? ExposeFreeRun(lock) : ExposeTriggered(lock);
}

bool StreamEngine::ExposeFreeRun(Lock& lock) {
  if (real_time()) {
    const Clock::time_point now = Clock::now();
    if (now < next_frame_) return false;
    next_frame_ = std::max(next_frame_ + settings_->timing.period, now);
  } else if (reads_.empty() || !memory_.Empty()) {
    return false;
  }
  if (faults_.TakeDroppedFrame()) {
    SkipFrame(lock);
    return true;
  }
  const int slot = MakeFrame(lock);
  if (slot != FrameMemory::kNone) {
    QueueImage(slot, false);
    memory_.Store(slot);
  }
  return true;
}

bool StreamEngine::ExposeTriggered(Lock& lock) {
  const Clock::time_point now = Clock::now();
  switch (shot_.phase) {
    case Phase::kIdle:
      return false;
    case Phase::kDelay:
      if (now < shot_.until) return false;
      shot_.phase = Phase::kExposure;
      if (real_time()) shot_.until += settings_->timing.exposure;
      return true;
    case Phase::kExposure:
      return now >= shot_.until && EndExposure(lock);
    case Phase::kAwaitReadOut:
      if (!shot_.read_out_requested && settings_->trigger.read_out_trigger()) return false;
      shot_.phase = Phase::kReadOut;
      shot_.until = now + settings_->timing.read_out_delay;
      if (real_time()) shot_.until += settings_->timing.read_out;
      return true;
    case Phase::kReadOut:
      if (now < shot_.until) return false;
      EndReadOut();
      return true;
  }
  return false;
}

bool StreamEngine::EndExposure(Lock& lock) {
  if (faults_.TakeDroppedFrame()) {
    shot_ = {};
    SkipFrame(lock);
    return true;
  }
  if (!real_time() && memory_.Full()) return false;  // waits for the host
  const std::uint64_t clears = clears_;
  const int slot = MakeFrame(lock);
  if (clears != clears_) return true;
  if (slot == FrameMemory::kNone) {
    shot_ = {};
    return true;
  }
  shot_.slot = slot;
  shot_.separate_header = settings_->trigger.separate_header();
  if (shot_.separate_header) QueueHeader(slot);
  shot_.phase = Phase::kAwaitReadOut;
  return true;
}

void StreamEngine::EndReadOut() {
  QueueImage(shot_.slot, shot_.separate_header);
  memory_.Store(shot_.slot);
  shot_ = {};
}

void StreamEngine::SkipFrame(Lock& lock) {
  ++frame_number_;
  ++frames_dropped_;
  if (!real_time()) wake_.wait_for(lock, kSkipPause);
}

int StreamEngine::MakeFrame(Lock& lock) {
  const std::uint32_t number = frame_number_++;
  const int slot = memory_.Acquire();
  if (slot == FrameMemory::kNone) {
    ++frames_dropped_;
    return slot;
  }
  const std::shared_ptr<const CameraSettings> settings = settings_;
  const std::uint64_t clears = clears_;
  bool made = true;
  lock.unlock();
  try {
    renderer_.Render(settings, number, &memory_.Frame(slot));
  } catch (const std::bad_alloc&) {
    made = false;  // a frame too large for this machine is lost
  }
  lock.lock();
  if (made && clears == clears_) {
    ++frames_made_;
    return slot;
  }
  ++frames_dropped_;
  memory_.Release(slot);
  return FrameMemory::kNone;
}

void StreamEngine::Await(Lock& lock) {
  waiting_ = true;
  if (shot_.phase != Phase::kIdle && shot_.until > Clock::now()) {
    wake_.wait_until(lock, shot_.until);
  } else if (shot_.phase == Phase::kIdle && settings_->trigger.free_run() && real_time()) {
    wake_.wait_until(lock, next_frame_);
  } else {
    wake_.wait(lock);
  }
  waiting_ = false;
}

}  // namespace vexa::simulator
