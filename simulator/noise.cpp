#include "simulator/noise.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "simulator/response.hpp"

namespace vexa::simulator {
namespace {

constexpr std::size_t kTableSize = 65536;

std::vector<std::int16_t> MakeTable() {
  // Box-Muller: two normally distributed numbers from two evenly distributed ones.
  constexpr std::size_t kEntries = kTableSize + NoiseSource::kLongestStretch;
  constexpr double kSteps = 9007199254740992.0;  // 2^53
  std::vector<std::int16_t> table(kEntries);
  std::uint64_t state = 0;
  const auto even = [&state] { return (static_cast<double>(Mix(++state) >> 11) + 0.5) / kSteps; };
  const auto entry = [](double value) {
    return static_cast<std::int16_t>(
        std::lround(std::clamp(value * NoiseSource::kUnit, -32767.0, 32767.0)));
  };
  for (std::size_t i = 0; i < kEntries; i += 2) {
    const double radius = std::sqrt(-2 * std::log(even()));
    const double angle = 2 * std::numbers::pi * even();
    table[i] = entry(radius * std::cos(angle));
    table[i + 1] = entry(radius * std::sin(angle));
  }
  return table;
}

// In 1/8 counts times kUnit there are 2^16 to the count.
inline int Noisy(std::int16_t mean, std::int16_t strength, std::int16_t noise) {
  const auto product = static_cast<std::int16_t>((strength * noise) >> 16);
  return std::clamp(mean + product, 0, kFullScale);
}

}  // namespace

const std::int16_t* NoiseSource::Stretch(std::uint32_t frame, std::uint32_t plane,
                                         std::size_t stretch) const {
  static const std::vector<std::int16_t> table = MakeTable();
  const std::uint64_t place = std::uint64_t{stretch} << 34 | std::uint64_t{plane} << 32 | frame;
  return table.data() + Mix(seed_ ^ Mix(place)) % kTableSize;
}

void AddNoise(std::span<const std::int16_t> mean, const std::int16_t* strength,
              const std::int16_t* noise, std::int16_t* out) {
  for (std::size_t i = 0; i < mean.size(); ++i) {
    out[i] = static_cast<std::int16_t>(Noisy(mean[i], strength[i], noise[i]));
  }
}

void AddNoise8(std::span<const std::int16_t> mean, const std::int16_t* strength,
               const std::int16_t* noise, std::uint8_t* out) {
  for (std::size_t i = 0; i < mean.size(); ++i) {
    out[i] = static_cast<std::uint8_t>(Noisy(mean[i], strength[i], noise[i]) >> 6);
  }
}

}  // namespace vexa::simulator
