/// \file
/// The read thread: keeps reads queued at the driver and turns them into frames.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/driver.hpp"
#include "platform/event.hpp"
#include "platform/status.hpp"
#include "platform/thread.hpp"
#include "transfer/frame_layout.hpp"
#include "transfer/frame_ring.hpp"

namespace vexa::transfer {

/// Seven read requests, four of which the driver always holds: a completed request's buffer is
/// queued again only after three later reads have completed, when its data has long been handed to
/// a slot. The read thread alone uses the requests and the ring's writing side.
class ReadPipeline {
 public:
  ReadPipeline(platform::Device& device, FrameRing& ring, const FrameLayout& layout);
  ~ReadPipeline();

  /// Empties the ring and starts the read thread.
  Status Start();
  /// Ends the read thread and waits for it; afterwards the driver holds no read of ours.
  void Stop();

 private:
  static constexpr std::size_t kRequests = 7;
  static constexpr std::size_t kQueued = 4;

  struct ReadRequest {
    platform::Completion completion{platform::Event::Initially::kSignalled};
    std::unique_ptr<std::uint8_t[]> buffer;
    bool queued = false;  // the driver may still write to the buffer
  };

  /// What the thread does after a step.
  enum class Next { kGoOn, kEnd };

  void Run();
  Next ReadNext();
  Next Restart();
  Next Queue(ReadRequest& request);
  Next Finish(ReadRequest& request);
  Next HandOver(ReadRequest& request, std::size_t received);
  Next EndWith(Status status);
  void EndQueuedReads();

  platform::Device& device_;
  FrameRing& ring_;
  const std::size_t read_length_;
  const bool one_read_per_frame_;
  std::array<ReadRequest, kRequests> requests_;
  platform::Event stop_;
  std::unique_ptr<platform::Thread> thread_;

  // Of the read thread.
  bool stream_control_ = false;
  bool restart_ = true;
  std::size_t complete_next_ = 0;
  std::size_t queue_next_ = 0;
};

}  // namespace vexa::transfer
