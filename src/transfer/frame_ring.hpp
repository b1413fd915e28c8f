/// \file
/// The frame slots between the read thread and the transfer thread.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/event.hpp"
#include "platform/status.hpp"

namespace vexa::transfer {

/// One buffer with its owner: the read thread while it is free, the transfer thread while `ready`
/// is set.
struct FrameSlot {
  Status status;  // what ended the slot
  std::unique_ptr<std::uint8_t[]> buffer;
  std::size_t filled = 0;  // bytes in the buffer
  platform::Event ready{platform::Event::Initially::kNonSignalled};
  std::atomic<bool> free{true};
};

/// Four slots, filled and emptied in turn.
class FrameRing {
 public:
  explicit FrameRing(std::size_t capacity);

  /// Empties all slots. Only while no read thread runs.
  void Reset();

  std::size_t capacity() const { return capacity_; }

  /// Waits until the slot to fill next is free. False when `stop` came instead. For the read
  /// thread, as are the slot and handing it over.
  bool AwaitWriteSlot(const platform::Event& stop);
  FrameSlot& write_slot() { return slots_[write_index_]; }
  void Complete(Status status);

  /// The slot to take next, and giving it back. For the transfer thread.
  FrameSlot& read_slot() { return slots_[read_index_]; }
  void Release();

 private:
  static constexpr std::size_t kSlots = 4;

  const std::size_t capacity_;
  std::size_t write_index_ = 0;
  std::size_t read_index_ = 0;
  // Nearly always the next slot is free, and nothing but its flag is looked at; setting, resetting
  // and waiting for an event with every read would cost the system three calls. So the event is set
  // only when somebody waits for it.
  std::atomic<bool> writer_waits_{false};
  platform::Event freed_{platform::Event::Initially::kNonSignalled};
  std::array<FrameSlot, kSlots> slots_;
};

}  // namespace vexa::transfer
