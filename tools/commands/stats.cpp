#include <algorithm>

#include "camera.hpp"
#include "camera_settings.hpp"
#include "commands.hpp"
#include "frame_stream.hpp"
#include "names.hpp"
#include "percentiles.hpp"
#include "progress.hpp"
#include "report.hpp"
#include "system.hpp"
#include "text.hpp"
#include "watch.hpp"

namespace vexa::tool {
namespace {

/** Collects the intervals between frames whose numbers follow each other. */
class IntervalCollector {
 public:
  /** @param expected how many frames to make room for. */
  explicit IntervalCollector(std::size_t expected) { intervals_.reserve(expected); }

  bool operator()(const FrameView& frame) {
    if (frame.consecutive) {
      intervals_.push_back(frame.arrival - previous_);
    }
    previous_ = frame.arrival;
    return true;
  }

  /** The intervals; of use when the stream has stopped. */
  const std::vector<Nanoseconds>& intervals() const { return intervals_; }

 private:
  std::vector<Nanoseconds> intervals_;
  Clock::time_point previous_;
};

Fact MicrosecondFact(const char* key, const char* label, Nanoseconds time) {
  const double microseconds = std::chrono::duration<double, std::micro>(time).count();
  return {key, label, microseconds, Format("%.1f us", microseconds)};
}

Section StreamSection(StreamEnd end, const StreamCounts& counts) {
  Json errors = Json::array();
  std::string text;
  for (const auto& [code, count] : counts.errors) {
    errors.push_back({{"code", code}, {"text", DescribeCode(code)}, {"count", count}});
    text +=
        (text.empty() ? "" : ", ") + DescribeCode(code) + Format(": %ju", std::uintmax_t{count});
  }
  const auto number = [](std::uint64_t value) { return Format("%ju", std::uintmax_t{value}); };
  return {
      "stream",
      "Stream",
      {{"end", "Ended", StreamEndName(end), StreamEndName(end)},
       {"seconds", "First to last frame", counts.Seconds(), Format("%.3f s", counts.Seconds())},
       {"frames", "Frames", counts.frames, number(counts.frames)},
       {"frames_per_second", "Frame rate", counts.FramesPerSecond(),
        Format("%.3f frames/s", counts.FramesPerSecond())},
       {"megabytes_per_second", "Data rate", counts.MegabytesPerSecond(),
        Format("%.3f MB/s", counts.MegabytesPerSecond())},
       {"lost_frames", "Lost frames", counts.lost, number(counts.lost)},
       {"frame_number_restarts", "Frame number restarts", counts.restarts, number(counts.restarts)},
       {"receive_errors", "Receive errors", errors, text.empty() ? "none" : text}}};
}

Section IntervalSection(const std::vector<Nanoseconds>& intervals) {
  Section section{"callback_interval", "Interval between callbacks", {}};
  const std::optional<Jitter> jitter = JitterOf(intervals);
  const std::size_t count = jitter ? jitter->count : 0;
  section.facts.push_back({"count", "Intervals", count, Format("%zu", count)});
  if (jitter) {
    section.facts.push_back(MicrosecondFact("median_us", "Median", jitter->median));
    section.facts.push_back(MicrosecondFact("deviation_p50_us", "Deviation, 50 %", jitter->p50));
    section.facts.push_back(MicrosecondFact("deviation_p90_us", "Deviation, 90 %", jitter->p90));
    section.facts.push_back(MicrosecondFact("deviation_p99_us", "Deviation, 99 %", jitter->p99));
    section.facts.push_back(MicrosecondFact("deviation_max_us", "Deviation, largest", jitter->max));
  }
  return section;
}

Section CpuSection(double cpu_s, double wall_s, const StreamCounts& counts) {
  const double percent = wall_s > 0 ? 100 * cpu_s / wall_s : 0;
  Fact per_frame{"ms_per_frame", "Per frame", nullptr, "no frames"};
  if (counts.frames > 0) {
    const double milliseconds = cpu_s * 1e3 / static_cast<double>(counts.frames);
    per_frame.value = milliseconds;
    per_frame.text = Format("%.3f ms", milliseconds);
  }
  return {"cpu",
          "CPU time of the process",
          {{"seconds", "Total", cpu_s, Format("%.3f s", cpu_s)},
           {"percent_of_one_core", "Load", percent, Format("%.1f %% of one core", percent)},
           per_frame}};
}

std::size_t ExpectedFrames(double seconds, double frame_rate) {
  constexpr double kMargin = 1.5;
  constexpr double kMost = 4e6;  // the list grows where there are more
  return static_cast<std::size_t>(std::min(seconds * frame_rate * kMargin + 100, kMost));
}

}  // namespace

ExitCode RunStats(const StatsOptions& options) {
  const Camera camera = OpenCamera(options.stream.camera);
  PrintNotes(ApplySettings(camera, options.stream.settings));
  const FrameSettings settings = ReadFrameSettings(camera);
  const double timeout_s = FrameTimeout(options.stream, settings);

  IntervalCollector collector(ExpectedFrames(options.seconds, settings.frame_rate));
  FrameStream stream(camera, settings.format, std::ref(collector));
  Progress progress(options.stream.quiet);
  const double cpu_before = ProcessCpuSeconds();
  stream.Start();
  const StreamEnd end =
      WatchStream(stream, progress,
                  {.timeout_s = timeout_s, .run_s = options.seconds, .failed = {}, .status = {}});
  stream.Stop();
  const double cpu_s = ProcessCpuSeconds() - cpu_before;
  const double wall_s = std::chrono::duration<double>(Clock::now() - stream.start_time()).count();
  progress.Finish();
  const StreamCounts counts = stream.Counts();
  const std::vector<Section> sections = {StreamSection(end, counts),
                                         IntervalSection(collector.intervals()),
                                         CpuSection(cpu_s, wall_s, counts)};
  Print(options.json ? ToJson(sections) : ToText(sections));
  static_cast<void>(Write(Stream::kError, DescribeProblems(end, counts, settings, timeout_s)));
  return ExitCodeOf(end, counts);
}

}  // namespace vexa::tool
