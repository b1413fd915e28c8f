/// \file
/// The moving parts of a scene: an object that bounces along and the frame counter.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/scene.hpp"

namespace vexa::simulator {

/// A small image with coverage (0 ... 256).
struct Sprite {
  int width = 0;
  int height = 0;
  std::vector<Light> light;
  std::vector<std::uint16_t> coverage;
};

/// A sprite at a place (its top left sensor pixel); sprite -1: nothing.
struct Placement {
  int sprite = -1;
  int x = 0;
  int y = 0;

  friend bool operator==(const Placement&, const Placement&) = default;
};

/// The parts and where they are in each frame. Parts never overlap each other.
class Overlay {
 public:
  static constexpr std::size_t kDigits = 6;
  static constexpr std::size_t kParts = kDigits + 1;
  using Placements = std::array<Placement, kParts>;

  explicit Overlay(SensorSize size);

  /// Places in the frame of a number; the counter shows its last six decimal digits.
  Placements At(std::uint32_t frame_number) const;
  const Sprite& Part(int sprite) const { return sprites_[static_cast<std::size_t>(sprite)]; }

 private:
  SceneLayout layout_;
  std::vector<Sprite> sprites_;  // the ten digits, then the ball
};

}  // namespace vexa::simulator
