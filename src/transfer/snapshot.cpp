#include "transfer/snapshot.hpp"

#include <algorithm>
#include <mutex>
#include <new>

namespace vexa::transfer {
namespace {

constexpr std::uint32_t kFewestBuffers = 2;  // of a ring that the application has not asked for

std::size_t RingSize(std::uint32_t count, std::uint64_t frame_size) {
  if (frame_size > static_cast<std::uint64_t>(PTRDIFF_MAX) / count) {
    throw std::bad_alloc();
  }
  return static_cast<std::size_t>(count * frame_size);
}

}  // namespace

CSnapShotData::CSnapShotData() = default;
CSnapShotData::CSnapShotData(std::span<std::uint8_t> buffer) : buffer_(buffer) {}

CSnapShotData::~CSnapShotData() = default;

void CSnapShotData::Lend(std::span<std::uint8_t> buffer) {
  external_ = true;
  buffer_ = buffer;
  filled_.Reset();
}

Status CSnapShotData::Fill(std::uint32_t frame_number, std::span<const std::uint8_t> image) {
  if (!external_ && buffer_.size() < image.size()) {
    try {
      grown_ = std::vector<std::uint8_t>(image.size());
    } catch (const std::bad_alloc&) {
      return error::kNotEnoughMemory;
    }
    buffer_ = grown_;
  }
  std::copy_n(image.begin(), std::min(image.size(), buffer_.size()), buffer_.begin());
  frame_number_ = frame_number;
  filled_.Set();
  return {};
}

CSnapShotCtrl::CSnapShotCtrl(std::uint32_t count, std::uint64_t frame_size)
    : memory_(RingSize(count, frame_size)), frame_size_(memory_.size() / count) {
  copies_.reserve(count);
  for (std::uint32_t i = 0; i < count; ++i) {
    copies_.push_back(
        std::make_unique<CSnapShotData>(std::span(memory_).subspan(i * frame_size_, frame_size_)));
  }
}

CSnapShotCtrl::~CSnapShotCtrl() = default;

std::uint32_t CSnapShotCtrl::Next(std::uint32_t index) const {
  return index + 1 < copies_.size() ? index + 1 : 0;
}

Status CSnapShotCtrl::Store(std::uint32_t frame_number, std::span<const std::uint8_t> image) {
  const std::lock_guard lock(mutex_);
  if (taker_waits_ && !taker_.IsFilled()) {
    return taker_.Fill(frame_number, image);
  }
  CSnapShotData& copy = *copies_[write_index_];
  const bool overwrites = copy.IsFilled() && read_index_ == write_index_;
  const Status status = copy.Fill(frame_number, image);
  if (!status.ok()) {
    return status;
  }
  if (overwrites) {
    read_index_ = Next(read_index_);
  }
  write_index_ = Next(write_index_);
  return {};
}

void CSnapShotCtrl::Reset() {
  const std::lock_guard lock(mutex_);
  for (const auto& copy : copies_) {
    copy->Empty();
  }
  read_index_ = 0;
  write_index_ = 0;
}

Status CSnapShotCtrl::TakeStored(std::span<std::uint8_t> buffer, TakenFrame* taken) {
  const std::lock_guard lock(mutex_);
  return TakeOldest(buffer, taken) ? Status() : error::kWaitTimeout;
}

bool CSnapShotCtrl::TakeOldest(std::span<std::uint8_t> buffer, TakenFrame* taken) {
  CSnapShotData& copy = *copies_[read_index_];
  if (!copy.IsFilled()) {
    return false;
  }
  const std::size_t size = std::min(copy.bytes().size(), buffer.size());
  std::copy_n(copy.bytes().begin(), size, buffer.begin());
  *taken = {.number = copy.frame_number(), .size = static_cast<std::uint32_t>(size)};
  copy.Empty();
  read_index_ = Next(read_index_);
  return true;
}

Status CSnapShotCtrl::Take(std::span<std::uint8_t> buffer, std::uint32_t timeout_ms,
                           const platform::Waitable& transfer_end, TakenFrame* taken) {
  {
    const std::lock_guard lock(mutex_);
    if (TakeOldest(buffer, taken)) {
      return {};
    }
    if (taker_waits_) {
      return error::kBusy;
    }
    taker_.Lend(buffer);
    taker_waits_ = true;
  }
  const platform::WaitResult woken =
      platform::WaitAny({&taker_.filled(), &transfer_end}, timeout_ms);
  const std::lock_guard lock(mutex_);
  taker_waits_ = false;
  // A frame that came between the end of the wait and the lock lies in the buffer, too.
  if (!taker_.IsFilled()) {
    return woken.timed_out() ? error::kWaitTimeout : error::kAccessDenied;
  }
  *taken = {.number = taker_.frame_number(),
            .size = static_cast<std::uint32_t>(std::min(frame_size_, buffer.size()))};
  return {};
}

void RawSnapshot::SetBufferCount(std::uint32_t count, std::uint64_t frame_size) {
  const std::lock_guard lock(mutex_);
  Destroy();
  buffer_count_ = count;
  if (count != 0) {
    try {
      Create(count, frame_size);
    } catch (const std::bad_alloc&) {
      return;  // the next take tries again and reports it
    }
  }
}

std::shared_ptr<CSnapShotCtrl> RawSnapshot::Controller(std::uint64_t frame_size) {
  const std::lock_guard lock(mutex_);
  if (controller_ != nullptr && controller_->frame_size() != frame_size) {
    Destroy();
  }
  if (controller_ == nullptr) {
    Create(std::max(buffer_count_, kFewestBuffers), frame_size);
  }
  return controller_;
}

void RawSnapshot::Reset() {
  const std::lock_guard lock(mutex_);
  if (controller_ != nullptr) {
    controller_->Reset();
  }
}

void RawSnapshot::Store(std::uint32_t frame_number, std::span<const std::uint8_t> image) {
  if (!in_use_.load(std::memory_order_relaxed)) {
    return;
  }
  const std::lock_guard lock(mutex_);
  if (controller_ != nullptr) {
    // Without memory the frame is missing from the ring; the callback gets it all the same.
    static_cast<void>(controller_->Store(frame_number, image));
  }
}

void RawSnapshot::Create(std::uint32_t count, std::uint64_t frame_size) {
  controller_ = std::make_shared<CSnapShotCtrl>(count, frame_size);
  in_use_ = true;
}

void RawSnapshot::Destroy() {
  in_use_ = false;
  controller_.reset();
}

}  // namespace vexa::transfer
