/// \file
/// The digital twin, whole: configuration, cameras and the bus that they are plugged into.
#pragma once

#include "simulator/camera_bus.hpp"     // IWYU pragma: export
#include "simulator/camera_config.hpp"  // IWYU pragma: export
#include "simulator/picture.hpp"        // IWYU pragma: export
#include "simulator/twin_camera.hpp"    // IWYU pragma: export
