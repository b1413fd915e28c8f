#include "white_balance.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "errors.hpp"

namespace vexa::tool {
namespace {

std::uint16_t Scaled(std::uint16_t gain, double from, double to) {
  constexpr double kMost = 65535;
  const double scaled = from > 0 && to > 0 ? gain * to / from : kUnityGain;
  return static_cast<std::uint16_t>(std::lround(std::clamp(scaled, 1.0, kMost)));
}

}  // namespace

Colours MeasureColours(const StoredFrame& frame, const std::optional<Region>& area) {
  const FrameDescription& description = frame.description;
  const Region part = area.value_or(Region{0, 0, description.width, description.height});
  std::array<float, 4> mean{};
  if (Vexa_GetAveragePixelValue(description.width, description.height, description.color_array,
                                VEXA_TRANSFER_8BIT, frame.pixels.data(), part.x, part.y, part.width,
                                part.height, mean.data()) == 0) {
    throw ApiError("Vexa_GetAveragePixelValue", GetLastError());
  }
  // The colour arrays count through the four places of red in a cell.
  const std::size_t red = description.color_array - std::size_t{VEXA_COLOR_ARRAY_RGGB};
  const auto level = [&](std::size_t position) { return static_cast<double>(mean[position & 3]); };
  return {level(red), (level(red ^ 1) + level(red ^ 2)) / 2, level(red ^ 3)};
}

Gains FindGains(Colours colours, const std::function<Colours(const Gains&)>& measure) {
  constexpr int kMostRounds = 8;
  constexpr double kCloseEnough = 0.005;  // of the green level
  Gains gains;
  const auto differs = [&](double level) {
    return std::abs(level - colours.green) > kCloseEnough * colours.green;
  };
  for (int round = 0; round < kMostRounds && (differs(colours.red) || differs(colours.blue));
       ++round) {
    gains.red = Scaled(gains.red, colours.red, colours.green);
    gains.blue = Scaled(gains.blue, colours.blue, colours.green);
    colours = measure(gains);
  }
  return gains;
}

Json JsonOf(const Gains& gains) {
  return {{"red", gains.red},
          {"green_red", gains.green_red},
          {"green_blue", gains.green_blue},
          {"blue", gains.blue}};
}

}  // namespace vexa::tool
