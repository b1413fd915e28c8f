#include "simulator/frame_memory.hpp"

namespace vexa::simulator {

int FrameMemory::Acquire() {
  int chosen = kNone;
  for (int slot = 0; slot < static_cast<int>(slots_.size()); ++slot) {
    if (slots_[Index(slot)].busy) continue;
    if (chosen == kNone || chosen == stored_) chosen = slot;
  }
  if (chosen == kNone) return kNone;
  if (chosen == stored_) stored_ = kNone;
  slots_[Index(chosen)].busy = true;
  return chosen;
}

int FrameMemory::AcquireStored() {
  if (stored_ == kNone || slots_[Index(stored_)].busy) return kNone;
  slots_[Index(stored_)].busy = true;
  return stored_;
}

void FrameMemory::Push(const Transfer& transfer) {
  queue_[(first_ + count_) % queue_.size()] = transfer;
  ++count_;
}

void FrameMemory::Pop() {
  if (Front().releases) Release(Front().slot);
  first_ = (first_ + 1) % queue_.size();
  --count_;
}

void FrameMemory::Discard(bool keep_started, std::size_t sent_until) {
  const bool keep = keep_started && !Empty() && Front().started;
  Transfer kept;
  if (keep) {
    kept = Front();
    kept.size = sent_until;
    kept.releases = true;
  }
  first_ = 0;
  count_ = 0;
  for (Slot& slot : slots_) slot.busy = false;
  if (keep) {
    slots_[Index(kept.slot)].busy = true;
    Push(kept);
  }
}

}  // namespace vexa::simulator
