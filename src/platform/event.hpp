/// \file
/// Events and waiting for several of them at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>

namespace vexa::platform {

/// Time-outs are in milliseconds; this value waits without limit.
inline constexpr std::uint32_t kInfinite = 0xFFFFFFFF;

/// The largest number of objects that one wait takes.
inline constexpr std::size_t kMaxWaitObjects = 8;

/// Something that a thread can wait for: an event, or the end of a thread.
class Waitable {
 public:
  struct Impl;

  Waitable(const Waitable&) = delete;
  Waitable& operator=(const Waitable&) = delete;

  Impl& impl() const { return *impl_; }

 protected:
  explicit Waitable(std::unique_ptr<Impl> impl);
  ~Waitable();

 private:
  std::unique_ptr<Impl> impl_;
};

/// A manual-reset event. Set releases every thread that waits at that moment, even when another
/// thread resets the event before the released threads run again. A thread that has seen the event
/// signalled may destroy it although the call of Set has not returned yet.
class Event : public Waitable {
 public:
  enum class Initially { kNonSignalled, kSignalled };

  /// Throws std::bad_alloc when the system has no event left to give.
  explicit Event(Initially initially = Initially::kNonSignalled);
  ~Event();

  void Set();
  void Reset();
  bool IsSet() const;
};

/// The answer of a wait: which of the objects (the lowest index when several are signalled), or
/// that the time ran out.
struct WaitResult {
  static constexpr std::size_t kTimedOut = SIZE_MAX;
  std::size_t index = kTimedOut;

  bool timed_out() const { return index == kTimedOut; }
};

/// Waits until one of the objects is signalled. Waiting does not change them. Allocates nothing.
/// Throws std::length_error when there is no object or more than kMaxWaitObjects of them.
WaitResult WaitAny(std::initializer_list<const Waitable*> objects,
                   std::uint32_t timeout_ms = kInfinite);

/// Waits for one object; true when it is signalled, false when the time ran out.
bool Wait(const Waitable& object, std::uint32_t timeout_ms = kInfinite);

}  // namespace vexa::platform
