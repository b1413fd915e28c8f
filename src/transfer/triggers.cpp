#include "transfer/triggers.hpp"

#include "settings/trigger_io.hpp"

namespace vexa::transfer {

bool Triggers::HasSubTriggerSource() const {
  return (mode_ & settings::trigger_mode::kSubTriggerMask) ==
         settings::trigger_mode::kSubTriggerSource;
}

Status Triggers::SoftTrigger() {
  const Status status = channel_.Write(device::Request::kSoftTrigger, {});
  if (status.ok()) {
    read_out_event_.Reset();
    if (!HasSubTriggerSource()) {
      trigger_event_.Set();
    }
  }
  return status;
}

Status Triggers::SoftSubTrigger() {
  const Status status = registers_.SendCommand(device::Command::kSoftSubTrigger);
  if (status.ok()) {
    read_out_event_.Reset();
    if (HasSubTriggerSource()) {
      trigger_event_.Set();
    }
  }
  return status;
}

Status Triggers::ReadSdram() {
  const Status status = registers_.SendCommand(device::Command::kReadSdram);
  if (status.ok()) {
    read_out_event_.Reset();
    trigger_event_.Set();
  }
  return status;
}

Status Triggers::TriggerReadOut() {
  const Status status = registers_.SendCommand(device::Command::kStartReadOut);
  if (status.ok()) {
    read_out_event_.Set();
  }
  return status;
}

void Triggers::ResetEvents() {
  read_out_event_.Reset();
  trigger_event_.Reset();
}

}  // namespace vexa::transfer
