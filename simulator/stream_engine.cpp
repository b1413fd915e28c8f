// The side of the stream that the host and the camera's control side call.
#include "simulator/stream_engine.hpp"

#include <algorithm>
#include <system_error>
#include <utility>

namespace vexa::simulator {
namespace {

constexpr std::size_t kUsualReads = 64;

}  // namespace

StreamEngine::StreamEngine(const CameraConfig& config, Faults& faults)
    : config_(config),
      faults_(faults),
      renderer_(config),
      settings_(std::make_shared<const CameraSettings>()) {
  reads_.reserve(kUsualReads);
}

StreamEngine::~StreamEngine() { Stop(error::kOperationAborted); }

void StreamEngine::Configure(CameraSettings settings) {
  auto shared = std::make_shared<const CameraSettings>(std::move(settings));
  const std::lock_guard lock(mutex_);
  if (shared->trigger.free_run() && !settings_->trigger.free_run()) next_frame_ = Clock::now();
  settings_ = std::move(shared);
  Wake();
}

Status StreamEngine::Start() {
  const std::lock_guard control(control_mutex_);
  const std::lock_guard lock(mutex_);
  EndMatchingReads(nullptr, {}, error::kOperationAborted);
  ResetStreamState();
  next_frame_ = Clock::now() + settings_->timing.period;
  if (!running_) {
    stop_ = false;
    try {
      thread_ = std::thread([this] { Run(); });
    } catch (const std::system_error&) {
      return error::kNotEnoughMemory;
    }
    running_ = true;
  }
  if (std::exchange(trigger_kept_, false)) BeginShot();
  if (std::exchange(read_out_kept_, false)) RequestReadOut();
  Wake();
  return error::kNone;
}

void StreamEngine::Stop(Status status) {
  const std::lock_guard control(control_mutex_);
  {
    const std::lock_guard lock(mutex_);
    EndMatchingReads(nullptr, {}, status);
    trigger_kept_ = read_out_kept_ = false;
    stop_ = true;
    Wake();
  }
  if (thread_.joinable()) thread_.join();
  const std::lock_guard lock(mutex_);
  // Reads that came in meanwhile.
  EndMatchingReads(nullptr, {}, status);
  ResetStreamState();
  running_ = false;
}

bool StreamEngine::Running() const {
  const std::lock_guard lock(mutex_);
  return running_;
}

void StreamEngine::ResetStreamState() {
  memory_.Discard(false, 0);
  shot_ = {};
  ++clears_;
  ++restarts_;
}

void StreamEngine::Wake() {
  if (waiting_) wake_.notify_one();
}

void StreamEngine::QueueRead(const void* owner, std::span<std::uint8_t> buffer,
                             platform::Completion& completion) {
  completion.Begin();
  const std::lock_guard lock(mutex_);
  reads_.push_back({owner, std::this_thread::get_id(), buffer, &completion});
  ++pending_reads_;
  Wake();
}

void StreamEngine::CancelReads(const void* owner, std::thread::id thread) {
  const std::lock_guard lock(mutex_);
  EndMatchingReads(owner, thread, error::kOperationAborted);
}

void StreamEngine::EndReads(const void* owner, Status status) {
  const std::lock_guard lock(mutex_);
  EndMatchingReads(owner, {}, status);
}

void StreamEngine::CancelRead(const platform::Completion& completion) {
  const std::lock_guard lock(mutex_);
  EndReadsIf([&](const Read& read) { return read.completion == &completion; },
             error::kOperationAborted);
}

template <typename Chosen>
void StreamEngine::EndReadsIf(const Chosen& chosen, Status status) {
  std::erase_if(reads_, [&](const Read& read) {
    if (!chosen(read)) return false;
    Finish(read, status, 0);
    return true;
  });
}

void StreamEngine::EndMatchingReads(const void* owner, std::thread::id thread, Status status) {
  const auto chosen = [&](const Read& read) {
    return (owner == nullptr || read.owner == owner) &&
           (thread == std::thread::id{} || read.thread == thread);
  };
  EndReadsIf(chosen, status);
}

void StreamEngine::Finish(const Read& read, Status status, std::size_t bytes) {
  --pending_reads_;
  read.completion->Finish(status, static_cast<std::uint32_t>(bytes));
}

void StreamEngine::AwaitService(const void* owner) {
  std::unique_lock lock(mutex_);
  served_.wait(lock, [&] { return served_owner_ != owner; });
}

void StreamEngine::Execute(StreamCommand command) {
  const std::lock_guard lock(mutex_);
  switch (command) {
    case StreamCommand::kNone:
      return;
    case StreamCommand::kClearBuffer:
      ClearBuffer();
      break;
    case StreamCommand::kTrigger:
    case StreamCommand::kSubTrigger:
      BeginShot();
      break;
    case StreamCommand::kReadOut:
      RequestReadOut();
      break;
    case StreamCommand::kResendStored:
      ResendStored();
      break;
    case StreamCommand::kResetCounter:
      frame_number_ = 0;
      break;
    case StreamCommand::kClearBufferAndResetCounter:
      ClearBuffer();
      frame_number_ = 0;
      break;
  }
  Wake();
}

void StreamEngine::SetStalled(bool stalled) {
  const std::lock_guard lock(mutex_);
  stalled_ = stalled;
  Wake();
}

std::uint16_t StreamEngine::SoftwareStatus() const {
  const std::lock_guard lock(mutex_);
  const bool exposing = shot_.phase == Phase::kDelay || shot_.phase == Phase::kExposure;
  return static_cast<std::uint16_t>((running_ ? 1 : 0) | (exposing ? 2 : 0) |
                                    (shot_.phase == Phase::kAwaitReadOut ? 4 : 0) |
                                    (memory_.Empty() ? 0 : 8));
}

void StreamEngine::BeginShot() {
  if (settings_->trigger.free_run()) return;
  if (!running_) {
    trigger_kept_ = true;
    return;
  }
  if (shot_.phase != Phase::kIdle) return;
  shot_ = {};
  shot_.phase = Phase::kDelay;
  shot_.until = Clock::now() + settings_->timing.exposure_delay;
}

void StreamEngine::RequestReadOut() {
  read_out_kept_ = !running_ && trigger_kept_;
  if (shot_.phase != Phase::kIdle) shot_.read_out_requested = true;
}

void StreamEngine::ResendStored() {
  if (!running_ || settings_->trigger.free_run() || shot_.phase != Phase::kIdle) return;
  const int slot = memory_.AcquireStored();
  if (slot == FrameMemory::kNone) return;
  // It comes apart as the present mode wants it.
  const bool separate = settings_->trigger.separate_header();
  if (separate) QueueHeader(slot);
  QueueImage(slot, separate);
}

void StreamEngine::QueueHeader(int slot) {
  const std::size_t header = config_.header_size;
  const std::size_t shortage = std::min<std::size_t>(faults_.TakeHeaderShortage(), header);
  memory_.Push({slot, 0, header - shortage, false});
}

void StreamEngine::QueueImage(int slot, bool separate_header) {
  const std::size_t begin = separate_header ? config_.header_size : 0;
  const auto size = static_cast<std::int64_t>(memory_.Frame(slot).bytes.size() - begin);
  const std::int64_t changed = std::max<std::int64_t>(size + faults_.TakeFrameDifference(), 0);
  memory_.Push({slot, begin, static_cast<std::size_t>(changed)});
}

void StreamEngine::ClearBuffer() {
  trigger_kept_ = read_out_kept_ = false;
  shot_ = {};
  ++clears_;
  const std::size_t sent = memory_.Empty() ? 0 : memory_.Front().sent + serving_bytes_;
  memory_.Discard(true, sent);
}

}  // namespace vexa::simulator
