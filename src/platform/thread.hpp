/// \file
/// A thread with a priority, whose end can be waited for together with events.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/event.hpp"
#include "platform/status.hpp"

namespace vexa::platform {

enum class ThreadPriority {
  kHighest,       // THREAD_PRIORITY_HIGHEST (2)
  kTimeCritical,  // THREAD_PRIORITY_TIME_CRITICAL (15)
};

/// Owner of one running or ended thread. The destructor joins it.
class Thread {
 public:
  /// Starts `body` on a new thread. A priority that the system does not grant is not an error: on
  /// Linux an ordinary user may not raise it. Fails with the system's code when no thread can be
  /// created; *thread is then null.
  static Status Start(ThreadPriority priority, std::function<void()> body,
                      std::unique_ptr<Thread>* thread);

  ~Thread();
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  /// Signalled once the body has returned.
  const Waitable& Ended() const;
  /// Waits for the end without limit.
  void Join();
  std::uint32_t id() const;
  /// Whether the caller runs on this thread.
  bool IsCurrent() const;

 private:
  struct Impl;
  explicit Thread(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

/// The calling thread's identifier, comparable with Thread::id().
std::uint32_t CurrentThreadId();

}  // namespace vexa::platform
