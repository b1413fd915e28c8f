#include <algorithm>
#include <optional>

#include "camera.hpp"
#include "camera_settings.hpp"
#include "commands.hpp"
#include "frame_grabber.hpp"
#include "image_writer.hpp"
#include "names.hpp"
#include "output_pattern.hpp"
#include "report.hpp"
#include "text.hpp"
#include "white_balance.hpp"

namespace vexa::tool {
namespace {

constexpr DWORD kHardwareWhiteBalance = 24;
constexpr DWORD kDefectPixelCorrection = 59;
constexpr DWORD kDefectsOff = 0;
constexpr DWORD kDefectsOn = 1;
constexpr DWORD kUnused = 0xFFFF;

bool HasFunction(const Camera& camera, DWORD function) {
  BOOL present = FALSE;
  camera.Call("Vexa_HasFunction", Vexa_HasFunction, function, &present);
  return present != FALSE;
}

/** What is calibrated. */
struct Tasks {
  bool white_balance = false;
  bool white_balance_in_camera = false;
  bool defects = false;
};

Tasks ChooseTasks(const Camera& camera, const CalibrateOptions& options,
                  const FrameSettings& settings) {
  const bool colour = settings.color_array != VEXA_COLOR_ARRAY_MONO;
  const bool table = HasFunction(camera, kDefectPixelCorrection);
  if (options.white_balance && !colour) {
    throw ToolError(ExitCode::kUsage, "the camera is monochrome and has no white balance",
                    "Leave --white-balance out, or choose another --camera.");
  }
  if (options.defects && !table) {
    throw ToolError(ExitCode::kUsage, "the camera has no defect pixel correction (function 59)",
                    "Leave --defects out, or choose another --camera.");
  }
  const bool all = !options.white_balance && !options.defects;
  const Tasks tasks{.white_balance = colour && (options.white_balance || all),
                    .white_balance_in_camera = HasFunction(camera, kHardwareWhiteBalance),
                    .defects = table && (options.defects || all)};
  if (!tasks.white_balance && !tasks.defects) {
    throw ToolError(ExitCode::kUsage,
                    "the camera is monochrome and has no defect pixel correction (function 59): "
                    "there is nothing to calibrate",
                    "Choose another --camera.");
  }
  if (all && !colour) {
    PrintNotes({"the camera is monochrome: no white balance"});
  }
  if (all && !table) {
    PrintNotes({"the camera has no defect pixel correction (function 59)"});
  }
  return tasks;
}

void SetGains(const Camera& camera, const Gains& gains) {
  camera.Call("Vexa_SetWhiteBalanceGain", Vexa_SetWhiteBalanceGain, gains.red, gains.green_red,
              gains.green_blue, gains.blue);
}

/** Has the library find the gains of the host from a frame. */
Gains FindHostGains(const Camera& camera, StoredFrame frame) {
  Gains gains;
  camera.Call("Vexa_SetWhiteBalanceMode", Vexa_SetWhiteBalanceMode, DWORD{VEXA_WHITE_BALANCE_ONCE});
  camera.Call("Vexa_WhiteBalance", Vexa_WhiteBalance, frame.pixels.data());
  camera.Call("Vexa_GetWhiteBalanceGain", Vexa_GetWhiteBalanceGain, &gains.red, &gains.green_red,
              &gains.green_blue, &gains.blue);
  return gains;
}

/** Finds gains of the camera's own. */
Gains FindCameraGains(const Camera& camera, const FrameGrabber& grabber, const Colours& colours) {
  return FindGains(colours, [&](const Gains& gains) {
    SetGains(camera, gains);
    return MeasureColours(grabber.Grab());
  });
}

struct Position {
  DWORD x = 0;
  DWORD y = 0;
};

/** Gives the camera another exposure for as long as it lives. */
class ExposureChange {
 public:
  ExposureChange(const Camera& camera, const std::optional<double>& milliseconds)
      : camera_(camera) {
    camera.Call("Vexa_GetExposureClock", Vexa_GetExposureClock, &before_);
    DWORD clock = 1;  // the shortest
    if (milliseconds) {
      camera.Call("Vexa_GetExposureClockFromTime", Vexa_GetExposureClockFromTime,
                  static_cast<float>(*milliseconds * 1e-3), &clock);
    }
    camera.Call("Vexa_SetExposureClock", Vexa_SetExposureClock, clock);
  }
  ExposureChange(const ExposureChange&) = delete;
  ExposureChange& operator=(const ExposureChange&) = delete;
  /** Whatever else has failed, what was is tried. */
  ~ExposureChange() { static_cast<void>(Vexa_SetExposureClock(camera_.handle(), before_)); }

 private:
  const Camera& camera_;
  DWORD before_ = 0;
};

std::vector<Position> ReadDefectTable(const Camera& camera) {
  WORD count = 0;
  camera.Call("Vexa_GetEnableDefectPixelCorrectionCount", Vexa_GetEnableDefectPixelCorrectionCount,
              &count);
  std::vector<Position> table;
  for (DWORD i = 0; i < count; ++i) {
    Position position;
    camera.Call("Vexa_GetDefectPixelCorrectionPosition", Vexa_GetDefectPixelCorrectionPosition, i,
                &position.x, &position.y);
    if (position.x != kUnused || position.y != kUnused) {
      table.push_back(position);
    }
  }
  return table;
}

/** Loads the camera's table from a dark frame and switches the correction on. */
std::vector<Position> FindDefects(const Camera& camera, const FrameGrabber& grabber,
                                  const CalibrateOptions& options) {
  StoredFrame dark;
  {
    const ExposureChange change(camera, options.dark_exposure_ms);
    dark = grabber.Grab();
  }
  WORD capacity = 0;
  camera.Call("Vexa_GetEnableDefectPixelCorrectionCount", Vexa_GetEnableDefectPixelCorrectionCount,
              &capacity);
  const auto bright = std::count_if(dark.pixels.begin(), dark.pixels.end(),
                                    [&](BYTE level) { return level >= options.threshold; });
  if (bright > capacity) {
    throw ToolError(ExitCode::kFailure,
                    Format("%ju pixels of the dark frame reach the level %u, more than the %u that "
                           "the camera's table holds; the table stays as it is",
                           static_cast<std::uintmax_t>(bright), options.threshold, capacity),
                    "Cover the lens, choose a shorter --dark-exposure-ms, or raise --threshold.");
  }
  camera.Call("Vexa_DetectDefectPixel", Vexa_DetectDefectPixel, dark.description.width,
              dark.description.height, static_cast<const BYTE*>(dark.pixels.data()),
              options.threshold);
  camera.Call("Vexa_SetDefectPixelCorrectionMode", Vexa_SetDefectPixelCorrectionMode, kDefectsOn);
  return ReadDefectTable(camera);
}

Fact ColoursFact(const char* key, const char* label, const Colours& colours) {
  return {key,
          label,
          {{"red", colours.red}, {"green", colours.green}, {"blue", colours.blue}},
          Format("%.1f red, %.1f green, %.1f blue", colours.red, colours.green, colours.blue)};
}

Section WhiteBalanceSection(const Tasks& tasks, const Gains& gains, const Colours& before,
                            const Colours& after) {
  return {"white_balance",
          "White balance",
          {{"in_camera", "Applied by", tasks.white_balance_in_camera,
            tasks.white_balance_in_camera ? "the camera" : "the host (Vexa_WhiteBalance)"},
           {"gains", "Gains (128 is unity)", JsonOf(gains),
            Format("%u red, %u and %u green, %u blue", gains.red, gains.green_red, gains.green_blue,
                   gains.blue)},
           ColoursFact("mean_before", "Mean level before", before),
           ColoursFact("mean_after", "Mean level after", after)}};
}

Section DefectSection(const std::vector<Position>& defects, std::uint32_t threshold) {
  Json positions = Json::array();
  std::string text;
  for (const Position& defect : defects) {
    positions.push_back({{"x", defect.x}, {"y", defect.y}});
    text += (text.empty() ? "" : "; ") +
            Format("%u, %u", static_cast<unsigned>(defect.x), static_cast<unsigned>(defect.y));
  }
  return {"defect_pixels",
          "Defect pixels",
          {{"threshold", "Least level in the dark", threshold, Format("%u", threshold)},
           {"count", "Found", defects.size(), Format("%zu", defects.size())},
           {"positions", "Column, row", positions, text.empty() ? "none" : text}}};
}

Section PictureSection(const OutputPattern& pattern) {
  const std::string before = Utf8FromPath(pattern.PathOf(1));
  const std::string after = Utf8FromPath(pattern.PathOf(2));
  return {"pictures",
          "Pictures",
          {{"before", "Before", before, before}, {"after", "After", after, after}}};
}

/** Undoes earlier corrections, so that the picture before is the sensor's own; what goes wrong
 * later brings them back. */
class FreshStart {
 public:
  FreshStart(const Camera& camera, const Tasks& tasks) : camera_(camera), tasks_(tasks) {
    if (tasks.white_balance) {
      camera.Call("Vexa_GetWhiteBalanceGain", Vexa_GetWhiteBalanceGain, &gains_.red,
                  &gains_.green_red, &gains_.green_blue, &gains_.blue);
      camera.Call("Vexa_GetWhiteBalanceMode", Vexa_GetWhiteBalanceMode, &balance_mode_);
      SetGains(camera, {});
      camera.Call("Vexa_SetWhiteBalanceMode", Vexa_SetWhiteBalanceMode,
                  DWORD{VEXA_WHITE_BALANCE_MANUAL});
    }
    if (tasks.defects) {
      camera.Call("Vexa_GetDefectPixelCorrectionMode", Vexa_GetDefectPixelCorrectionMode,
                  &defect_mode_);
      camera.Call("Vexa_SetDefectPixelCorrectionMode", Vexa_SetDefectPixelCorrectionMode,
                  kDefectsOff);
    }
  }
  FreshStart(const FreshStart&) = delete;
  FreshStart& operator=(const FreshStart&) = delete;
  /** Whatever else has failed, what was is tried. */
  ~FreshStart() {
    const HANDLE camera = camera_.handle();
    if (!done_ && tasks_.white_balance) {
      static_cast<void>(Vexa_SetWhiteBalanceGain(camera, gains_.red, gains_.green_red,
                                                 gains_.green_blue, gains_.blue));
      static_cast<void>(Vexa_SetWhiteBalanceMode(camera, balance_mode_));
    }
    if (!done_ && tasks_.defects) {
      static_cast<void>(Vexa_SetDefectPixelCorrectionMode(camera, defect_mode_));
    }
  }

  /** What was found stays. */
  void Done() { done_ = true; }

 private:
  const Camera& camera_;
  const Tasks tasks_;
  Gains gains_;
  BYTE balance_mode_ = 0;
  WORD defect_mode_ = 0;
  bool done_ = false;
};

SettingOptions CheckedSettings(const CalibrateOptions& options) {
  SettingOptions settings = options.stream.settings;
  if (settings.format && !IsEightBit(*settings.format)) {
    throw ToolError(ExitCode::kUsage, "calibration needs frames of 8 bits per pixel",
                    "Leave --format out.");
  }
  settings.format = settings.format.value_or(VEXA_TRANSFER_8BIT);
  return settings;
}

}  // namespace

ExitCode RunCalibrate(const CalibrateOptions& options) {
  const OutputPattern pattern = CheckedOutput(options.output, 2, options.overwrite);
  const SettingOptions wanted = CheckedSettings(options);
  const Camera camera = OpenCamera(options.stream.camera);
  PrintNotes(ApplySettings(camera, wanted));
  const FrameSettings settings = ReadFrameSettings(camera);
  const SavePlan plan =
      PlanSaving(pattern.type(), settings.format, settings.color_array,
                 settings.color_array == VEXA_COLOR_ARRAY_MONO ? std::nullopt : options.method);
  const Tasks tasks = ChooseTasks(camera, options, settings);
  const FrameGrabber grabber(camera, settings, FrameTimeout(options.stream, settings));

  std::vector<BYTE> color;
  FreshStart fresh_start(camera, tasks);
  const StoredFrame before = grabber.Grab();
  SaveFrame(before, plan, pattern.PathOf(1), color);
  std::vector<Section> sections;
  std::vector<Position> defects;
  if (tasks.defects) {  // first: white balance is measured on good pixels
    defects = FindDefects(camera, grabber, options);
  }
  Gains gains;
  if (tasks.white_balance) {
    const StoredFrame frame = grabber.Grab();
    gains = tasks.white_balance_in_camera ? FindCameraGains(camera, grabber, MeasureColours(frame))
                                          : FindHostGains(camera, frame);
  }
  StoredFrame after = grabber.Grab();
  if (tasks.white_balance) {
    // Leaves the frames of cameras that have done it themselves alone.
    camera.Call("Vexa_WhiteBalance", Vexa_WhiteBalance, after.pixels.data());
    sections.push_back(
        WhiteBalanceSection(tasks, gains, MeasureColours(before), MeasureColours(after)));
  }
  SaveFrame(after, plan, pattern.PathOf(2), color);
  fresh_start.Done();
  if (tasks.defects) {
    sections.push_back(DefectSection(defects, options.threshold));
  }
  sections.push_back(PictureSection(pattern));
  Print(options.json ? ToJson(sections) : ToText(sections));
  return ExitCode::kSuccess;
}

}  // namespace vexa::tool
