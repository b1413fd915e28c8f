#include "platform/host/message_queue.hpp"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "platform/event.hpp"
#include "platform/posted_message.hpp"

namespace vexa::platform {
namespace {

class Queue {
 public:
  void Post(const host::Message& message) {
    {
      const std::lock_guard lock(mutex_);
      if (messages_.size() >= host::kMessageQueueCapacity) {
        return;
      }
      messages_.push_back(message);
    }
    changed_.notify_one();
  }

  void Close() {
    {
      const std::lock_guard lock(mutex_);
      closed_ = true;
    }
    changed_.notify_all();
  }

  Status Wait(std::uint32_t timeout_ms, host::Message* message) {
    std::unique_lock lock(mutex_);
    const auto has_news = [this] { return closed_ || !messages_.empty(); };
    if (timeout_ms == kInfinite) {
      changed_.wait(lock, has_news);
    } else if (!changed_.wait_for(lock, std::chrono::milliseconds(timeout_ms), has_news)) {
      return error::kWaitTimeout;
    }
    if (closed_) {
      return host::kInvalidWindowHandle;
    }
    *message = messages_.front();
    messages_.pop_front();
    return error::kNone;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<host::Message> messages_;
  bool closed_ = false;
};

/// The live queues by their numbers.
class QueueRegistry {
 public:
  void* Add() {
    auto queue = std::make_shared<Queue>();
    const std::lock_guard lock(mutex_);
    next_number_ += kNumberStep;
    queues_.emplace(next_number_, std::move(queue));
    // A name in the form of a pointer, never followed. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<void*>(next_number_);
  }

  std::shared_ptr<Queue> Find(void* handle) {
    const std::lock_guard lock(mutex_);
    const auto found = queues_.find(reinterpret_cast<std::uintptr_t>(handle));
    return found != queues_.end() ? found->second : nullptr;
  }

  std::shared_ptr<Queue> Remove(void* handle) {
    const std::lock_guard lock(mutex_);
    auto node = queues_.extract(reinterpret_cast<std::uintptr_t>(handle));
    return node ? std::move(node.mapped()) : nullptr;
  }

 private:
  // Small multiples of 4, as window handles are; no address that is passed by mistake is one.
  static constexpr std::uintptr_t kNumberStep = 4;

  std::mutex mutex_;
  std::map<std::uintptr_t, std::shared_ptr<Queue>> queues_;
  std::uintptr_t next_number_ = 0;
};

/// Lives as long as the process: a camera's threads may still post while the program's static
/// objects are being destroyed.
QueueRegistry& Queues() {
  static QueueRegistry& registry = *std::make_unique<QueueRegistry>().release();
  return registry;
}

}  // namespace

namespace host {

void* CreateMessageQueue() { return Queues().Add(); }

Status DestroyMessageQueue(void* queue) {
  const std::shared_ptr<Queue> removed = Queues().Remove(queue);
  if (removed == nullptr) {
    return kInvalidWindowHandle;
  }
  removed->Close();
  return error::kNone;
}

Status WaitForMessage(void* queue, std::uint32_t timeout_ms, Message* message) {
  const std::shared_ptr<Queue> found = Queues().Find(queue);
  return found != nullptr ? found->Wait(timeout_ms, message) : kInvalidWindowHandle;
}

}  // namespace host

void PostWindowMessage(void* window, std::uint32_t message, std::uintptr_t wparam,
                       std::intptr_t lparam) {
  const std::shared_ptr<Queue> queue = Queues().Find(window);
  if (queue == nullptr) {
    return;
  }
  try {
    queue->Post({.number = message, .wparam = wparam, .lparam = lparam});
  } catch (const std::bad_alloc&) {  // no room for the message: lost, as with a full queue
  }
}

}  // namespace vexa::platform
