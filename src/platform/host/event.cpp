#include "platform/event.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <utility>

// A waiting thread hangs one node, which lives on its own stack, into the list of each object that
// it waits for. Whoever signals an object releases the waiters in the object's list while holding
// the object's mutex, so that a reset right behind cannot take the release back, and so that a
// waiter, which takes the same mutex to remove its nodes, cannot go away under the signaller.
// Lock order: the object's mutex, then the waiter's. No thread holds the mutexes of two objects.

namespace vexa::platform {
namespace {

/// One thread inside WaitAny.
class Waiter {
 public:
  /// Ends the wait because of the object at `index`; of several the lowest counts.
  void Release(std::size_t index) {
    {
      const std::lock_guard lock(mutex_);
      index_ = std::min(index_, index);
    }
    released_.notify_one();
  }

  void Await(std::uint32_t timeout_ms) {
    std::unique_lock lock(mutex_);
    const auto is_released = [this] { return index_ != WaitResult::kTimedOut; };
    if (timeout_ms == kInfinite) {
      released_.wait(lock, is_released);
    } else {
      released_.wait_for(lock, std::chrono::milliseconds(timeout_ms), is_released);
    }
  }

  /// Valid once no object knows the waiter any more.
  std::size_t index() const { return index_; }

 private:
  std::mutex mutex_;
  std::condition_variable released_;
  std::size_t index_ = WaitResult::kTimedOut;
};

struct Node {
  Waiter* waiter = nullptr;
  std::size_t index = 0;
  Node* previous = nullptr;
  Node* next = nullptr;
};

}  // namespace

struct Waitable::Impl {
  std::mutex mutex;
  bool signalled = false;
  Node* waiting = nullptr;

  bool IsSignalled() {
    const std::lock_guard lock(mutex);
    return signalled;
  }

  void Signal() {
    const std::lock_guard lock(mutex);
    signalled = true;
    for (const Node* node = waiting; node != nullptr; node = node->next) {
      node->waiter->Release(node->index);
    }
  }

  /// Adds a waiter's node; false, without adding it, when the object is signalled.
  bool Link(Node& node) {
    const std::lock_guard lock(mutex);
    if (signalled) {
      return false;
    }
    node.next = waiting;
    if (waiting != nullptr) {
      waiting->previous = &node;
    }
    waiting = &node;
    return true;
  }

  void Unlink(const Node& node) {
    const std::lock_guard lock(mutex);
    (node.previous != nullptr ? node.previous->next : waiting) = node.next;
    if (node.next != nullptr) {
      node.next->previous = node.previous;
    }
  }
};

namespace {

using Objects = std::initializer_list<const Waitable*>;

/// The lowest index that is signalled. Looks from the last to the first: when another thread
/// signals object 0 and then object 1, whoever sees the second also sees the first.
std::size_t LowestSignalled(Objects objects) {
  std::size_t lowest = WaitResult::kTimedOut;
  for (std::size_t index = objects.size(); index-- > 0;) {
    if (objects.begin()[index]->impl().IsSignalled()) {
      lowest = index;
    }
  }
  return lowest;
}

/// Makes a waiter known to all objects for as long as it lives.
class Registration {
 public:
  Registration(Objects objects, Waiter& waiter) : objects_(objects) {
    for (const Waitable* object : objects_) {
      nodes_[linked_].waiter = &waiter;
      nodes_[linked_].index = linked_;
      if (!object->impl().Link(nodes_[linked_])) {
        waiter.Release(linked_);
        return;
      }
      ++linked_;
    }
  }

  ~Registration() {
    for (std::size_t index = 0; index < linked_; ++index) {
      objects_.begin()[index]->impl().Unlink(nodes_[index]);
    }
  }

  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;

 private:
  Objects objects_;
  std::array<Node, kMaxWaitObjects> nodes_;
  std::size_t linked_ = 0;
};

}  // namespace

Waitable::Waitable(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Waitable::~Waitable() = default;

Event::Event(Initially initially) : Waitable(std::make_unique<Impl>()) {
  impl().signalled = initially == Initially::kSignalled;
}

Event::~Event() = default;

void Event::Set() { impl().Signal(); }

void Event::Reset() {
  const std::lock_guard lock(impl().mutex);
  impl().signalled = false;
}

bool Event::IsSet() const { return impl().IsSignalled(); }

WaitResult WaitAny(Objects objects, std::uint32_t timeout_ms) {
  if (objects.size() == 0 || objects.size() > kMaxWaitObjects) {
    throw std::length_error("WaitAny takes 1 to 8 objects");
  }
  const std::size_t ready = LowestSignalled(objects);
  if (ready != WaitResult::kTimedOut || timeout_ms == 0) {
    return {ready};
  }
  Waiter waiter;
  {
    const Registration registration(objects, waiter);
    waiter.Await(timeout_ms);
  }
  return {waiter.index()};
}

}  // namespace vexa::platform
