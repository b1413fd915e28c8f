/** How even the intervals between frames are. */
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace vexa::tool {

using Nanoseconds = std::chrono::nanoseconds;

/** The value below or at which a share of the values lies (nearest rank).
 *  @param sorted ascending, at least one value. @param percent 0 to 100. */
Nanoseconds NearestRank(std::span<const Nanoseconds> sorted, unsigned percent);

/** Intervals between callbacks: their median, and percentiles of |interval - median|. */
struct Jitter {
  std::size_t count = 0; /**< Intervals. */
  Nanoseconds median{};
  Nanoseconds p50{};
  Nanoseconds p90{};
  Nanoseconds p99{};
  Nanoseconds max{};
};

/** The jitter of intervals; nothing when there are none. */
std::optional<Jitter> JitterOf(std::vector<Nanoseconds> intervals);

}  // namespace vexa::tool
