#include "simulator/request_log.hpp"

#include <utility>

namespace vexa::simulator {

void RequestLog::Append(LoggedRequest entry) {
  const std::lock_guard lock(mutex_);
  if (limit_ == 0) return;
  if (entries_.size() >= limit_) entries_.pop_front();
  entries_.push_back(std::move(entry));
}

std::vector<LoggedRequest> RequestLog::Entries() const {
  const std::lock_guard lock(mutex_);
  return {entries_.begin(), entries_.end()};
}

void RequestLog::Clear() {
  const std::lock_guard lock(mutex_);
  entries_.clear();
}

void RequestLog::SetLimit(std::size_t limit) {
  const std::lock_guard lock(mutex_);
  limit_ = limit;
  while (entries_.size() > limit_) entries_.pop_front();
}

}  // namespace vexa::simulator
