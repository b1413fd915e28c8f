#include "platform/host/pixel_map.hpp"

#include <algorithm>

namespace vexa::platform::host {
namespace {

/// Indexes in the source run, both included.
struct Range {
  std::int64_t first = 0;
  std::int64_t last = 0;
};

/// The source pixel nearest to the centre of the destination pixel `index`. Counts are at most
/// 2^31, so that the products fit 64 bits without a sign.
std::int64_t Nearest(std::uint64_t index, std::uint64_t destination_count,
                     std::uint64_t source_count) {
  return static_cast<std::int64_t>(((2 * index + 1) * source_count - 1) / (2 * destination_count));
}

/// The last source pixel of a shrunk run whose centre lies in the destination pixel `index`.
std::int64_t LastWithin(std::uint64_t index, std::uint64_t destination_count,
                        std::uint64_t source_count) {
  return static_cast<std::int64_t>((2 * (index + 1) * source_count - destination_count) /
                                   (2 * destination_count));
}

Range SourceRange(std::int64_t index, std::int64_t destination_count, std::int64_t source_count) {
  const auto i = static_cast<std::uint64_t>(index);
  const auto destination = static_cast<std::uint64_t>(destination_count);
  const auto source = static_cast<std::uint64_t>(source_count);
  if (destination_count >= source_count) {
    const std::int64_t nearest = Nearest(i, destination, source);
    return {nearest, nearest};
  }
  return {i == 0 ? 0 : LastWithin(i - 1, destination, source) + 1,
          LastWithin(i, destination, source)};
}

/// The indexes of a run whose pixels lie in [0, size).
Range IndexesWithin(const Run& run, std::int64_t size) {
  return run.step > 0 ? Range{-run.first, size - 1 - run.first}
                      : Range{run.first - (size - 1), run.first};
}

Range Intersection(const Range& a, const Range& b) {
  return {std::max(a.first, b.first), std::min(a.last, b.last)};
}

}  // namespace

bool Overlaps(const Run& run, std::int64_t size) {
  const Range within = Intersection({0, run.count - 1}, IndexesWithin(run, size));
  return within.first <= within.last;
}

std::vector<PixelPair> MapPixels(const Run& destination, std::int64_t destination_size,
                                 const Run& source, std::int64_t source_size, Shrink shrink) {
  std::vector<PixelPair> pairs;
  const Range drawn =
      Intersection({0, destination.count - 1}, IndexesWithin(destination, destination_size));
  const Range readable = Intersection({0, source.count - 1}, IndexesWithin(source, source_size));
  for (std::int64_t index = drawn.first; index <= drawn.last && source.count > 0; ++index) {
    const Range candidates =
        Intersection(SourceRange(index, destination.count, source.count), readable);
    if (candidates.first <= candidates.last) {
      const std::int64_t shown = shrink == Shrink::kFirst ? candidates.first : candidates.last;
      pairs.push_back({static_cast<std::size_t>(destination.at(index)),
                       static_cast<std::size_t>(source.at(shown))});
    }
  }
  return pairs;
}

}  // namespace vexa::platform::host
