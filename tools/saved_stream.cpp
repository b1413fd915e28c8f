#include "saved_stream.hpp"

#include <algorithm>
#include <atomic>
#include <utility>

#include "names.hpp"
#include "progress.hpp"
#include "system.hpp"
#include "text.hpp"

namespace vexa::tool {
namespace {

/** Memory for frames that wait to be saved; also a 32-bit program has that much. */
constexpr std::uint64_t kPoolBytes = 256u << 20;
constexpr std::uint64_t kLeastBuffers = 4;

/** Copies the frames that come into the pool, until it has all of them. */
class FrameCollector {
 public:
  FrameCollector(FramePool& pool, std::size_t frame_bytes, std::uint32_t wanted)
      : pool_(pool), frame_bytes_(frame_bytes), wanted_(wanted) {}

  /** Takes a frame. @return false when it was the last one wanted. */
  bool operator()(const FrameView& frame) {
    if (frame.pixels.size() > frame_bytes_) {
      throw ToolError(ExitCode::kFailure,
                      Format("a frame of %u x %u pixels came, which is larger than announced",
                             frame.width, frame.height),
                      "The camera's settings were changed meanwhile; try again.");
    }
    const bool stored = pool_.Put({.index = stored_ + 1,
                                   .width = frame.width,
                                   .height = frame.height,
                                   .color_array = frame.color_array},
                                  frame.pixels);
    stored_ += stored ? 1 : 0;
    unsaved_ += stored ? 0 : 1;
    return stored_ < wanted_;
  }

  /** Frames that found no free buffer. */
  std::uint32_t unsaved() const { return unsaved_; }

 private:
  FramePool& pool_;
  const std::size_t frame_bytes_;
  const std::uint32_t wanted_;
  std::uint32_t stored_ = 0;
  std::atomic<std::uint32_t> unsaved_{0};
};

std::size_t BufferCount(std::uint64_t frame_bytes, std::uint32_t frames) {
  const std::uint64_t fitting =
      std::max(kLeastBuffers, kPoolBytes / std::max<std::uint64_t>(frame_bytes, 1));
  return static_cast<std::size_t>(std::min<std::uint64_t>(fitting, frames));
}

}  // namespace

SavedStream SaveStream(const Camera& camera, const FrameSettings& settings,
                       const StreamOptions& options, std::uint32_t frames, ImageWriter::Save save) {
  const double timeout_s = FrameTimeout(options, settings);
  const std::size_t frame_bytes =
      ImageMemory(settings.region.width, settings.region.height, settings.format);
  FramePool pool(BufferCount(frame_bytes, frames), frame_bytes);
  ImageWriter writer(pool, std::move(save));
  FrameCollector collector(pool, frame_bytes, frames);
  FrameStream stream(camera, settings.format, std::ref(collector));
  Progress progress(options.quiet);
  stream.Start();
  const StreamEnd end =
      WatchStream(stream, progress,
                  {.timeout_s = timeout_s,
                   .run_s = std::nullopt,
                   .failed = [&] { return writer.failed(); },
                   .status = [&] { return Format("saved %u/%u", writer.saved(), frames); }});
  progress.Finish();
  stream.Stop();
  writer.Finish();
  return {end, stream.Counts(), writer.saved(), collector.unsaved()};
}

std::string Summary(const SavedStream& stream, std::uint32_t frames, const OutputPattern& pattern) {
  std::string text = Format("Saved %u of %u frame(s)", stream.saved, frames);
  if (stream.saved > 0) {
    text += ": " + Utf8FromPath(pattern.PathOf(1));
    text += stream.saved > 1 ? " to " + Utf8FromPath(pattern.PathOf(stream.saved)) : "";
  }
  text += "\n";
  const StreamCounts& counts = stream.counts;
  if (counts.frames > 1) {
    text +=
        Format("%.2f frames/s, %.2f MB/s, ", counts.FramesPerSecond(), counts.MegabytesPerSecond());
  }
  return text + Format("%ju lost, %ju receive error(s)\n", std::uintmax_t{counts.lost},
                       std::uintmax_t{counts.ErrorTotal()});
}

ExitCode Conclude(const SavedStream& stream, const FrameSettings& settings,
                  const StreamOptions& options) {
  std::string problems =
      DescribeProblems(stream.end, stream.counts, settings, FrameTimeout(options, settings));
  ExitCode code = ExitCodeOf(stream.end, stream.counts);
  if (stream.unsaved > 0) {
    problems += Format(
        "vexa: %u frame(s) between the saved ones were not saved: saving is slower than the "
        "stream\n  Use a faster disk, a smaller --roi, or a slower frame rate.\n",
        stream.unsaved);
    code = code == ExitCode::kSuccess ? ExitCode::kIncomplete : code;
  }
  if (stream.end == StreamEnd::kInterrupted) {
    problems += "vexa: interrupted\n";
    code = ExitCode::kFailure;
  }
  static_cast<void>(Write(Stream::kError, problems));
  return code;
}

}  // namespace vexa::tool
