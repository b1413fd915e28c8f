#include "frame_grabber.hpp"

#include <string>

#include "frame_stream.hpp"
#include "names.hpp"
#include "progress.hpp"
#include "text.hpp"
#include "watch.hpp"

namespace vexa::tool {
namespace {

/** In free run the sensor may have begun to expose a frame, and to read another out, before the
 * latest settings came. */
constexpr std::uint64_t kSettlingFrames = 2;

ToolError NoFrame(StreamEnd end, const StreamCounts& counts, const FrameSettings& settings,
                  double timeout_s) {
  if (end == StreamEnd::kInterrupted) {
    return {ExitCode::kFailure, "interrupted"};
  }
  // The sentences are meant for the standard error; as an exception's message they go without the
  // program's name before and the line's end behind.
  std::string text = DescribeProblems(end, counts, settings, timeout_s);
  const std::string name = "vexa: ";
  text.erase(0, text.starts_with(name) ? name.size() : 0);
  text.erase(text.find_last_not_of('\n') + 1);
  return {end == StreamEnd::kDeviceGone ? ExitCode::kFailure : ExitCode::kIncomplete, text};
}

}  // namespace

StoredFrame FrameGrabber::Grab() const {
  StoredFrame grabbed;
  const bool free_run = (settings_.trigger_mode & 0x3u) == 0;
  std::uint64_t to_skip = free_run ? kSettlingFrames : 0;
  FrameStream stream(camera_, settings_.format, [&](const FrameView& frame) {
    if (to_skip > 0) {
      to_skip -= 1;
      return true;
    }
    if (frame.width != settings_.region.width || frame.height != settings_.region.height) {
      throw ToolError(ExitCode::kFailure,
                      Format("a frame of %u x %u pixels came in place of %u x %u", frame.width,
                             frame.height, settings_.region.width, settings_.region.height),
                      "The camera's settings were changed meanwhile; try again.");
    }
    grabbed.description = {
        .index = 1, .width = frame.width, .height = frame.height, .color_array = frame.color_array};
    grabbed.size = frame.pixels.size();
    grabbed.pixels.assign(frame.pixels.begin(), frame.pixels.end());
    return false;
  });
  Progress no_progress(true);
  stream.Start();
  const StreamEnd end =
      WatchStream(stream, no_progress,
                  {.timeout_s = timeout_s_, .run_s = std::nullopt, .failed = {}, .status = {}});
  stream.Stop();
  if (end != StreamEnd::kDone) {
    throw NoFrame(end, stream.Counts(), settings_, timeout_s_);
  }
  return grabbed;
}

}  // namespace vexa::tool
