/// \file
/// Software triggers, and the events by which they start the transfer thread's time-outs.
#pragma once

#include <atomic>
#include <cstdint>

#include "device/control_channel.hpp"
#include "device/registers.hpp"
#include "platform/event.hpp"
#include "platform/status.hpp"

namespace vexa::transfer {

/// Sends triggers to the camera. The events are set by application threads and reset by the
/// transfer thread once it has waited for them. A trigger that the camera refuses touches no event.
class Triggers {
 public:
  Triggers(device::ControlChannel& channel, device::Registers& registers)
      : channel_(channel), registers_(registers) {}

  Status SoftTrigger();
  Status SoftSubTrigger();
  Status ReadSdram();
  Status TriggerReadOut();

  /// The trigger mode that the last start of the transfer found; 0 before any start.
  std::uint32_t mode() const { return mode_; }
  void set_mode(std::uint32_t mode) { mode_ = mode; }

  platform::Event& trigger_event() { return trigger_event_; }
  platform::Event& read_out_event() { return read_out_event_; }
  void ResetEvents();

 private:
  bool HasSubTriggerSource() const;

  device::ControlChannel& channel_;
  device::Registers& registers_;
  std::atomic<std::uint32_t> mode_ = 0;
  platform::Event trigger_event_;   // start timing the frame
  platform::Event read_out_event_;  // start timing the image
};

}  // namespace vexa::transfer
