#include "transfer/transfer_engine.hpp"

#include <mutex>
#include <new>
#include <utility>

#include "device/driver_requests.hpp"

namespace vexa::transfer {
namespace {

std::uint64_t CeilMilliseconds(std::uint64_t clocks, std::uint32_t frequency) {
  return (clocks * 1000 + frequency - 1) / frequency;
}

}  // namespace

TransferEngine::~TransferEngine() { StopRunning(); }

Status TransferEngine::Start() {
  if (OnTransferThread()) {
    return error::kPossibleDeadlock;
  }
  const std::lock_guard lock(mutex_);
  return StartLocked();
}

Status TransferEngine::StartLocked() {
  StopRunning();
  const RecoveryPauses pauses = ComputePauses();
  Status status = settings_.timing.Refresh();
  std::uint32_t trigger_mode = 0;
  if (status.ok()) {
    status = settings_.trigger_io.GetTriggerMode(&trigger_mode);
  }
  if (!status.ok()) {
    return status;
  }
  parts_.triggers.set_mode(trigger_mode);
  stop_ = std::make_unique<platform::Event>();
  parts_.triggers.ResetEvents();
  parts_.snapshot.Reset();
  std::unique_ptr<platform::Thread> started;
  status = platform::Thread::Start(
      platform::ThreadPriority::kHighest, [this, pauses] { Body(pauses); }, &started);
  thread_ = std::move(started);
  if (!status.ok()) {
    stop_.reset();
  }
  return status;
}

Status TransferEngine::Stop() {
  if (OnTransferThread()) {
    return error::kPossibleDeadlock;
  }
  const std::lock_guard lock(mutex_);
  StopRunning();
  return {};
}

void TransferEngine::StopRunning() {
  if (thread_ != nullptr) {
    stop_->Set();
    thread_->Join();
    thread_.reset();
    stop_.reset();
  }
}

bool TransferEngine::IsStarted() {
  if (OnTransferThread()) {
    return true;
  }
  const std::lock_guard lock(mutex_);
  return thread_ != nullptr;
}

bool TransferEngine::OnTransferThread() const {
  return transfer_thread_id_ == platform::CurrentThreadId();
}

std::uint64_t TransferEngine::ImageSize() const {
  const settings::ScanMode scan_mode = settings_.timing.Settings().scan_mode();
  return transfer::ImageSize(settings_.format.code(), scan_mode.width, scan_mode.height);
}

Status TransferEngine::TakeSnapshot(std::span<std::uint8_t> buffer, std::uint32_t timeout_ms,
                                    TakenFrame* taken) {
  const std::shared_ptr<CSnapShotCtrl> controller = parts_.snapshot.Controller(ImageSize());
  if (OnTransferThread()) {
    return controller->TakeStored(buffer, taken);
  }
  std::shared_ptr<const platform::Thread> thread;
  const Status running = RequireRunning(&thread);
  return running.ok() ? controller->Take(buffer, timeout_ms, thread->Ended(), taken) : running;
}

Status TransferEngine::RequireRunning(std::shared_ptr<const platform::Thread>* thread) {
  const std::lock_guard lock(mutex_);
  if (thread_ != nullptr && platform::Wait(thread_->Ended(), 0)) {
    return error::kAccessDenied;
  }
  const Status status = thread_ == nullptr ? StartLocked() : Status();
  *thread = thread_;
  return status;
}

RecoveryPauses TransferEngine::ComputePauses() {
  const settings::ScanSettingsBlock scan = settings_.timing.Settings();
  settings::PixelClock clock;
  if (!settings_.timing.GetClock(&clock).ok() || clock.frequency == 0) {
    return {};
  }
  RecoveryPauses pauses;
  pauses.read_out = CeilMilliseconds(std::uint64_t{scan.lines_per_frame()} * scan.clocks_per_line(),
                                     clock.frequency);
  std::uint16_t gain = 0;
  std::uint32_t exposure_clock = 0;
  if (settings_.exposure.GetGainAndExposureClock(&gain, &exposure_clock).ok()) {
    pauses.exposure =
        CeilMilliseconds(std::uint64_t{scan.clocks_per_line()} + exposure_clock, clock.frequency);
  }
  return pauses;
}

void TransferEngine::Body(const RecoveryPauses& pauses) {
  transfer_thread_id_ = platform::CurrentThreadId();
  try {
    Transfer(pauses);
  } catch (const std::bad_alloc&) {
    parts_.notifier.NotifyReceiveError(error::kNotEnoughMemory);
  }
  transfer_thread_id_ = 0;
}

void TransferEngine::Transfer(const RecoveryPauses& pauses) {
  // A camera that does not tell its speed counts as a slow one, whose alignment fits every link.
  device::UsbSpeed speed{};
  static_cast<void>(device::GetUsbSpeed(parts_.channel.device(), &speed));
  const FrameLayout layout =
      MakeFrameLayout(parts_.identity.frame_header_size(), ImageSize(), speed, max_transfer_size_);
  TransferRun(parts_, layout, pauses, record_, *stop_).Run();
}

}  // namespace vexa::transfer
