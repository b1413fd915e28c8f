// The driver's side of a twin: handles, I/O controls and reads.
#include <algorithm>
#include <chrono>

#include "platform/bytes.hpp"
#include "simulator/twin_camera.hpp"
#include "simulator/usb_descriptor.hpp"

namespace vexa::simulator {
namespace {

using platform::ControlCode;

constexpr std::uint32_t kRecoveryVersion = 0x00030000;
constexpr std::size_t kVersionBytes = 16;

// The fields of the record for the log, as far as they are there.
LoggedRequest Describe(ControlCode code, std::span<const std::uint8_t> input,
                       std::size_t output_size) {
  LoggedRequest entry;
  entry.code = code;
  entry.record_size = input.size();
  entry.output_size = output_size;
  if (code != ControlCode::kControlRequest || input.size() < kRecordHeaderSize) return entry;
  ControlRequest request;
  // A malformed record is described as well as it can be; the dispatcher refuses it.
  static_cast<void>(ParseRecord(input, output_size, &request));
  entry.type = request.type;
  entry.request = request.request;
  entry.value = request.value;
  entry.index = request.index;
  entry.length = request.length;
  entry.timeout_ms = request.timeout_ms;
  entry.data.assign(request.data.begin(), request.data.end());
  return entry;
}

}  // namespace

std::uint64_t TwinCamera::OpenHandle() {
  const std::lock_guard lock(mutex_);
  ++open_handles_;
  return plugging_;
}

void TwinCamera::CloseHandle(const void* device, std::uint64_t plugging) {
  engine_.CancelReads(device, {});
  engine_.AwaitService(device);
  // The count goes down only when the stream is gone: who finds the camera free may have it.
  const std::lock_guard closing(closing_mutex_);
  bool last = false;
  {
    const std::lock_guard lock(mutex_);
    if (plugging != plugging_) return;
    last = open_handles_ == 1;
  }
  if (last) engine_.Stop(error::kOperationAborted);
  const std::lock_guard lock(mutex_);
  if (plugging == plugging_) --open_handles_;
}

bool TwinCamera::IsLive(std::uint64_t plugging) const { return plugged_ && plugging == plugging_; }

bool TwinCamera::HasStreamControl() const {
  return driver_version_[0] >= 2 && !(driver_version_[0] == 3 && driver_version_[1] <= 1);
}

bool TwinCamera::HasRecovery() const {
  return driver_version_[0] > kRecoveryVersion ||
         (driver_version_[0] == kRecoveryVersion && driver_version_[1] >= 5);
}

Status TwinCamera::Control(std::uint64_t plugging, ControlCode code,
                           std::span<const std::uint8_t> input, std::span<std::uint8_t> output,
                           std::uint32_t* returned) {
  *returned = 0;
  LoggedRequest entry = Describe(code, input, output.size());
  const std::chrono::milliseconds delay(faults_.TakeControlDelay(entry));
  Status status = faults_.TakeControlFailure(entry);
  {
    std::unique_lock lock(mutex_);
    plugging_changed_.wait_for(lock, delay, [&] { return !IsLive(plugging); });
    if (!IsLive(plugging)) status = error::kDeviceNotConnected;
  }
  if (status.ok()) status = Dispatch(plugging, code, input, output, returned);
  *returned = std::min(*returned, faults_.TakeControlLimit(entry));
  entry.status = status;
  entry.returned = *returned;
  log_.Append(std::move(entry));
  return status;
}

Status TwinCamera::Dispatch(std::uint64_t plugging, ControlCode code,
                            std::span<const std::uint8_t> input, std::span<std::uint8_t> output,
                            std::uint32_t* returned) {
  std::unique_lock lock(mutex_);
  switch (code) {
    case ControlCode::kConfigurationDescriptor: {
      const std::vector<std::uint8_t> descriptor = ConfigurationDescriptor(config_);
      *returned = static_cast<std::uint32_t>(std::min(descriptor.size(), output.size()));
      std::copy_n(descriptor.begin(), *returned, output.begin());
      return error::kNone;
    }
    case ControlCode::kControlRequest:
      return AnswerControlRequest(input, output, returned);
    case ControlCode::kDriverVersion:
      if (output.size() < kVersionBytes) return error::kInsufficientBuffer;
      for (std::size_t i = 0; i < 4; ++i) StoreLe32(output, 4 * i, driver_version_[i]);
      *returned = kVersionBytes;
      return error::kNone;
    case ControlCode::kOpenCount:
      if (output.size() < 4) return error::kInsufficientBuffer;
      StoreLe32(output, 0, open_handles_ + (busy_elsewhere_ ? 1u : 0u));
      *returned = 4;
      return error::kNone;
    case ControlCode::kStopStream:
      if (!HasStreamControl()) return error::kNotSupported;
      lock.unlock();
      engine_.Stop(error::kOperationAborted);
      return error::kNone;
    case ControlCode::kResetStream:
      if (!HasStreamControl()) return error::kNotSupported;
      lock.unlock();
      return faults_.TakeResetRefusal() ? error::kGeneralFailure : StartStream(plugging);
    case ControlCode::kRecoverFirstStage:
      return Recover(Wakes::kFirstStage);
    case ControlCode::kRecoverSecondStage:
      return Recover(Wakes::kSecondStage);
  }
  return error::kNotSupported;
}

Status TwinCamera::StartStream(std::uint64_t plugging) {
  const Status started = engine_.Start();
  bool gone = false;
  {
    const std::lock_guard lock(mutex_);
    gone = !IsLive(plugging);
  }
  // Unplugged in the middle: the stream of a camera that is gone must not stay.
  if (gone) engine_.Stop(error::kDeviceNotConnected);
  return gone ? error::kDeviceNotConnected : started;
}

Status TwinCamera::AnswerControlRequest(std::span<const std::uint8_t> record,
                                        std::span<std::uint8_t> output, std::uint32_t* returned) {
  ControlRequest request;
  const Status parsed = ParseRecord(record, output.size(), &request);
  if (!parsed.ok()) return parsed;
  if (!silence_.ok()) return silence_;
  const Answer answer = state_.Handle(request, output, engine_.SoftwareStatus());
  if (!answer.status.ok()) return answer.status;
  if (answer.settings_changed) PublishSettings();
  engine_.Execute(answer.command);
  *returned = answer.returned;
  return error::kNone;
}

Status TwinCamera::Recover(Wakes stage) {
  if (!HasRecovery()) return error::kNotSupported;
  if (wakes_ == stage) silence_ = error::kNone;
  return error::kNone;
}

Status TwinCamera::QueueRead(const void* device, std::uint64_t plugging,
                             std::span<std::uint8_t> buffer, platform::Completion& completion) {
  if (buffer.empty()) return error::kInvalidParameter;
  const Status refusal = faults_.TakeReadRefusal();
  if (!refusal.ok()) return refusal;
  bool starts_stream = false;
  {
    const std::lock_guard lock(mutex_);
    if (!IsLive(plugging)) return error::kDeviceNotConnected;
    starts_stream = !HasStreamControl();
  }
  if (starts_stream && !engine_.Running()) {
    const Status started = StartStream(plugging);
    if (!started.ok()) return started;
  }
  engine_.QueueRead(device, buffer, completion);
  const std::lock_guard lock(mutex_);
  // The camera may have gone since; then nobody else would end the read.
  if (!IsLive(plugging)) engine_.EndReads(device, error::kDeviceNotConnected);
  return error::kIoPending;
}

void TwinCamera::CancelReads(const void* device) {
  engine_.CancelReads(device, std::this_thread::get_id());
  EndStreamWithoutReads(device);
}

void TwinCamera::CancelRead(const void* device, const platform::Completion& completion) {
  engine_.CancelRead(completion);
  EndStreamWithoutReads(device);
}

// Drivers without stream control stream as long as there are reads.
void TwinCamera::EndStreamWithoutReads(const void* device) {
  bool stops_stream = false;
  {
    const std::lock_guard lock(mutex_);
    stops_stream = !HasStreamControl();
  }
  if (!stops_stream) return;
  engine_.AwaitService(device);
  if (engine_.PendingReads() == 0) engine_.Stop(error::kOperationAborted);
}

}  // namespace vexa::simulator
