/// \file
/// Mutual exclusion, re-entrant for its owner.
#pragma once

#include <memory>

namespace vexa::platform {

/// A lock that its owner may take again (a callback may register a callback). Usable with
/// std::lock_guard. It stands here, and not std::recursive_mutex in its place, because the
/// standard library of the Windows tool chain never releases what a mutex has acquired lazily, so
/// that every opened and closed camera would leave memory and kernel handles behind.
class Mutex {
 public:
  Mutex();
  ~Mutex();
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock();
  void unlock();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace vexa::platform
