/** Which steps which frames can take. */
#pragma once

#include <VexaAPI.h>

#include <cstdint>

#include "options.hpp"
#include "output_pattern.hpp"

namespace vexa::tool {

/** What is known about the frames that will come. */
struct FrameKind {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t format = 0; /**< VEXA_TRANSFER_ code. */
  std::uint16_t color_array = 0;
};

/** Whether frames of a transfer format hold the sensor's samples, not colours. */
bool IsRaw(std::uint32_t format);

/** Whether frames are raw and of a colour sensor. */
bool IsBayer(const FrameKind& kind);

/** Whether these steps need an open camera, which keeps their settings. */
bool NeedCamera(const StepOptions& options);

/** Checks that frames can take the steps on the way to a file of some type.
 *  @throws ToolError (kUsage), which names the option that does not fit. */
void CheckSteps(const StepOptions& options, const FrameKind& kind, FileType type);

}  // namespace vexa::tool
