#include "transfer/frame_ring.hpp"

namespace vexa::transfer {

FrameRing::FrameRing(std::size_t capacity) : capacity_(capacity) {
  for (FrameSlot& slot : slots_) {
    slot.buffer = std::make_unique_for_overwrite<std::uint8_t[]>(capacity);
  }
}

void FrameRing::Reset() {
  write_index_ = 0;
  read_index_ = 0;
  for (FrameSlot& slot : slots_) {
    slot.filled = 0;
    slot.ready.Reset();
    slot.free = true;
  }
}

// The flags are sequentially consistent: either the waiter announces itself early enough to be
// woken, or it sees that the slot has become free. A wake-up that came too late costs one more
// turn.
bool FrameRing::AwaitWriteSlot(const platform::Event& stop) {
  const FrameSlot& slot = write_slot();
  while (!slot.free) {
    freed_.Reset();
    writer_waits_ = true;
    if (!slot.free && platform::WaitAny({&stop, &freed_}).index == 0) {
      return false;
    }
  }
  return true;
}

void FrameRing::Complete(Status status) {
  FrameSlot& slot = write_slot();
  slot.status = status;
  slot.free = false;
  slot.ready.Set();
  write_index_ = (write_index_ + 1) % kSlots;
}

void FrameRing::Release() {
  FrameSlot& slot = read_slot();
  slot.filled = 0;
  slot.ready.Reset();
  slot.free = true;
  if (writer_waits_.exchange(false)) {
    freed_.Set();
  }
  read_index_ = (read_index_ + 1) % kSlots;
}

}  // namespace vexa::transfer
