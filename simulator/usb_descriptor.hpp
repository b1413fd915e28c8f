/// \file
/// The USB configuration descriptor of a camera.
#pragma once

#include <cstdint>
#include <vector>

#include "simulator/camera_config.hpp"

namespace vexa::simulator {

/// Configuration, interface and endpoint descriptors (USB 2.0 chapter 9.6, USB 3.2 chapter 9.6.7
/// for the endpoint companions of a SuperSpeed link), or the configuration's override.
std::vector<std::uint8_t> ConfigurationDescriptor(const CameraConfig& config);

}  // namespace vexa::simulator
