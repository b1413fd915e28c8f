/// \file
/// Noise, fast and repeatable.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace vexa::simulator {

/// Normally distributed numbers from one table for all cameras; every stretch of an image reads it
/// from a place that follows from seed, frame, plane and stretch.
class NoiseSource {
 public:
  static constexpr std::size_t kLongestStretch = 4096;
  static constexpr int kUnit = 8192;  // one standard deviation

  explicit NoiseSource(std::uint64_t seed) : seed_(seed) {}

  /// Numbers for the pixels [stretch * kLongestStretch, (stretch + 1) * kLongestStretch) of an
  /// image, counted through all rows.
  const std::int16_t* Stretch(std::uint32_t frame, std::uint32_t plane, std::size_t stretch) const;

 private:
  std::uint64_t seed_;
};

/// A well-mixed 64-bit number from another (SplitMix64's output function).
constexpr std::uint64_t Mix(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EB;
  return value ^ (value >> 31);
}

/// 14-bit samples from means, noise strengths (1/8 counts) and noise (kUnit), clipped to full
/// scale; and the same as the high 8 bits. The loops are the twin's hottest.
void AddNoise(std::span<const std::int16_t> mean, const std::int16_t* strength,
              const std::int16_t* noise, std::int16_t* out);
void AddNoise8(std::span<const std::int16_t> mean, const std::int16_t* strength,
               const std::int16_t* noise, std::uint8_t* out);

}  // namespace vexa::simulator
