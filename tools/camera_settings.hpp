/** Changing a camera's settings as the command line asks, and what is in force then. */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "camera.hpp"
#include "options.hpp"

namespace vexa::tool {

/** What determines the frames of the next transfer. */
struct FrameSettings {
  std::uint16_t scan_mode = 0;
  Region region;
  std::uint32_t format = 0; /**< VEXA_TRANSFER_ code. */
  std::uint16_t color_array = 0;
  double frame_rate = 0; /**< Frames per second as the camera's timing has it; 0 unknown. */
  std::uint32_t trigger_mode = 0; /**< As Vexa_GetTriggerMode(). */
};

/** Sets what is given.
 *  @return notes about values that the camera took differently from what was asked.
 *  @throws ApiError, with advice that names what the camera accepts. */
std::vector<std::string> ApplySettings(const Camera& camera, const SettingOptions& settings);

/** Reads what is in force. @throws ApiError. */
FrameSettings ReadFrameSettings(const Camera& camera);

/** How long to wait for a frame, in seconds; 0 waits without limit. */
double FrameTimeout(const StreamOptions& options, const FrameSettings& settings);

}  // namespace vexa::tool
