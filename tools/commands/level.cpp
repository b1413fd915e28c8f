#include <algorithm>
#include <cmath>

#include "camera.hpp"
#include "camera_settings.hpp"
#include "commands.hpp"
#include "frame_stream.hpp"
#include "names.hpp"
#include "progress.hpp"
#include "report.hpp"
#include "system.hpp"
#include "text.hpp"
#include "watch.hpp"

namespace vexa::tool {
namespace {

/** Exposure and gain of a camera. */
struct Operation {
  DWORD exposure_clocks = 0; /**< 0 stands for one full frame. */
  float exposure_s = 0;
  WORD gain = 0;
  float gain_db = 0;
};

Operation ReadOperation(const Camera& camera) {
  Operation now;
  camera.Call("Vexa_GetExposureClock", Vexa_GetExposureClock, &now.exposure_clocks);
  camera.Call("Vexa_GetExposureTimeFromClock", Vexa_GetExposureTimeFromClock, now.exposure_clocks,
              &now.exposure_s);
  camera.Call("Vexa_GetGain", Vexa_GetGain, &now.gain);
  camera.Call("Vexa_GetGainDBFromSettingValue", Vexa_GetGainDBFromSettingValue, DWORD{now.gain},
              &now.gain_db);
  return now;
}

/** Mean of an image's samples on the scale of 0 to 255. */
double MeanLevel(std::span<const BYTE> pixels, std::uint32_t format) {
  const std::uint32_t deep = DeepOutputFormat(format);
  const std::size_t sample_bytes = deep == 0 ? 1 : 2;
  const std::size_t samples = pixels.size() / sample_bytes;
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < samples; ++i) {
    sum += deep == 0 ? pixels[i] : pixels[2 * i] | std::uint32_t{pixels[2 * i + 1]} << 8;
  }
  const double mean =
      static_cast<double>(sum) / static_cast<double>(std::max<std::size_t>(samples, 1));
  return deep == 0 ? mean : std::ldexp(mean, 8 - DeepSampleBits(deep));
}

void CheckFormat(std::uint32_t format) {
  if (!IsEightBit(format) && DeepOutputFormat(format) == 0 && format != VEXA_TRANSFER_BGR24) {
    throw ToolError(ExitCode::kUsage,
                    "the brightness of " + TransferFormatNames(format) + " frames is not measured",
                    "Set a format of 8 to 16 bits per pixel or bgr24 with --format.");
  }
}

/** What one frame showed, and what was done about it. */
struct Step {
  std::uint32_t frame = 0;
  std::uint32_t level = 0;
  Operation operation; /**< With which the frame was taken. */
  DWORD changed = 0;   /**< VEXA_ALC_ bits. */
};

/** Runs the level control on the frames of a stream, until it changes nothing. */
class LevelRun {
 public:
  LevelRun(const Camera& camera, const LevelOptions& options, std::uint32_t format)
      : camera_(camera), options_(options), format_(format) {}

  bool operator()(const FrameView& frame) {
    if (to_skip_ > 0) {
      --to_skip_;
      return true;
    }
    Step step{.frame = frame.number,
              .level = static_cast<std::uint32_t>(std::lround(MeanLevel(frame.pixels, format_))),
              .operation = ReadOperation(camera_)};
    camera_.Call("Vexa_ALC", Vexa_ALC, DWORD{step.level}, &step.changed);
    steps_.push_back(step);
    to_skip_ = options_.skip;
    return step.changed != 0 && steps_.size() < options_.max_steps;
  }

  /** The steps; of use when the stream has stopped. */
  const std::vector<Step>& steps() const { return steps_; }

 private:
  const Camera& camera_;
  const LevelOptions& options_;
  const std::uint32_t format_;
  std::uint32_t to_skip_ = 0;
  std::vector<Step> steps_;
};

DWORD ClocksOf(const Camera& camera, double milliseconds) {
  DWORD clocks = 0;
  camera.Call("Vexa_GetExposureClockFromTime", Vexa_GetExposureClockFromTime,
              static_cast<float>(milliseconds * 1e-3), &clocks);
  return clocks;
}

void ApplyLevelOptions(const Camera& camera, const LevelOptions& options) {
  if (options.gain && Vexa_SetGain(camera.handle(), *options.gain) == 0) {
    const DWORD code = GetLastError();
    WORD highest = 0;
    camera.Call("Vexa_GetMaxGain", Vexa_GetMaxGain, &highest);
    throw ApiError(Format("Vexa_SetGain(%u)", *options.gain), code,
                   Format("The camera's gain values are 0 to %u.", highest));
  }
  if (options.min_gain) {
    camera.Call("Vexa_SetAGCMinGain", Vexa_SetAGCMinGain, DWORD{*options.min_gain});
  }
  if (options.max_gain) {
    camera.Call("Vexa_SetAGCMaxGain", Vexa_SetAGCMaxGain, DWORD{*options.max_gain});
  }
  if (options.min_exposure_ms) {
    camera.Call("Vexa_SetAEMinExposureClock", Vexa_SetAEMinExposureClock,
                ClocksOf(camera, *options.min_exposure_ms));
  }
  if (options.max_exposure_ms) {
    camera.Call("Vexa_SetAEMaxExposureClock", Vexa_SetAEMaxExposureClock,
                ClocksOf(camera, *options.max_exposure_ms));
  }
  camera.Call("Vexa_SetALCTargetLevel", Vexa_SetALCTargetLevel, DWORD{options.target});
  camera.Call("Vexa_SetALCMode", Vexa_SetALCMode, DWORD{options.mode});
}

std::string ChangeText(DWORD changed) {
  std::string text = (changed & VEXA_ALC_EXPOSURE_CHANGED) != 0 ? "exposure" : "";
  if ((changed & VEXA_ALC_GAIN_CHANGED) != 0) {
    text += text.empty() ? "gain" : ", gain";
  }
  return text.empty() ? "-" : text;
}

std::string Table(const std::vector<Step>& steps) {
  std::vector<std::vector<std::string>> rows = {
      {"step", "frame", "level", "clocks", "ms", "gain", "dB", "changed"}};
  for (const Step& step : steps) {
    const Operation& with = step.operation;
    rows.push_back({Format("%zu", rows.size()), Format("%u", step.frame), Format("%u", step.level),
                    Format("%u", static_cast<unsigned>(with.exposure_clocks)),
                    Format("%.4g", static_cast<double>(with.exposure_s) * 1e3),
                    Format("%u", with.gain), Format("%.2f", static_cast<double>(with.gain_db)),
                    ChangeText(step.changed)});
  }
  return FormatTable(rows);
}

/** How the loop ended. */
struct Verdict {
  bool settled = false;
  std::string text;
  std::string advice;
};

Verdict Judge(const std::vector<Step>& steps, const LevelOptions& options) {
  constexpr int kBand = 10;  // around the target, in which Vexa_ALC() leaves the level alone
  if (steps.empty()) {
    return {false, "not settled: no frame came", ""};
  }
  const auto level = static_cast<int>(steps.back().level);
  const std::string where =
      Format(" after %zu step(s): level %d, target %u", steps.size(), level, options.target);
  if (steps.back().changed != 0) {
    return {false, "not settled" + where, "Try more steps with --max-steps."};
  }
  if (std::abs(level - static_cast<int>(options.target)) > kBand) {
    return {false, "at the limits, not settled" + where,
            "Widen the limits, choose another --mode, or change the light."};
  }
  return {true, "settled" + where, ""};
}

std::string Document(const std::vector<Step>& steps, const Verdict& verdict) {
  Json list = Json::array();
  for (const Step& step : steps) {
    list.push_back({{"frame", step.frame},
                    {"level", step.level},
                    {"exposure_clocks", step.operation.exposure_clocks},
                    {"exposure_ms", step.operation.exposure_s * 1e3},
                    {"gain", step.operation.gain},
                    {"gain_db", step.operation.gain_db},
                    {"exposure_changed", (step.changed & VEXA_ALC_EXPOSURE_CHANGED) != 0},
                    {"gain_changed", (step.changed & VEXA_ALC_GAIN_CHANGED) != 0}});
  }
  return Dump({{"settled", verdict.settled}, {"verdict", verdict.text}, {"steps", list}});
}

}  // namespace

ExitCode RunLevel(const LevelOptions& options) {
  const Camera camera = OpenCamera(options.stream.camera);
  PrintNotes(ApplySettings(camera, options.stream.settings));
  const FrameSettings settings = ReadFrameSettings(camera);
  CheckFormat(settings.format);
  ApplyLevelOptions(camera, options);
  const double timeout_s = FrameTimeout(options.stream, settings);

  LevelRun run(camera, options, settings.format);
  FrameStream stream(camera, settings.format, std::ref(run));
  Progress progress(options.stream.quiet);
  stream.Start();
  const StreamEnd end =
      WatchStream(stream, progress,
                  {.timeout_s = timeout_s, .run_s = std::nullopt, .failed = {}, .status = {}});
  stream.Stop();
  progress.Finish();

  const Verdict verdict = Judge(run.steps(), options);
  Print(options.json ? Document(run.steps(), verdict) : Table(run.steps()) + verdict.text + "\n");
  if (end == StreamEnd::kInterrupted) {
    static_cast<void>(Write(Stream::kError, "vexa: interrupted\n"));
    return ExitCode::kFailure;
  }
  if (end != StreamEnd::kDone) {
    const StreamCounts counts = stream.Counts();
    static_cast<void>(Write(Stream::kError, DescribeProblems(end, counts, settings, timeout_s)));
    return ExitCodeOf(end, counts);
  }
  if (!verdict.settled) {
    throw ToolError(ExitCode::kIncomplete, "the level has not settled", verdict.advice);
  }
  return ExitCode::kSuccess;  // lost frames do not matter
}

}  // namespace vexa::tool
