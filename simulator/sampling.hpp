/// \file
/// Which sensor pixels, behind which filter, become which pixels of the frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/camera_settings.hpp"

namespace vexa::simulator {

/// Filter of a sensor pixel; green on red rows and green on blue rows are told apart.
enum class Filter : std::uint8_t { kRed, kGreenRed, kGreenBlue, kBlue };

/// The filter of a sensor pixel of a colour array (2 ... 5).
Filter FilterAt(std::uint16_t colour_array, std::uint32_t x, std::uint32_t y);

/// The colour array code counted from a sensor pixel instead of the first; 1 stays 1.
std::uint16_t ColourArrayFrom(std::uint16_t colour_array, std::uint32_t x, std::uint32_t y);

/// The sensor lines (columns or rows) behind the lines of a frame, along one axis.
class AxisMap {
 public:
  AxisMap() = default;
  /// `cell` is 2 on a colour sensor, whose lines go in pairs, else 1.
  AxisMap(std::uint32_t lines, std::uint32_t origin, std::uint32_t pitch, std::uint32_t bin,
          bool mirror, std::uint32_t cell, std::uint32_t sensor_lines);

  std::size_t size() const { return first_.size(); }
  /// The first of the sensor lines behind a frame line ...
  std::uint32_t operator[](std::size_t line) const { return first_[line]; }
  /// ... and the next ones (`k` below bin).
  std::uint32_t Binned(std::size_t line, std::uint32_t k) const;
  std::uint32_t bin() const { return bin_; }
  /// Lowest sensor line, and the count from there to the highest.
  std::uint32_t Lowest() const;
  std::uint32_t Span() const;

  /// The frame lines [first, end) whose sensor lines lie in [low, high).
  struct Range {
    std::size_t first = 0;
    std::size_t end = 0;
  };
  Range LinesIn(int low, int high) const;

 private:
  std::vector<std::uint32_t> first_;
  std::uint32_t bin_ = 1;
  std::uint32_t cell_ = 1;
  std::uint32_t last_sensor_line_ = 0;
  bool mirror_ = false;
};

/// Both axes of a geometry.
struct Sampling {
  Sampling() = default;
  explicit Sampling(const Geometry& geometry);

  AxisMap columns;
  AxisMap rows;
};

}  // namespace vexa::simulator
