#include "frame_pool.hpp"

#include <algorithm>

namespace vexa::tool {

FramePool::FramePool(std::size_t buffers, std::size_t bytes) : frames_(buffers), queue_(buffers) {
  free_.reserve(buffers);
  for (StoredFrame& frame : frames_) {
    frame.pixels.resize(bytes);
    free_.push_back(&frame);
  }
}

bool FramePool::Put(const FrameDescription& description, std::span<const BYTE> pixels) {
  StoredFrame* frame = nullptr;
  {
    const std::lock_guard lock(mutex_);
    if (free_.empty()) {
      return false;
    }
    frame = free_.back();
    free_.pop_back();
  }
  frame->description = description;
  frame->size = pixels.size();
  std::copy(pixels.begin(), pixels.end(), frame->pixels.begin());
  const std::lock_guard lock(mutex_);
  queue_[(queue_head_ + queue_size_) % queue_.size()] = frame;
  ++queue_size_;
  changed_.notify_one();
  return true;
}

StoredFrame* FramePool::Take() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return queue_size_ > 0 || closed_; });
  if (queue_size_ == 0) {
    return nullptr;
  }
  StoredFrame* frame = queue_[queue_head_];
  queue_head_ = (queue_head_ + 1) % queue_.size();
  --queue_size_;
  return frame;
}

void FramePool::Release(StoredFrame* frame) {
  const std::lock_guard lock(mutex_);
  free_.push_back(frame);
}

void FramePool::Close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  changed_.notify_all();
}

}  // namespace vexa::tool
