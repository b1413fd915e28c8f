#include <algorithm>
#include <atomic>

#include "camera.hpp"
#include "camera_settings.hpp"
#include "commands.hpp"
#include "frame_pool.hpp"
#include "frame_stream.hpp"
#include "image_writer.hpp"
#include "names.hpp"
#include "output_pattern.hpp"
#include "progress.hpp"
#include "system.hpp"
#include "text.hpp"
#include "watch.hpp"

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

std::string Summary(const CaptureOptions& options, const OutputPattern& pattern,
                    std::uint32_t saved, const StreamCounts& counts) {
  std::string text = Format("Saved %u of %u frame(s)", saved, options.frames);
  if (saved > 0) {
    text += ": " + Utf8FromPath(pattern.PathOf(1));
    text += saved > 1 ? " to " + Utf8FromPath(pattern.PathOf(saved)) : "";
  }
  text += "\n";
  if (counts.frames > 1) {
    text +=
        Format("%.2f frames/s, %.2f MB/s, ", counts.FramesPerSecond(), counts.MegabytesPerSecond());
  }
  return text + Format("%ju lost, %ju receive error(s)\n", std::uintmax_t{counts.lost},
                       std::uintmax_t{counts.ErrorTotal()});
}

std::size_t BufferCount(std::uint64_t frame_bytes, std::uint32_t frames) {
  const std::uint64_t fitting =
      std::max(kLeastBuffers, kPoolBytes / std::max<std::uint64_t>(frame_bytes, 1));
  return static_cast<std::size_t>(std::min<std::uint64_t>(fitting, frames));
}

/** The exit code, with what went wrong on the standard error. */
ExitCode Conclude(StreamEnd end, const StreamCounts& counts, const FrameSettings& settings,
                  double timeout_s, std::uint32_t unsaved) {
  std::string problems = DescribeProblems(end, counts, settings, timeout_s);
  ExitCode code = ExitCodeOf(end, counts);
  if (unsaved > 0) {
    problems += Format(
        "vexa: %u frame(s) between the saved ones were not saved: the disk is too "
        "slow\n  Use a faster disk, a smaller --roi, or a slower frame rate.\n",
        unsaved);
    code = code == ExitCode::kSuccess ? ExitCode::kIncomplete : code;
  }
  if (end == StreamEnd::kInterrupted) {
    problems += "vexa: interrupted\n";
    code = ExitCode::kFailure;
  }
  static_cast<void>(Write(Stream::kError, problems));
  return code;
}

}  // namespace

ExitCode RunCapture(const CaptureOptions& options) {
  const OutputPattern pattern = CheckedOutput(options.output, options.frames, options.overwrite);
  if (const auto& format = options.stream.settings.format) {
    // What cannot be saved is refused before the camera is changed; the sensor plays no part in it.
    static_cast<void>(PlanSaving(pattern.type(), *format, VEXA_COLOR_ARRAY_RGGB, options.method));
  }
  const Camera camera = OpenCamera(options.stream.camera);
  PrintNotes(ApplySettings(camera, options.stream.settings));
  const FrameSettings settings = ReadFrameSettings(camera);
  const SavePlan plan =
      PlanSaving(pattern.type(), settings.format, settings.color_array, options.method);
  const double timeout_s = FrameTimeout(options.stream, settings);

  const std::uint64_t frame_bytes =
      ImageBytes(settings.region.width, settings.region.height, settings.format);
  FramePool pool(BufferCount(frame_bytes, options.frames), static_cast<std::size_t>(frame_bytes));
  ImageWriter writer(pool, pattern, plan);
  FrameCollector collector(pool, static_cast<std::size_t>(frame_bytes), options.frames);
  FrameStream stream(camera, settings.format, std::ref(collector));
  Progress progress(options.stream.quiet);
  stream.Start();
  const StreamEnd end = WatchStream(
      stream, progress,
      {.timeout_s = timeout_s,
       .run_s = std::nullopt,
       .failed = [&] { return writer.failed(); },
       .status = [&] { return Format("saved %u/%u", writer.saved(), options.frames); }});
  progress.Finish();
  stream.Stop();
  writer.Finish();
  const StreamCounts counts = stream.Counts();
  if (!options.stream.quiet) {
    Print(Summary(options, pattern, writer.saved(), counts));
  }
  return Conclude(end, counts, settings, timeout_s, collector.unsaved());
}

}  // namespace vexa::tool
