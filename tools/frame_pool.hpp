/** Buffers between the transfer thread, which fills them, and the thread that saves. */
#pragma once

#include <VexaAPI.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

namespace vexa::tool {

/** What is known about a frame beside its pixels. */
struct FrameDescription {
  std::uint32_t index = 0; /**< From 1, in the order of arrival. */
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint16_t color_array = 0;
};

/** A copied frame. */
struct StoredFrame {
  FrameDescription description;
  std::size_t size = 0; /**< Bytes of the frame in `pixels`. */
  std::vector<BYTE> pixels;
};

/** A fixed number of frame buffers and the queue of the filled ones. Filling allocates nothing. */
class FramePool {
 public:
  /** @param buffers how many. @param bytes size of each. */
  FramePool(std::size_t buffers, std::size_t bytes);

  /** Copies a frame into a free buffer and queues it. @param pixels at most `bytes` long.
   *  @return false when no buffer is free. */
  bool Put(const FrameDescription& description, std::span<const BYTE> pixels);

  /** Waits for the oldest queued frame. @return null once Close() was called and none is left. */
  StoredFrame* Take();

  /** Makes a taken frame's buffer free again. */
  void Release(StoredFrame* frame);

  /** No frame follows: Take() ends when the queue is empty. */
  void Close();

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<StoredFrame> frames_;
  std::vector<StoredFrame*> free_;
  std::vector<StoredFrame*> queue_; /**< Ring of all buffers' number. */
  std::size_t queue_head_ = 0;
  std::size_t queue_size_ = 0;
  bool closed_ = false;
};

}  // namespace vexa::tool
