/// \file
/// Frames kept for applications that poll instead of being called back.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/event.hpp"
#include "platform/mutex.hpp"
#include "platform/status.hpp"

namespace vexa::transfer {

/// A copy of one frame's image, in a buffer of the ring's or in one that the caller lends. The
/// filled event is set while the copy holds a frame that nobody has taken. Not synchronised.
class CSnapShotData {
 public:
  CSnapShotData();
  /// Uses a part of the ring's memory.
  explicit CSnapShotData(std::span<std::uint8_t> buffer);
  virtual ~CSnapShotData();
  CSnapShotData(const CSnapShotData&) = delete;
  CSnapShotData& operator=(const CSnapShotData&) = delete;

  /// Uses the caller's buffer from now on; empties the copy.
  void Lend(std::span<std::uint8_t> buffer);

  /// Copies an image. A buffer of the ring's is replaced when it is too small (kNotEnoughMemory:
  /// nothing stored), a lent one takes as much as it holds.
  Status Fill(std::uint32_t frame_number, std::span<const std::uint8_t> image);
  void Empty() { filled_.Reset(); }

  bool IsFilled() const { return filled_.IsSet(); }
  const platform::Event& filled() const { return filled_; }
  std::uint32_t frame_number() const { return frame_number_; }
  std::span<const std::uint8_t> bytes() const { return buffer_; }

 private:
  std::uint32_t frame_number_ = 0;
  bool external_ = false;
  std::span<std::uint8_t> buffer_;
  std::vector<std::uint8_t> grown_;  // in place of a part of the ring's memory
  platform::Event filled_;
};

/// What a take has given.
struct TakenFrame {
  std::uint32_t number = 0;
  std::uint32_t size = 0;  // bytes copied
};

/// A ring with the newest frames, oldest first to take, and a place for one taker that waits for
/// the next frame. Usable from several threads.
class CSnapShotCtrl {
 public:
  /// `count` copies (at least 1) of `frame_size` bytes. Throws std::bad_alloc.
  CSnapShotCtrl(std::uint32_t count, std::uint64_t frame_size);
  virtual ~CSnapShotCtrl();
  CSnapShotCtrl(const CSnapShotCtrl&) = delete;
  CSnapShotCtrl& operator=(const CSnapShotCtrl&) = delete;

  std::size_t frame_size() const { return frame_size_; }

  /// Hands the image to the waiting taker or stores it over the oldest one. kNotEnoughMemory when
  /// the copy cannot grow to the size; nothing is stored then.
  Status Store(std::uint32_t frame_number, std::span<const std::uint8_t> image);

  /// Forgets all frames.
  void Reset();

  /// Takes the oldest frame, cut to the buffer; kWaitTimeout when there is none.
  Status TakeStored(std::span<std::uint8_t> buffer, TakenFrame* taken);

  /// The same, but waits for the next frame when there is none. kWaitTimeout when the time runs
  /// out, kAccessDenied when `transfer_end` is signalled, kBusy when another taker waits.
  Status Take(std::span<std::uint8_t> buffer, std::uint32_t timeout_ms,
              const platform::Waitable& transfer_end, TakenFrame* taken);

 private:
  std::uint32_t Next(std::uint32_t index) const;
  bool TakeOldest(std::span<std::uint8_t> buffer, TakenFrame* taken);

  // One block, which a system that promises more memory than it has refuses sooner than many.
  std::vector<std::uint8_t> memory_;
  const std::size_t frame_size_;
  platform::Mutex mutex_;  // guards all members below
  std::uint32_t write_index_ = 0;
  std::uint32_t read_index_ = 0;
  std::vector<std::unique_ptr<CSnapShotData>> copies_;
  bool taker_waits_ = false;
  CSnapShotData taker_;  // lent the taker's buffer while it waits
};

/// The place of a camera's controller. Its lock guards the controller's creation, replacement and
/// end, and the transfer thread's calls.
class RawSnapshot {
 public:
  /// Replaces the controller by one of `count` frames of `frame_size` bytes; 0 leaves none, as does
  /// a lack of memory.
  void SetBufferCount(std::uint32_t count, std::uint64_t frame_size);

  /// The controller for frames of this size; one for another size is replaced. Throws
  /// std::bad_alloc, and leaves no controller then.
  std::shared_ptr<CSnapShotCtrl> Controller(std::uint64_t frame_size);

  /// Empties the ring, if there is one.
  void Reset();

  /// For every frame of the transfer thread; does next to nothing when there is no controller.
  void Store(std::uint32_t frame_number, std::span<const std::uint8_t> image);

 private:
  void Create(std::uint32_t count, std::uint64_t frame_size);
  void Destroy();

  std::atomic<bool> in_use_ = false;  // a controller exists; spares the frame path the lock
  platform::Mutex mutex_;             // guards the members below
  std::uint32_t buffer_count_ = 0;
  // A taker that waits keeps its controller alive although another takes its place.
  std::shared_ptr<CSnapShotCtrl> controller_;
};

}  // namespace vexa::transfer
