/// \file
/// The sensor's response: from light to samples of the 14-bit converter.
#pragma once

#include <array>
#include <cstdint>

#include "simulator/camera_settings.hpp"
#include "simulator/scene.hpp"

namespace vexa::simulator {

inline constexpr int kFullScale = 16383;  // of the converter

/// Mean and noise of a sample. The noise is its standard deviation in 1/8 counts.
struct Sample {
  std::int16_t mean = 0;
  std::int16_t noise = 0;
};

/// Look-up of the response for each of the four filters. Photo-electrons are proportional to light
/// and exposure time up to the full well; they carry shot noise (the square root of their number)
/// and the read noise, are amplified, converted, clipped and corrected.
class Response {
 public:
  using Curve = std::array<Sample, kStuckDrive + 1>;

  Response();
  void Compute(const Tone& tone, const std::array<double, 3>& illuminant);

  const Curve& operator[](std::size_t filter) const { return curves_[filter]; }

 private:
  std::array<Curve, 4> curves_;
};

}  // namespace vexa::simulator
