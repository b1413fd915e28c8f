/** Streaming a number of frames from a camera to files. */
#pragma once

#include <cstdint>
#include <string>

#include "camera.hpp"
#include "camera_settings.hpp"
#include "frame_stream.hpp"
#include "image_writer.hpp"
#include "options.hpp"
#include "output_pattern.hpp"
#include "watch.hpp"

namespace vexa::tool {

/** How such a stream went. */
struct SavedStream {
  StreamEnd end = StreamEnd::kDone;
  StreamCounts counts;
  std::uint32_t saved = 0;
  std::uint32_t unsaved = 0; /**< Frames that found no free buffer. */
};

/** Streams until `frames` frames are saved or the stream has come to another end, showing progress.
 *  @param save gets the frames in their order, on a thread of its own.
 *  @throws what `save` threw; ApiError, ToolError. */
SavedStream SaveStream(const Camera& camera, const FrameSettings& settings,
                       const StreamOptions& options, std::uint32_t frames, ImageWriter::Save save);

/** What was saved and how fast the frames came, for people. @param frames as asked for. */
std::string Summary(const SavedStream& stream, std::uint32_t frames, const OutputPattern& pattern);

/** Writes what went wrong to the standard error. @return the exit code. */
ExitCode Conclude(const SavedStream& stream, const FrameSettings& settings,
                  const StreamOptions& options);

}  // namespace vexa::tool
