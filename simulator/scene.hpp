/// \file
/// The light that falls on a sensor: the scene without its moving parts.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "simulator/camera_config.hpp"
#include "simulator/picture.hpp"

namespace vexa::simulator {

/// Light of one sensor pixel: red, green and blue drive, 0 ... kFullDrive. The scale is that of
/// display values: at the power-up exposure the drive's share of kFullDrive comes out as the same
/// share of (nearly) full scale. So the plain picture of a twin looks right on a display; a change
/// of exposure or gain multiplies it, as it multiplies the linear light on a real sensor.
struct Light {
  std::uint16_t red = 0;
  std::uint16_t green = 0;
  std::uint16_t blue = 0;
};
inline constexpr std::uint16_t kFullDrive = 4095;
/// Drive of a defect pixel whose well is full whatever the light and the exposure.
inline constexpr std::uint16_t kStuckDrive = kFullDrive + 1;

/// What a monochrome sensor makes of a colour: luminance (ITU-R BT.601 weights, in 1/256).
constexpr std::uint16_t Luminance(const Light& light) {
  return static_cast<std::uint16_t>((77u * light.red + 150u * light.green + 29u * light.blue) >> 8);
}

/// A rectangle of sensor pixels; right and bottom lie outside.
struct Box {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;

  int width() const { return right - left; }
  int height() const { return bottom - top; }
};

/// The built-in scene's arrangement on a sensor.
struct SceneLayout {
  explicit SceneLayout(SensorSize size);

  Box whole;
  Box chart;       // 24 colour patches
  Box star;        // Siemens star
  Box lane;        // where the object moves
  Box line_pairs;  // line pairs, 1 to 8 pixels wide
  Box grey_ramp;
  Box hue_ramp;
  Box counter;  // the frame counter's plate
};

/// Paints rows of a scene of a sensor's size.
class Scene {
 public:
  /// Null picture: the built-in scene. A picture is scaled to fill the sensor.
  Scene(SensorSize size, std::shared_ptr<const Picture> picture);

  /// Light of the pixels (x, y), (x + 1, y), ...
  void PaintRow(std::uint32_t x, std::uint32_t y, std::span<Light> row) const;

 private:
  void PaintPicture(std::uint32_t x, std::uint32_t y, std::span<Light> row) const;

  SensorSize size_;
  SceneLayout layout_;
  std::shared_ptr<const Picture> picture_;
};

/// Light of a display colour (0 ... 255 each).
Light DisplayColour(double red, double green, double blue);

/// Paints a row of the built-in scene.
void PaintBuiltInRow(const SceneLayout& layout, int x, int y, std::span<Light> row);

}  // namespace vexa::simulator
