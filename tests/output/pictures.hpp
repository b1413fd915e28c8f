/// \file
/// Pictures to encode.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace vexa::test {

/// Samples of `channels` bytes per pixel, rows top first.
using Samples = std::vector<std::uint8_t>;

inline Samples NoisePicture(std::size_t size, std::uint32_t seed) {
  std::mt19937 random(seed);
  Samples samples(size);
  std::generate(samples.begin(), samples.end(),
                [&] { return static_cast<std::uint8_t>(random()); });
  return samples;
}

/// Like a photograph: structure of every size, the smaller the weaker, the colours mostly alike,
/// and a sensor's noise on it (standard deviation 3.5).
inline Samples Photograph(int width, int height, int channels) {
  std::mt19937 random(7);
  std::normal_distribution<float> normal;
  std::vector<float> light(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                               static_cast<std::size_t>(channels),
                           128.0F);
  float amplitude = 40;
  for (int cell = 512; cell >= 2; cell /= 2, amplitude *= 0.62F) {
    const int columns = width / cell + 2;
    std::vector<float> lattice(static_cast<std::size_t>(columns) *
                               static_cast<std::size_t>(height / cell + 2) * 4);
    std::generate(lattice.begin(), lattice.end(), [&] { return normal(random); });
    float* out = light.data();
    for (int y = 0; y < height; ++y) {
      const float down = static_cast<float>(y % cell) / static_cast<float>(cell);
      for (int x = 0; x < width; ++x) {
        const float right = static_cast<float>(x % cell) / static_cast<float>(cell);
        const float* corner = &lattice[static_cast<std::size_t>(y / cell * columns + x / cell) * 4];
        const auto value = [&](int channel) {
          const float* below = corner + 4 * columns;
          return std::lerp(std::lerp(corner[channel], corner[channel + 4], right),
                           std::lerp(below[channel], below[channel + 4], right), down);
        };
        for (int channel = 0; channel < channels; ++channel) {
          *out++ += amplitude * (0.8F * value(3) + 0.2F * value(channel % 3));
        }
      }
    }
  }
  Samples samples(light.size());
  std::transform(light.begin(), light.end(), samples.begin(), [&](float value) {
    return static_cast<std::uint8_t>(std::clamp(value + 3.5F * normal(random), 0.0F, 255.0F));
  });
  return samples;
}

}  // namespace vexa::test
