/// \file
/// Which pixel of a bitmap each pixel of a surface shows, one axis at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vexa::platform::host {

/// A stretch of pixels on one axis: the first, the number, and the direction in which they follow.
struct Run {
  std::int64_t first = 0;
  std::int64_t count = 0;
  int step = 1;  // 1 or -1

  std::int64_t at(std::int64_t index) const { return first + step * index; }
};

/// Whether a run has pixels in [0, size).
bool Overlaps(const Run& run, std::int64_t size);

/// Which of the source pixels that fall on one destination pixel is shown.
enum class Shrink { kFirst, kLast };

struct PixelPair {
  std::size_t destination = 0;
  std::size_t source = 0;
};

/// Pairs every pixel of the destination run with the source pixel nearest to its centre, the
/// earlier one of two that are equally near. In a run that is shrunk each source pixel goes to the
/// destination pixel that its centre lies in, and the first or the last is kept: GDI keeps the
/// first of the rows and the last of the columns. Pixels outside [0, destination_size) and
/// [0, source_size) take no part. Counts are at most 2^31.
std::vector<PixelPair> MapPixels(const Run& destination, std::int64_t destination_size,
                                 const Run& source, std::int64_t source_size, Shrink shrink);

}  // namespace vexa::platform::host
