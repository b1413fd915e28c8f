#include "simulator/scene.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vexa::simulator {

Light DisplayColour(double red, double green, double blue) {
  const auto drive = [](double value) {
    return static_cast<std::uint16_t>(
        std::lround(std::clamp(value, 0.0, 255.0) * kFullDrive / 255));
  };
  return {drive(red), drive(green), drive(blue)};
}

SceneLayout::SceneLayout(SensorSize size) {
  const auto box = [&](double left, double top, double right, double bottom) {
    return Box{static_cast<int>(left * size.width), static_cast<int>(top * size.height),
               static_cast<int>(right * size.width), static_cast<int>(bottom * size.height)};
  };
  whole = box(0, 0, 1, 1);
  chart = box(0.03, 0.045, 0.585, 0.595);
  star = box(0.615, 0.045, 0.97, 0.595);
  lane = box(0.03, 0.63, 0.585, 0.80);
  line_pairs = box(0.615, 0.63, 0.97, 0.80);
  grey_ramp = box(0.03, 0.835, 0.70, 0.895);
  hue_ramp = box(0.03, 0.905, 0.70, 0.965);
  counter = box(0.73, 0.835, 0.97, 0.965);
}

Scene::Scene(SensorSize size, std::shared_ptr<const Picture> picture)
    : size_(size), layout_(size), picture_(std::move(picture)) {}

void Scene::PaintRow(std::uint32_t x, std::uint32_t y, std::span<Light> row) const {
  if (picture_ != nullptr) {
    PaintPicture(x, y, row);
  } else {
    PaintBuiltInRow(layout_, static_cast<int>(x), static_cast<int>(y), row);
  }
}

void Scene::PaintPicture(std::uint32_t x, std::uint32_t y, std::span<Light> row) const {
  // A picture of the sensor's size goes over pixel by pixel, any other one by its nearest pixels.
  const auto drive = [](std::uint16_t sample) { return static_cast<std::uint16_t>(sample >> 4); };
  const std::uint64_t source_y = std::uint64_t{y} * picture_->height / size_.height;
  const std::uint16_t* source = picture_->rgb.data() + source_y * picture_->width * 3;
  for (Light& light : row) {
    const std::uint16_t* sample = source + std::uint64_t{x++} * picture_->width / size_.width * 3;
    light = {drive(sample[0]), drive(sample[1]), drive(sample[2])};
  }
}

}  // namespace vexa::simulator
