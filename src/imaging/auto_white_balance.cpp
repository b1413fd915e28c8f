#include "imaging/auto_white_balance.hpp"

#include <array>

#include "imaging/pattern_statistics.hpp"

namespace vexa::imaging {
namespace {

constexpr double kUnity = 128;
constexpr std::uint32_t kUnityGain = 128;
constexpr std::uint32_t kMaxGain = 65535;
constexpr std::uint32_t kMaxRefinedGain = 640;  // five times the light
constexpr std::uint32_t kWhite = 255;

// One position's samples, and what their mean would be under a gain.
class Position {
 public:
  // `pixels` is the number of samples, a quarter of the frame's pixels.
  Position(const Histogram& histogram, double mean, double pixels) : mean_(mean), pixels_(pixels) {
    std::uint64_t count = 0;
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < histogram.size(); ++i) {
      count += histogram[i];
      sum += i * std::uint64_t{histogram[i]};
      count_to_[i] = count;
      sum_to_[i] = sum;
    }
  }

  std::uint16_t GainFor(double target) const {
    if (pixels_ == 0 || mean_ < 1 / pixels_) {
      return kUnityGain;
    }
    const double estimate = kUnity * target / mean_;
    if (estimate >= kMaxGain) {
      return kMaxGain;
    }
    auto gain = static_cast<std::uint32_t>(estimate);
    while (gain < kMaxRefinedGain && ClippedMean(gain) < target) {
      ++gain;
    }
    return static_cast<std::uint16_t>(gain);
  }

 private:
  double ClippedMean(std::uint32_t gain) const {
    if (gain == 0) {
      return 0;
    }
    // The highest sample that the gain does not drive beyond white.
    const std::uint32_t limit = kWhite * kUnityGain / gain;
    if (limit >= kWhite) {
      return mean_ * gain * (1 / kUnity);
    }
    const std::uint64_t above = count_to_.back() - count_to_[limit];
    const auto sum = static_cast<double>(sum_to_[limit] + above * limit);
    return sum / pixels_ * gain * (1 / kUnity);
  }

  double mean_;
  double pixels_;
  std::array<std::uint64_t, 256> count_to_{};  // samples up to a value
  std::array<std::uint64_t, 256> sum_to_{};    // and their sum
};

}  // namespace

Status FindColorGains(std::uint32_t width, std::uint32_t height, std::uint16_t color_array,
                      const std::uint8_t* frame, ColorGains* gains) {
  PatternColors colors{};
  if (!FindPatternColors(color_array, &colors)) {
    return error::kInvalidParameter;
  }
  const PatternStatistics statistics = MeasurePattern(width, height, frame);
  const auto pixels = static_cast<double>(std::uint64_t{width} * height / 4);
  const double target =
      (statistics.means[colors.green[0]] + statistics.means[colors.green[1]]) * 0.5;
  const auto gain = [&](std::size_t position) {
    return Position(statistics.histograms[position], statistics.means[position], pixels)
        .GainFor(target);
  };
  *gains = {.red = gain(colors.red), .blue = gain(colors.blue)};
  return {};
}

}  // namespace vexa::imaging
