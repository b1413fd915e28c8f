/** The command line: what the user asked for. */
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "errors.hpp"

namespace vexa::tool {

/** Region of interest in pixels. */
struct Region {
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
};

/** White-balance gains as Vexa_SetWhiteBalanceGain() counts them. */
inline constexpr std::uint16_t kUnityGain = 128;
struct Gains {
  std::uint16_t red = kUnityGain;
  std::uint16_t green_red = kUnityGain; /**< Green in rows with red. */
  std::uint16_t green_blue = kUnityGain;
  std::uint16_t blue = kUnityGain;
};

/** Camera settings to change before a transfer; what is not given stays as it is. */
struct SettingOptions {
  std::optional<double> exposure_ms;
  std::optional<Region> region;
  std::optional<std::uint16_t> scan_mode;
  std::optional<std::uint32_t> format; /**< VEXA_TRANSFER_ code. */
};

/** Options of the commands that stream. */
struct StreamOptions {
  std::uint32_t camera = 0;
  SettingOptions settings;
  std::optional<double> timeout_s; /**< Longest wait for a frame; 0 waits without limit. */
  bool quiet = false;
};

struct ListOptions {
  bool json = false;
};

struct InfoOptions {
  std::uint32_t camera = 0;
  bool json = false;
};

struct CaptureOptions {
  StreamOptions stream;
  std::uint32_t frames = 1;
  std::string output = "frame-%04d.bmp";
  std::optional<std::uint8_t> method; /**< VEXA_INTERP_ code. */
  bool overwrite = false;
};

struct ConvertOptions {
  std::string input;
  std::string output;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::optional<std::uint32_t> format;      /**< VEXA_TRANSFER_ code. */
  std::optional<std::uint16_t> color_array; /**< VEXA_COLOR_ARRAY_ code. */
  std::optional<std::uint8_t> method;       /**< VEXA_INTERP_ code. */
  bool overwrite = false;
};

/** How white-balance gains come about. */
enum class GainSource {
  kGiven,
  kOnce, /**< Found on the first frame. */
  kAuto, /**< Found on every frame. */
};

/** White balance of raw frames on this computer. */
struct BalanceOptions {
  GainSource source = GainSource::kGiven;
  Gains gains; /**< For kGiven. */
};

/** Steps from a frame to a result, in the order in which they are taken. What is not given is left
 * out, but for the interpolation. */
struct StepOptions {
  std::string dark_frame; /**< File to subtract; empty: none. */
  bool impulse_filter = false;
  std::optional<BalanceOptions> white_balance;
  std::optional<Region> grey_area; /**< Where to find the gains; the whole frame if not given. */
  std::optional<double> raw_gamma;
  std::optional<std::uint8_t> mirror;                 /**< Operation of Vexa_MirrorRotation(). */
  std::optional<std::uint32_t> rotate;                /**< Degrees clockwise: 90, 180 or 270. */
  std::optional<std::uint8_t> method;                 /**< VEXA_INTERP_ code. */
  std::optional<std::array<std::int16_t, 12>> matrix; /**< As Vexa_SetColorMatrix(). */
  std::optional<double> hue;                          /**< Degrees. */
  std::optional<double> saturation;                   /**< Per cent. */
  std::optional<double> gamma;
  std::optional<int> brightness;         /**< Levels. */
  std::optional<std::uint32_t> contrast; /**< Levels cut off at each end. */
  bool negative = false;
  std::optional<std::uint32_t> sharpen; /**< Per cent. */
  std::uint32_t coring = 0;             /**< Levels that are not sharpened. */
};

struct ProcessOptions {
  StreamOptions stream;            /**< Its transfer format counts for files, too. */
  std::vector<std::string> inputs; /**< Files; none: frames from the camera. */
  std::uint32_t width = 0;         /**< Of the frames in files. */
  std::uint32_t height = 0;
  std::optional<std::uint16_t> color_array; /**< Of the frames in files. */
  std::uint32_t frames = 1;                 /**< From the camera. */
  StepOptions steps;
  std::string output = "processed-%04d.bmp";
  bool overwrite = false;
  bool json = false;
};

struct LevelOptions {
  StreamOptions stream;
  std::uint32_t mode = 1; /**< As Vexa_SetALCMode(), 1 to 6. */
  std::uint32_t target = 128;
  std::optional<std::uint16_t> gain; /**< To start with; setting value, as the limits. */
  std::optional<std::uint16_t> min_gain;
  std::optional<std::uint16_t> max_gain;
  std::optional<double> min_exposure_ms;
  std::optional<double> max_exposure_ms;
  std::uint32_t max_steps = 50;
  std::uint32_t skip = 3; /**< Frames to leave out after a change. */
  bool json = false;
};

struct CalibrateOptions {
  StreamOptions stream;
  bool white_balance = false; /**< Without this and the next: both, where the model has them. */
  bool defects = false;
  std::uint32_t threshold = 64;            /**< Least level of a defect pixel in a dark frame. */
  std::optional<double> dark_exposure_ms;  /**< Of the dark frame; the shortest if not given. */
  std::string output = "calibrate-%d.bmp"; /**< 1 is before, 2 after. */
  std::optional<std::uint8_t> method;      /**< VEXA_INTERP_ code. */
  bool overwrite = false;
  bool json = false;
};

struct StatsOptions {
  StreamOptions stream;
  double seconds = 10;
  bool json = false;
};

struct ParametersOptions {
  bool json = false;
};

struct GetOptions {
  std::uint32_t camera = 0;
  std::string parameter; /**< Name or number; empty for all that can be read. */
};

struct SetOptions {
  std::uint32_t camera = 0;
  std::string parameter; /**< Name or number. */
  std::string value;     /**< Empty for an action. */
};

enum class SettingsAction { kSave, kLoad, kDiff };

struct SettingsOptions {
  std::uint32_t camera = 0;
  SettingsAction action = SettingsAction::kSave;
  std::string file;
  std::string other_file; /**< For kDiff. */
};

/** The command line is dealt with: help, the version, or a usage error. */
struct Answer {
  ExitCode exit_code = ExitCode::kSuccess;
  std::string output; /**< For the standard output. */
  std::string error;  /**< For the standard error. */
};

using ParsedArguments =
    std::variant<Answer, ListOptions, InfoOptions, CaptureOptions, ConvertOptions, ProcessOptions,
                 LevelOptions, CalibrateOptions, StatsOptions, ParametersOptions, GetOptions,
                 SetOptions, SettingsOptions>;

/** Reads the command line.
 *  @param arguments without the program's name, UTF-8.
 *  @param version   makes the text that --version prints. */
ParsedArguments ParseArguments(const std::vector<std::string>& arguments,
                               const std::function<std::string()>& version);

/** A region from "X,Y,W,H". @throws std::invalid_argument with the reason. */
Region ParseRegion(std::string_view text);

}  // namespace vexa::tool
