#include "percentiles.hpp"

#include <algorithm>
#include <cstdint>

namespace vexa::tool {

Nanoseconds NearestRank(std::span<const Nanoseconds> sorted, unsigned percent) {
  const std::uint64_t scaled = std::uint64_t{sorted.size()} * std::min(percent, 100u);
  const std::uint64_t rank = (scaled + 99) / 100;  // 1 is the smallest value
  return sorted[static_cast<std::size_t>(std::max<std::uint64_t>(rank, 1) - 1)];
}

std::optional<Jitter> JitterOf(std::vector<Nanoseconds> intervals) {
  if (intervals.empty()) {
    return std::nullopt;
  }
  std::sort(intervals.begin(), intervals.end());
  Jitter jitter{.count = intervals.size(), .median = NearestRank(intervals, 50)};
  for (Nanoseconds& interval : intervals) {
    interval = std::chrono::abs(interval - jitter.median);
  }
  std::sort(intervals.begin(), intervals.end());
  jitter.p50 = NearestRank(intervals, 50);
  jitter.p90 = NearestRank(intervals, 90);
  jitter.p99 = NearestRank(intervals, 99);
  jitter.max = intervals.back();
  return jitter;
}

}  // namespace vexa::tool
