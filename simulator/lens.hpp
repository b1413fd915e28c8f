/// \file
/// The lens between scene and sensor.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "simulator/scene.hpp"

namespace vexa::simulator {

/// Gives rows of light from some columns of a scene. The built-in scene goes through a slight blur
/// of a good lens, which keeps its sharp edges from showing false colours behind a filter pattern;
/// a picture arrives as it is.
class Lens {
 public:
  Lens(SensorSize size, const std::shared_ptr<const Picture>& picture, std::uint32_t left,
       std::uint32_t columns);

  /// The light on a row, valid until the next call. Rows are cheapest in ascending or descending
  /// order.
  std::span<const Light> Row(std::uint32_t y);

 private:
  const std::vector<Light>& SharpRow(std::uint32_t y);

  struct CachedRow {
    std::int64_t y = -1;
    std::vector<Light> lights;
  };

  SensorSize size_;
  Scene scene_;
  bool blurs_;
  std::uint32_t left_;
  std::array<CachedRow, 3> cache_;
  std::vector<Light> row_;
};

}  // namespace vexa::simulator
