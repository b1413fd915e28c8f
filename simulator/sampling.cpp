#include "simulator/sampling.hpp"

#include <algorithm>

namespace vexa::simulator {

Filter FilterAt(std::uint16_t colour_array, std::uint32_t x, std::uint32_t y) {
  // Where red stands in the pattern: RGGB, GRBG, GBRG, BGGR.
  const std::uint32_t code = (colour_array - 2u) & 3u;
  const bool odd_column = ((x ^ code) & 1) != 0;
  const bool odd_row = ((y ^ (code >> 1)) & 1) != 0;
  if (odd_row) return odd_column ? Filter::kBlue : Filter::kGreenBlue;
  return odd_column ? Filter::kGreenRed : Filter::kRed;
}

std::uint16_t ColourArrayFrom(std::uint16_t colour_array, std::uint32_t x, std::uint32_t y) {
  if (colour_array == 1) return 1;
  // An odd column exchanges 2 with 3 and 4 with 5, an odd row 2 with 4 and 3 with 5.
  const std::uint32_t code = ((colour_array - 2u) & 3u) ^ (x & 1) ^ (y & 1) << 1;
  return static_cast<std::uint16_t>(code + 2);
}

AxisMap::AxisMap(std::uint32_t lines, std::uint32_t origin, std::uint32_t pitch, std::uint32_t bin,
                 bool mirror, std::uint32_t cell, std::uint32_t sensor_lines)
    : first_(lines),
      bin_(bin),
      cell_(cell),
      last_sensor_line_(std::max(sensor_lines, 1u) - 1),
      mirror_(mirror) {
  for (std::uint32_t i = 0; i < lines; ++i) {
    const std::uint32_t line = mirror ? lines - 1 - i : i;
    const std::uint32_t sensor_line = origin + line / cell * cell * pitch + line % cell;
    first_[i] = std::min(sensor_line, last_sensor_line_);
  }
}

std::uint32_t AxisMap::Binned(std::size_t line, std::uint32_t k) const {
  const std::uint32_t sensor_line = first_[line] + k * cell_;
  return sensor_line <= last_sensor_line_ ? sensor_line : first_[line];
}

std::uint32_t AxisMap::Lowest() const { return mirror_ ? first_.back() : first_.front(); }

std::uint32_t AxisMap::Span() const {
  const std::uint32_t highest = mirror_ ? first_.front() : first_.back();
  return std::min(highest + (bin_ - 1) * cell_, last_sensor_line_) - Lowest() + 1;
}

AxisMap::Range AxisMap::LinesIn(int low, int high) const {
  const auto from = [](int line) { return static_cast<std::uint32_t>(std::max(line, 0)); };
  const auto index = [&](auto position) {
    return static_cast<std::size_t>(position - first_.begin());
  };
  if (high <= 0 || low >= high) return {};
  if (mirror_) {
    return {index(std::ranges::partition_point(first_, [&](auto v) { return v >= from(high); })),
            index(std::ranges::partition_point(first_, [&](auto v) { return v >= from(low); }))};
  }
  return {index(std::ranges::partition_point(first_, [&](auto v) { return v < from(low); })),
          index(std::ranges::partition_point(first_, [&](auto v) { return v < from(high); }))};
}

Sampling::Sampling(const Geometry& g)
    : columns(g.width, g.origin_x, g.pitch_x, g.bin_x, g.mirror_x, g.colour_array == 1 ? 1 : 2,
              g.sensor.width),
      rows(g.height, g.origin_y, g.pitch_y, g.bin_y, g.mirror_y, g.colour_array == 1 ? 1 : 2,
           g.sensor.height) {}

}  // namespace vexa::simulator
