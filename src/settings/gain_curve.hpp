/// \file
/// Gain setting values and decibels.
#pragma once

#include <cstdint>

#include "device/identity.hpp"

namespace vexa::settings {

/// How a model's amplifier turns a setting value into a gain.
enum class GainCurve {
  kLinear,        // 0.132 dB per step from -2.36 dB
  kLinearOffset,  // 0.07038 dB per step from 11.01 dB
  kTwoSegment,    // linear amplification in two segments
};

/// The curve of a model: its capability mask names one; naming none or both means kLinear.
GainCurve GainCurveOf(const device::CameraIdentity& identity);

/// Decibels of a setting value.
float GainToDecibel(GainCurve curve, std::uint16_t gain);

/// Setting value of a decibel figure, truncated and limited to 0 ... max_gain. Converting a value
/// to decibels and back may give one less than the value, by rounding to single precision.
std::uint16_t DecibelToGain(GainCurve curve, float decibel, std::uint16_t max_gain);

}  // namespace vexa::settings
