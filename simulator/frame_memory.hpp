/// \file
/// The camera's memory for two frames, and the transfers that wait in it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "simulator/frame_renderer.hpp"

namespace vexa::simulator {

/// Two frame slots and a short queue of transfers that refer to them. Not synchronised.
class FrameMemory {
 public:
  static constexpr int kNone = -1;

  /// One or part of one frame on its way: bytes [begin, begin + size) of a slot. Bytes beyond the
  /// slot's end read as zero.
  struct Transfer {
    int slot = kNone;
    std::size_t begin = 0;
    std::size_t size = 0;
    bool releases = true;  // the slot is free behind it
    std::size_t sent = 0;
    bool started = false;  // a read has been given to it
  };

  FrameBuffer& Frame(int slot) { return slots_[Index(slot)].frame; }

  /// Takes a free slot, not the stored frame's if there is a choice; kNone when none is free.
  int Acquire();
  bool Full() const { return slots_[0].busy && slots_[1].busy; }
  void Release(int slot) { slots_[Index(slot)].busy = false; }

  /// The frame that was last read out, as long as its slot has not been used again.
  void Store(int slot) { stored_ = slot; }
  /// Takes the stored frame's slot for sending it again; kNone when it is gone or being sent.
  int AcquireStored();

  void Push(const Transfer& transfer);
  bool Empty() const { return count_ == 0; }
  Transfer& Front() { return queue_[first_]; }
  /// Removes the front transfer and releases its slot if it says so.
  void Pop();

  /// Discards what waits. With `keep_started`, a transfer that a read has been given to stays, cut
  /// down to `sent_until` bytes, so that a short read can end it.
  void Discard(bool keep_started, std::size_t sent_until);

 private:
  struct Slot {
    FrameBuffer frame;
    bool busy = false;
  };

  static std::size_t Index(int slot) { return static_cast<std::size_t>(slot); }

  std::array<Slot, 2> slots_;
  int stored_ = kNone;
  std::array<Transfer, 8> queue_;  // two slots give at most four
  std::size_t first_ = 0;
  std::size_t count_ = 0;
};

}  // namespace vexa::simulator
