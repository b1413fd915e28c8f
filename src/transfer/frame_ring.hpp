/// \file
/// The frame slots between the read thread and the transfer thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/event.hpp"
#include "platform/status.hpp"

namespace vexa::transfer {

/// One buffer with its owner: the read thread while `free` is set, the transfer thread while
/// `ready` is set. Each side resets its own event before it sets the other's.
struct FrameSlot {
  Status status;  // what ended the slot
  std::unique_ptr<std::uint8_t[]> buffer;
  std::size_t filled = 0;  // bytes in the buffer
  platform::Event free{platform::Event::Initially::kSignalled};
  platform::Event ready{platform::Event::Initially::kNonSignalled};
};

/// Four slots, filled and emptied in turn.
class FrameRing {
 public:
  explicit FrameRing(std::size_t capacity);

  /// Empties all slots. Only while no read thread runs.
  void Reset();

  std::size_t capacity() const { return capacity_; }

  /// The slot to fill next, and handing it over. For the read thread.
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
  std::array<FrameSlot, kSlots> slots_;
};

}  // namespace vexa::transfer
