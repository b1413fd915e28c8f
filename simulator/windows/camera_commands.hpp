/// \file
/// The commands that are functions of a camera.
#pragma once

#include "platform/status.hpp"
#include "simulator/twin_camera.hpp"
#include "simulator/windows/archive.hpp"
#include "simulator/windows/commands.hpp"

namespace vexa::simulator {

/// Takes the arguments from `in`, calls the camera, and puts the result into `out`. 1 for a number
/// that is no such command.
Status ExecuteOnCamera(Command command, TwinCamera& camera, Reader& in, Writer* out);

}  // namespace vexa::simulator
