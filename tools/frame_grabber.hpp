/** Single frames on demand. */
#pragma once

#include "camera.hpp"
#include "camera_settings.hpp"
#include "frame_pool.hpp"

namespace vexa::tool {

/** Takes single frames; the transfer runs only meanwhile, so that settings can be changed in
 * between. */
class FrameGrabber {
 public:
  /** @param camera    outlives the grabber. @param settings in force.
   *  @param timeout_s longest wait for a frame in seconds; 0 waits without limit. */
  FrameGrabber(const Camera& camera, const FrameSettings& settings, double timeout_s)
      : camera_(camera), settings_(settings), timeout_s_(timeout_s) {}

  /** A frame that was exposed with the present settings.
   *  @throws ToolError, with what kept the frame from coming. */
  StoredFrame Grab() const;

 private:
  const Camera& camera_;
  const FrameSettings settings_;
  const double timeout_s_;
};

}  // namespace vexa::tool
