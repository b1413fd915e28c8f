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
    slot.free.Set();
  }
}

void FrameRing::Complete(Status status) {
  FrameSlot& slot = write_slot();
  slot.status = status;
  slot.free.Reset();
  slot.ready.Set();
  write_index_ = (write_index_ + 1) % kSlots;
}

void FrameRing::Release() {
  FrameSlot& slot = read_slot();
  slot.filled = 0;
  slot.ready.Reset();
  slot.free.Set();
  read_index_ = (read_index_ + 1) % kSlots;
}

}  // namespace vexa::transfer
