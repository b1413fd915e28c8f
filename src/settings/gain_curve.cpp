#include "settings/gain_curve.hpp"

#include <cmath>

namespace vexa::settings {
namespace {

constexpr int kSegmentLimit = 21;  // first value of the upper segment

float TwoSegmentToDecibel(std::uint16_t gain) {
  const int amplification = gain < kSegmentLimit ? 8 * (gain + 8) : 28 * (gain - 12);
  const float ratio = static_cast<float>(amplification * 0.015625);
  const float logarithm = static_cast<float>(std::log10(static_cast<double>(ratio)));
  return static_cast<float>(20.0 * logarithm);
}

float TwoSegmentFromDecibel(float decibel) {
  const float ratio = static_cast<float>(std::pow(10.0, static_cast<double>(decibel) / 20.0));
  const double scaled = static_cast<double>(ratio) * 64.0;
  // The largest amplification of a 16-bit value is 28 * 65523; beyond, any large number does.
  const int n = scaled < 0x7FFFFFFF ? static_cast<int>(scaled) : 0x7FFFFFFF;
  if (n / 8 - 8 < kSegmentLimit) {
    const float product = static_cast<float>(n * 0.125);
    return product - 8.0F;
  }
  const float quotient = static_cast<float>(n / 28.0);
  return quotient + 12.0F;
}

}  // namespace

GainCurve GainCurveOf(const device::CameraIdentity& identity) {
  const bool first = identity.Has(device::Function::kGainCurve1);
  const bool second = identity.Has(device::Function::kGainCurve2);
  if (first == second) {
    return GainCurve::kLinear;
  }
  return first ? GainCurve::kLinearOffset : GainCurve::kTwoSegment;
}

float GainToDecibel(GainCurve curve, std::uint16_t gain) {
  switch (curve) {
    case GainCurve::kLinearOffset:
      return static_cast<float>((gain + 128) * 0.07038 + 2.0);
    case GainCurve::kTwoSegment:
      return TwoSegmentToDecibel(gain);
    case GainCurve::kLinear:
      break;
  }
  return static_cast<float>(gain * 0.132 - 2.36);
}

std::uint16_t DecibelToGain(GainCurve curve, float decibel, std::uint16_t max_gain) {
  float value = 0;
  switch (curve) {
    case GainCurve::kLinear:
      value = static_cast<float>((static_cast<double>(decibel) + 2.36) / 0.132);
      break;
    case GainCurve::kLinearOffset:
      value = static_cast<float>((static_cast<double>(decibel) - 2.0) / 0.07038 - 128.0);
      break;
    case GainCurve::kTwoSegment:
      if (std::isnan(decibel)) {
        return 0;
      }
      value = TwoSegmentFromDecibel(decibel);
      break;
  }
  if (!(value >= 0.0F)) {
    return 0;
  }
  return value > static_cast<float>(max_gain) ? max_gain : static_cast<std::uint16_t>(value);
}

}  // namespace vexa::settings
