#include "simulator/faults.hpp"

#include <limits>

namespace vexa::simulator {

bool RequestMatcher::Matches(const LoggedRequest& entry) const {
  const auto agrees = [](const auto& wanted, const auto& found) {
    return !wanted.has_value() || *wanted == found;
  };
  return agrees(code, entry.code) && agrees(request, entry.request) && agrees(value, entry.value) &&
         agrees(index, entry.index) && agrees(device_to_host, entry.device_to_host());
}

std::uint32_t Faults::Order::Take() {
  if (count == 0) return 0;
  if (count != kForever) --count;
  return value;
}

void Faults::FailReads(Status status, std::uint32_t count) {
  const std::lock_guard lock(mutex_);
  read_failures_ = {status.code(), count};
}

void Faults::RefuseReads(Status status, std::uint32_t count) {
  const std::lock_guard lock(mutex_);
  read_refusals_ = {status.code(), count};
}

void Faults::RefuseReset(std::uint32_t count) {
  const std::lock_guard lock(mutex_);
  reset_refusals_ = {1, count};
}

void Faults::ShortenFrames(std::uint32_t bytes, std::uint32_t count) {
  const std::lock_guard lock(mutex_);
  shortages_ = {bytes, count};
}

void Faults::LengthenFrames(std::uint32_t bytes, std::uint32_t count) {
  const std::lock_guard lock(mutex_);
  excesses_ = {bytes, count};
}

void Faults::ShortenHeaders(std::uint32_t bytes, std::uint32_t count) {
  const std::lock_guard lock(mutex_);
  header_shortages_ = {bytes, count};
}

void Faults::DropFrames(std::uint32_t count) {
  const std::lock_guard lock(mutex_);
  dropped_frames_ = {1, count};
}

void Faults::FailControl(const RequestMatcher& matcher, Status status, std::uint32_t count) {
  const std::lock_guard lock(mutex_);
  control_failures_.push_back({matcher, {status.code(), count}});
}

void Faults::DelayControl(const RequestMatcher& matcher, std::uint32_t milliseconds,
                          std::uint32_t count) {
  const std::lock_guard lock(mutex_);
  control_delays_.push_back({matcher, {milliseconds, count}});
}

void Faults::LimitControl(const RequestMatcher& matcher, std::uint32_t bytes, std::uint32_t count) {
  const std::lock_guard lock(mutex_);
  control_limits_.push_back({matcher, {bytes, count}});
}

Status Faults::TakeReadFailure() {
  const std::lock_guard lock(mutex_);
  return Status(read_failures_.Take());
}

Status Faults::TakeReadRefusal() {
  const std::lock_guard lock(mutex_);
  return Status(read_refusals_.Take());
}

bool Faults::TakeResetRefusal() {
  const std::lock_guard lock(mutex_);
  return reset_refusals_.Take() != 0;
}

bool Faults::TakeDroppedFrame() {
  const std::lock_guard lock(mutex_);
  return dropped_frames_.Take() != 0;
}

std::int64_t Faults::TakeFrameDifference() {
  const std::lock_guard lock(mutex_);
  return std::int64_t{excesses_.Take()} - std::int64_t{shortages_.Take()};
}

std::uint32_t Faults::TakeHeaderShortage() {
  const std::lock_guard lock(mutex_);
  return header_shortages_.Take();
}

std::optional<std::uint32_t> Faults::TakeMatching(std::vector<ControlOrder>* orders,
                                                  const LoggedRequest& entry) {
  for (ControlOrder& candidate : *orders) {
    if (candidate.order.count == 0 || !candidate.matcher.Matches(entry)) continue;
    const std::uint32_t value = candidate.order.Take();
    std::erase_if(*orders, [](const ControlOrder& order) { return order.order.count == 0; });
    return value;
  }
  return std::nullopt;
}

Status Faults::TakeControlFailure(const LoggedRequest& entry) {
  const std::lock_guard lock(mutex_);
  return Status(TakeMatching(&control_failures_, entry).value_or(0));
}

std::uint32_t Faults::TakeControlDelay(const LoggedRequest& entry) {
  const std::lock_guard lock(mutex_);
  return TakeMatching(&control_delays_, entry).value_or(0);
}

std::uint32_t Faults::TakeControlLimit(const LoggedRequest& entry) {
  const std::lock_guard lock(mutex_);
  return TakeMatching(&control_limits_, entry).value_or(std::numeric_limits<std::uint32_t>::max());
}

}  // namespace vexa::simulator
